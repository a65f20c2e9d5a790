#include "io/jcamp/jcamp_reader.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <limits>

#include "base/paths.h"
#include "io/bruker/bruker_time_shift.h"
#include "io/jcamp/jcamp_labels.h"
#include "io/jcamp/jcamp_table_loading.h"
#include "io/nucleus_label.h"

namespace zolt {

namespace {

// Larger counts cannot be data the loader accepts.
constexpr double kMaxCount = double{1u << 30};

std::optional<uint32_t> countOf(std::optional<double> v) {
    if (!v || !(*v >= 1.0) || *v > kMaxCount || *v != std::floor(*v)) return std::nullopt;
    return static_cast<uint32_t>(*v);
}

// Header numbers may be anything: kept inside what the record's fields hold.
float narrowed(double v) {
    constexpr double kMax = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(v, -kMax, kMax));
}

int integer(std::optional<double> v) {
    return v && !std::isnan(*v) ? static_cast<int>(std::clamp(*v, -1e9, 1e9)) : 0;
}

std::string upper(std::string s) {
    for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

class Labels {
public:
    explicit Labels(const JcampHeader& h) : h_(h) {}
    std::string text(std::string_view label) const {
        const std::string* v = h_.find(label);
        return v ? *v : std::string();
    }
    std::optional<double> number(std::string_view label) const {
        const std::string* v = h_.find(label);
        return v ? numberOf(*v) : std::nullopt;
    }
    // The field of an NTUPLES record ("##FIRST= 4789.1, -118793, -119285").
    std::optional<double> field(std::string_view label, size_t i) const {
        const auto fields = splitFields(text(label));
        return i < fields.size() ? numberOf(fields[i]) : std::nullopt;
    }
    std::string fieldText(std::string_view label, size_t i) const {
        const auto fields = splitFields(text(label));
        return i < fields.size() ? fields[i] : std::string();
    }

private:
    const JcampHeader& h_;
};

// Larmor frequencies relative to 1H, for the indirect axis of a 2-D set, whose frequency the
// files do not state.
double frequencyRatio(const DimensionRecord& d) {
    struct Ratio {
        uint8_t isotope;
        char atom;
        double ratio;
    };
    static constexpr Ratio kRatios[] = {{1, 'H', 1.0},          {2, 'H', 0.153506088},
                                        {13, 'C', 0.251449530}, {15, 'N', 0.101329118},
                                        {19, 'F', 0.940940080}, {31, 'P', 0.404807420}};
    for (const Ratio& r : kRatios)
        if (r.isotope == d.isotope && r.atom == d.atom[0] && d.atom[1] == 0) return r.ratio;
    return 0.0;
}

void setNucleus(DimensionRecord& d, std::string label) {
    std::erase(label, '^');
    setNucleusFromLabel(d, label);
}

// A frequency axis whose first and last points' centres lie at `first` and `last` (Hz, or ppm
// with `ppmUnits`); true when the table runs from low to high frequency.
bool setFrequencyAxis(DimensionRecord& d, uint32_t points, double first, double last, double mhz,
                      bool ppmUnits) {
    if (ppmUnits) first *= mhz, last *= mhz;
    const double step = points > 1 ? std::abs(first - last) / (points - 1) : 0.0;
    d.points = points;
    d.carrier = narrowed(mhz);
    if (mhz > 0.0) {
        d.spectralWidth = narrowed(step * points / mhz);
        d.lowestPpm = narrowed((std::min(first, last) - step / 2) / mhz);
    }
    return first < last;
}

// ".SHIFT REFERENCE= INTERNAL, CDCl3, 1, 15.47866": the point (counted from 1 in the file's
// order) that lies at the ppm value.
void applyShiftReference(const Labels& l, DimensionRecord& d, bool reversed) {
    const auto point = l.field(".SHIFTREFERENCE", 2);
    const auto ppm = l.field(".SHIFTREFERENCE", 3);
    if (!point || !ppm || *point < 1.0 || *point > d.points) return;
    const double i = reversed ? d.points - *point : *point - 1.0;
    d.lowestPpm += narrowed(*ppm - ppmOfPoint(d, i));
}

uint8_t quadratureMode(const Labels& l) {
    if (const auto aqMod = l.number("$AQMOD")) return static_cast<uint8_t>(integer(aqMod) & 0x3F);
    const std::string mode = upper(l.text(".ACQUISITIONMODE"));
    if (mode.starts_with("SEQUENTIAL")) return 2;
    if (mode.starts_with("SINGLE")) return 0;
    return 1;
}

double observeFrequency(const Labels& l) {
    for (const char* label : {".OBSERVEFREQUENCY", "$SFO1", "$SF"})
        if (const auto f = l.number(label); f && *f > 0.0) return *f;
    return 0.0;
}

// The time axis of an FID: its width from the sweep width or the sampling times, its centre
// from the carrier's offset, its time origin from the digital filter or the first time.
bool setTimeAxis(const Labels& l, DimensionRecord& d, uint32_t points, double mhz) {
    const double first = l.field("FIRST", 0).value_or(0.0);
    const double last = l.field("LAST", 0).value_or(0.0);
    const double dwell = points > 1 ? (last - first) / (points - 1) : 0.0;
    double widthHz = l.number("$SWH").value_or(l.number("$SWEEPWIDTH").value_or(0.0));
    if (!(widthHz > 0.0) && dwell > 0.0) widthHz = 1.0 / dwell;
    if (!(widthHz > 0.0) || !std::isfinite(widthHz)) return false;
    d.points = points;
    d.carrier = narrowed(mhz);
    const double offsetHz = l.number("$O1").value_or(l.number("$FREQOFFSET").value_or(0.0) -
                                                     l.number("$REFERENCEPOINT").value_or(0.0));
    if (mhz > 0.0) {
        d.spectralWidth = narrowed(widthHz / mhz);
        d.lowestPpm = narrowed((offsetHz - widthHz / 2) / mhz);
    }
    if (const auto dspfvs = l.number("$DSPFVS"); dspfvs && first == 0.0) {
        d.timeShift = narrowed(-digitalFilterDelay(integer(dspfvs), integer(l.number("$DECIM")),
                                                   l.number("$GRPDLY").value_or(0)));
    } else if (dwell > 0.0) {
        d.timeShift = narrowed(first / dwell);
    }
    return true;
}

void readMetadata(const Labels& l, DataSetRead& r) {
    r.metadata.title = l.text("TITLE");
    r.metadata.solvent = l.text(".SOLVENTNAME");
    r.metadata.pulseSequence = l.text(".PULSESEQUENCE");
    r.info.dateStamp = l.text("LONGDATE");
    r.info.scans =
        integer(l.number(".AVERAGES").has_value() ? l.number(".AVERAGES") : l.number("$NS"));
}

bool readXyData(const Labels& l, double mhz, SpectrumSource& s) {
    const auto points = countOf(l.number("NPOINTS"));
    const auto first = l.number("FIRSTX");
    const auto last = l.number("LASTX");
    if (!points || !first || !last) return false;
    DimensionRecord& d = s.dims[1];
    const bool ppm = upper(l.text("XUNITS")) == "PPM";
    const bool reversed = setFrequencyAxis(d, *points, *first, *last, mhz, ppm);
    applyShiftReference(l, d, reversed);
    if (reversed) s.blockSize |= jcamp_options::kReverseOrder;
    s.yFactorReal = narrowed(l.number("YFACTOR").value_or(1.0));
    s.flags |= source_flags::kRealOnly;
    if (upper(l.text("YUNITS")) == "MAGNITUDE") s.flags |= source_flags::kMagnitude;
    return true;
}

// One axis with a real and an imaginary page.
bool readComplexPages(const Labels& l, bool fid, double mhz, SpectrumSource& s) {
    const auto points = countOf(l.field("VARDIM", 0));
    if (!points) return false;
    DimensionRecord& d = s.dims[1];
    if (fid) {
        if (!setTimeAxis(l, d, *points, mhz)) return false;
        s.highestTIndex = 1;
    } else {
        const auto first = l.field("FIRST", 0), last = l.field("LAST", 0);
        if (!first || !last) return false;
        const bool ppm = upper(l.fieldText("UNITS", 0)) == "PPM";
        const bool reversed = setFrequencyAxis(d, *points, *first, *last, mhz, ppm);
        applyShiftReference(l, d, reversed);
        if (reversed) s.blockSize |= jcamp_options::kReverseOrder;
    }
    s.blockSize |= jcamp_options::kNtuples;
    s.yFactorReal = narrowed(l.field("FACTOR", 1).value_or(1.0));
    s.yFactorImaginary = narrowed(l.field("FACTOR", 2).value_or(1.0));
    s.phaseable[1] = 1;
    s.ftPreferences[1] = quadratureMode(l);
    return true;
}

// A 2-D spectrum, one page per row of the indirect axis; real values only.
bool readPlanePages(const Labels& l, double mhz, SpectrumSource& s) {
    const auto rows = countOf(l.field("VARDIM", 0));
    const auto columns = countOf(l.field("VARDIM", 1));
    const auto f1First = l.field("FIRST", 0), f1Last = l.field("LAST", 0);
    const auto f2First = l.field("FIRST", 1), f2Last = l.field("LAST", 1);
    if (!rows || !columns || !f1First || !f1Last || !f2First || !f2Last) return false;
    setNucleus(s.dims[1], l.fieldText(".NUCLEUS", 0));
    setNucleus(s.dims[2], l.fieldText(".NUCLEUS", 1));
    const double direct = frequencyRatio(s.dims[2]);
    const double indirect = frequencyRatio(s.dims[1]);
    const double f1Mhz = direct > 0.0 && indirect > 0.0 ? mhz * indirect / direct : mhz;
    setFrequencyAxis(s.dims[1], *rows, *f1First, *f1Last, f1Mhz,
                     upper(l.fieldText("UNITS", 0)) == "PPM");
    if (setFrequencyAxis(s.dims[2], *columns, *f2First, *f2Last, mhz,
                         upper(l.fieldText("UNITS", 1)) == "PPM"))
        s.blockSize |= jcamp_options::kReverseOrder;
    s.yFactorReal = narrowed(l.field("FACTOR", 2).value_or(1.0));
    s.flags |= source_flags::kRealOnly;
    return true;
}

}  // namespace

std::optional<DataSetRead> readJcamp(const std::string& path, const ReadOptions& /*options*/) {
    const auto header = readJcampHeader(path);
    if (!header || header->dataOffset > UINT32_MAX) return std::nullopt;
    const Labels l(*header);
    DataSetRead r;
    SpectrumSource& s = r.source;
    s.rawPath = path;
    s.fileName = fromPath(toPath(path).filename());
    s.numberType = NumberType::AsciiSqueezed;
    s.headerSize = static_cast<uint32_t>(header->dataOffset);
    s.flags = source_flags::kLooseNativeFile;
    if (header->dataValue.find("++") == std::string::npos) s.blockSize |= jcamp_options::kYDataOnly;
    const double mhz = observeFrequency(l);
    setNucleus(s.dims[1], l.text(".OBSERVENUCLEUS"));
    const std::string type = upper(l.text("DATATYPE"));
    const bool twoD = l.number("NUMDIM").value_or(1.0) >= 2.0 || type.starts_with("ND");
    bool ok = false;
    if (header->dataLabel == "XYDATA")
        ok = readXyData(l, mhz, s);
    else if (twoD)
        ok = readPlanePages(l, mhz, s);
    else
        ok = readComplexPages(l, type.find("FID") != std::string::npos, mhz, s);
    if (!ok) return std::nullopt;
    readMetadata(l, r);
    return r;
}

}  // namespace zolt
