// The "spectroscopy" dictionary: where the raw data are, how they are coded and the axes.
#include "document/source_section.h"

#include <cstdint>
#include <string>

#include "document/tree_reading.h"

namespace zolt {
namespace {

using plist::Value;
using tree::child;
using tree::integerOr;
using tree::number;
using tree::stringOr;

constexpr const char* kSubMatrixHeight = "height of each sub-matrix";

Value* coordinatesToTree(const DimensionRecord& d, const DimensionRecord& phases, int fIndex,
                         uint8_t ftPreferences) {
    Value* c = plist::createDictionary();
    plist::setReal(c, "carrier (MHz)", d.carrier);
    plist::setInteger(c, "no. of points", static_cast<int32_t>(d.points));
    if (d.pointsAfterNus)
        plist::setInteger(c, "points after NUS reconstruction",
                          static_cast<int32_t>(d.pointsAfterNus));
    plist::setReal(c, "spectral width (ppm)", d.spectralWidth);
    plist::setReal(c, "lowest ppm value", d.lowestPpm);
    Value* phase = plist::setArray(c, "phase correction");
    plist::appendReal(phase, phases.phase0);
    plist::appendReal(phase, phases.phase1);
    plist::setReal(c, "time shift (pts)", d.timeShift);
    plist::setInteger(c, "isotope", d.isotope);
    char atom[3];
    plist::setString(c, "atom", atomText(d, atom));
    plist::setInteger(c, "f-index", fIndex);
    plist::setInteger(c, "FT preferences", ftPreferences);
    return c;
}

void coordinatesFromTree(const Value* c, SpectrumSource& s) {
    const int64_t f = integerOr(c, "f-index", 0);
    if (f < 1 || f > 3) return;
    DimensionRecord& d = s.dims[f];
    const int64_t points = integerOr(c, "no. of points", 0);
    d.points = points > 0 && points <= 0x7FFFFFFF ? static_cast<uint32_t>(points) : 1;
    const int64_t nus = integerOr(c, "points after NUS reconstruction", 0);
    d.pointsAfterNus = nus > 0 && nus <= 0x7FFFFFFF ? static_cast<uint32_t>(nus) : 0;
    d.carrier = static_cast<float>(number(c, "carrier (MHz)").value_or(0.0));
    d.spectralWidth = static_cast<float>(number(c, "spectral width (ppm)").value_or(0.0));
    d.lowestPpm = static_cast<float>(number(c, "lowest ppm value").value_or(0.0));
    d.timeShift = static_cast<float>(number(c, "time shift (pts)").value_or(0.0));
    d.isotope = static_cast<uint8_t>(integerOr(c, "isotope", 0));
    setAtom(d, stringOr(c, "atom").c_str());
    if (const Value* phase = child(c, "phase correction", plist::Kind::Array)) {
        auto realAt = [&](size_t i) {
            const Value* v = i < phase->items.size() ? phase->items[i] : nullptr;
            return plist::numberOf(v).value_or(0.0);
        };
        d.phase0 = static_cast<float>(realAt(0));
        d.phase1 = static_cast<float>(realAt(1));
    }
    s.ftPreferences[f] = static_cast<uint8_t>(integerOr(c, "FT preferences", 0));
}

NumberType numberTypeFromText(const std::string& t) {
    switch (t.empty() ? '\0' : t[0]) {
        case '2':
            return NumberType::Bits24;
        case 'A':
            return NumberType::AsciiSqueezed;
        case 'X':
            return NumberType::XEasy16;
        case 'd':
            return NumberType::Double;
        case 'f':
            return NumberType::Float;
        case 's':
            return NumberType::Short;
        case 't':
            return NumberType::Text;
        default:
            return NumberType::Long;
    }
}

// JCAMP-DX options kept in the block-size field while the source lives.
struct JcampOption {
    uint32_t bit;
    const char* key;
};
constexpr JcampOption kJcampOptions[] = {{1, "ntuples"}, {2, "reverse order"}, {4, "Y data only"}};

// Sizes are unsigned; a saved value outside 1 ... 2^31 - 1 reads as `fallback`.
uint32_t sizeOr(const Value* d, const char* key, uint32_t fallback) {
    const int64_t v = integerOr(d, key, 0);
    return v > 0 && v <= 0x7FFFFFFF ? static_cast<uint32_t>(v) : fallback;
}

}  // namespace

plist::Value* sourceToTree(const SpectrumSource& s, const SpectrumMatrix* matrix) {
    Value* d = plist::createDictionary();
    plist::setString(d, "raw data file", s.fileName);
    plist::setString(d, "type of numbers", numberTypeName(s.numberType));
    if (s.numberType == NumberType::AsciiSqueezed) {
        plist::setReal(d, "Y factor (real)", s.yFactorReal);
        plist::setReal(d, "Y factor (imaginary)", s.yFactorImaginary);
        for (const JcampOption& o : kJcampOptions)
            if (s.blockSize & o.bit) plist::setBoolean(d, o.key, true);
    }
    plist::setInteger(d, "block size", static_cast<int32_t>(s.blockSize));
    // 0 (square tiles, or no tiles at all) is what a reader of the file assumes without it.
    if (s.subMatrixHeight) plist::setInteger(d, kSubMatrixHeight, s.subMatrixHeight);
    plist::setInteger(d, "header size", static_cast<int32_t>(s.headerSize));
    plist::setInteger(d, "block header", static_cast<int32_t>(s.blockHeader));
    Value* coordinates = plist::setArray(d, "NMR coordinates");
    for (int f = 1; f <= 3; ++f) {
        if (s.dims[f].points <= 1) continue;
        const DimensionRecord& phases = matrix ? matrix->dims[f] : s.dims[f];
        plist::appendToArray(coordinates,
                             coordinatesToTree(s.dims[f], phases, f, s.ftPreferences[f]));
    }
    if (s.highestTIndex < countDimensions(s)) {
        Value* phaseable = plist::setArray(d, "phaseable dimensions");
        for (int f = 1; f <= 3; ++f) plist::appendInteger(phaseable, s.phaseable[f]);
    }
    plist::setString(d, "provenance", s.provenance);
    for (const SourceFlagName& flag : sourceFlagNames())
        if (s.flags & flag.bit)
            // Written as false for compatibility; readers go by presence.
            plist::setBoolean(d, flag.key, flag.bit != source_flags::kInterleaved);
    plist::setInteger(d, "highest t-index", s.highestTIndex);
    plist::setInteger(d, "x index", s.xIndex);
    if (s.yIndex) plist::setInteger(d, "y index", s.yIndex);
    if (s.zIndex) plist::setInteger(d, "z index", s.zIndex);
    return d;
}

bool isSourceKey(std::string_view key) {
    static constexpr std::string_view kKeys[] = {"raw data file",   "type of numbers",
                                                 "Y factor (real)", "Y factor (imaginary)",
                                                 "block size",      kSubMatrixHeight,
                                                 "header size",     "block header",
                                                 "NMR coordinates", "phaseable dimensions",
                                                 "provenance",      "highest t-index",
                                                 "x index",         "y index",
                                                 "z index"};
    for (std::string_view k : kKeys)
        if (k == key) return true;
    for (const JcampOption& o : kJcampOptions)
        if (key == o.key) return true;
    for (const SourceFlagName& flag : sourceFlagNames())
        if (key == flag.key) return true;
    return false;
}

std::optional<SpectrumSource> sourceFromTree(const Value* d) {
    if (!d || d->kind != plist::Kind::Dictionary) return std::nullopt;
    SpectrumSource s;
    s.fileName = stringOr(d, "raw data file");
    s.numberType = numberTypeFromText(stringOr(d, "type of numbers"));
    s.blockSize = sizeOr(d, "block size", kDefaultBlockSize);
    if (s.numberType == NumberType::AsciiSqueezed) {
        s.yFactorReal = static_cast<float>(number(d, "Y factor (real)").value_or(1.0));
        s.yFactorImaginary = static_cast<float>(number(d, "Y factor (imaginary)").value_or(1.0));
        s.blockSize = 0;
        for (const JcampOption& o : kJcampOptions)
            if (plist::lookUp(d, o.key)) s.blockSize |= o.bit;
    }
    const int64_t height = integerOr(d, kSubMatrixHeight, 0);
    if (height >= 1 && height <= 255) s.subMatrixHeight = static_cast<uint8_t>(height);
    s.headerSize = sizeOr(d, "header size", 0);
    s.blockHeader = sizeOr(d, "block header", 0);
    for (auto& dim : s.dims) dim.points = 1;
    if (const Value* coordinates = child(d, "NMR coordinates", plist::Kind::Array))
        for (const Value* c : coordinates->items)
            if (c && c->kind == plist::Kind::Dictionary) coordinatesFromTree(c, s);
    if (const Value* phaseable = child(d, "phaseable dimensions", plist::Kind::Array))
        for (size_t i = 0; i < 3 && i < phaseable->items.size(); ++i)
            if (const auto v = plist::integerOf(phaseable->items[i]))
                s.phaseable[i + 1] = static_cast<uint8_t>(*v);
    s.provenance = stringOr(d, "provenance", "Zolt");
    for (const SourceFlagName& flag : sourceFlagNames())
        if (plist::lookUp(d, flag.key)) s.flags |= flag.bit;
    auto index = [&](const char* key) {
        const int64_t v = integerOr(d, key, 0);
        return static_cast<int8_t>(v >= 0 && v <= 3 ? v : 0);
    };
    s.highestTIndex = index("highest t-index");
    s.xIndex = index("x index");
    s.yIndex = index("y index");
    s.zIndex = index("z index");
    return s;
}

}  // namespace zolt
