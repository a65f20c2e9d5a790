#include "document/document_file.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/files.h"
#include "io/format_recognition.h"
#include "processing/processing_log.h"
#include "processing/processing_record.h"

namespace zolt {
namespace {

namespace fs = std::filesystem;
using plist::Value;

constexpr const char* kCreator = "Zolt for Linux";
constexpr size_t kMaxDocumentBytes = size_t{64} << 20;

void put(Value* dict, const char* key, Value* v) {
    plist::addToDictionary(dict, key, v);
}
void putInt(Value* dict, const char* key, int64_t i) {
    put(dict, key, plist::createInteger(static_cast<int32_t>(i)));
}
void putReal(Value* dict, const char* key, double r) {
    put(dict, key, plist::createReal(r));
}
void putString(Value* dict, const char* key, const std::string& s) {
    put(dict, key, plist::createString(s));
}
void putStringIfSet(Value* dict, const char* key, const std::string& s) {
    if (!s.empty()) putString(dict, key, s);
}

const Value* child(const Value* dict, const char* key, plist::Kind kind) {
    const Value* v = dict ? plist::lookUp(dict, key) : nullptr;
    return v && v->kind == kind ? v : nullptr;
}
std::optional<double> number(const Value* dict, const char* key) {
    return plist::numberOf(dict ? plist::lookUp(dict, key) : nullptr);
}
int64_t integerOr(const Value* dict, const char* key, int64_t fallback) {
    const auto n = number(dict, key);
    return n ? static_cast<int64_t>(*n) : fallback;
}
std::string stringOr(const Value* dict, const char* key, const std::string& fallback = {}) {
    const Value* v = child(dict, key, plist::Kind::String);
    return v ? v->text : fallback;
}

Value* coordinatesToTree(const DimensionRecord& d, const DimensionRecord& phases, int fIndex,
                         uint8_t ftPreferences) {
    Value* c = plist::createDictionary();
    putReal(c, "carrier (MHz)", d.carrier);
    putInt(c, "no. of points", d.points);
    if (d.pointsAfterNus) putInt(c, "points after NUS reconstruction", d.pointsAfterNus);
    putReal(c, "spectral width (ppm)", d.spectralWidth);
    putReal(c, "lowest ppm value", d.lowestPpm);
    Value* phase = plist::createArray();
    plist::appendToArray(phase, plist::createReal(phases.phase0));
    plist::appendToArray(phase, plist::createReal(phases.phase1));
    put(c, "phase correction", phase);
    putReal(c, "time shift (pts)", d.timeShift);
    putInt(c, "isotope", d.isotope);
    char atom[3];
    putString(c, "atom", atomText(d, atom));
    putInt(c, "f-index", fIndex);
    putInt(c, "FT preferences", ftPreferences);
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

Value* windowStateToTree(const SpectrumDocument& doc) {
    Value* w = plist::createDictionary();
    Value* page = plist::createArray();
    for (int v : doc.windowState.pageAndMargins)
        plist::appendToArray(page, plist::createInteger(v));
    put(w, "page and margins", page);
    put(w, "free size", plist::createBoolean(doc.windowState.freeSize));
    put(w, "drawer", plist::createBoolean(doc.windowState.drawer));
    putInt(w, "page number", doc.windowState.pageNumber);
    if (doc.windowState.hasBounds) {
        Value* bounds = plist::createArray();
        for (int v : doc.windowState.bounds) plist::appendToArray(bounds, plist::createInteger(v));
        put(w, "window bounds", bounds);
    }
    putStringIfSet(w, "optional title", doc.metadata.title);
    putStringIfSet(w, "ASCII formula", doc.metadata.formula);
    putStringIfSet(w, "SMILES string", doc.metadata.smiles);
    putStringIfSet(w, "solvent", doc.metadata.solvent);
    putStringIfSet(w, "pulse sequence", doc.metadata.pulseSequence);
    if (doc.metadata.temperature != 0.0f) putReal(w, "temperature", doc.metadata.temperature);
    return w;
}

void windowStateFromTree(const Value* w, SpectrumDocument& doc) {
    if (!w) return;
    auto ints = [](const Value* a, auto& out) {
        if (!a) return false;
        for (size_t i = 0; i < out.size() && i < a->items.size(); ++i)
            if (a->items[i] && a->items[i]->kind == plist::Kind::Integer)
                out[i] = a->items[i]->integer;
        return true;
    };
    ints(child(w, "page and margins", plist::Kind::Array), doc.windowState.pageAndMargins);
    doc.windowState.hasBounds =
        ints(child(w, "window bounds", plist::Kind::Array), doc.windowState.bounds);
    if (const Value* b = child(w, "free size", plist::Kind::Boolean))
        doc.windowState.freeSize = b->boolean;
    if (const Value* b = child(w, "drawer", plist::Kind::Boolean))
        doc.windowState.drawer = b->boolean;
    doc.windowState.pageNumber = static_cast<int>(integerOr(w, "page number", 0));
    doc.metadata.title = stringOr(w, "optional title");
    doc.metadata.formula = stringOr(w, "ASCII formula");
    doc.metadata.smiles = stringOr(w, "SMILES string");
    doc.metadata.solvent = stringOr(w, "solvent");
    doc.metadata.pulseSequence = stringOr(w, "pulse sequence");
    doc.metadata.temperature = static_cast<float>(number(w, "temperature").value_or(0.0));
}

Value* processingToTree(const ProcessingRecord& record) {
    Value* p = plist::createDictionary();
    put(p, "steps", saveSteps(record.steps));
    putInt(p, "operations performed", static_cast<int32_t>(record.doneMask));
    return p;
}

// False when a step is malformed (a required key missing).
bool processingFromTree(const Value* p, ProcessingRecord& record) {
    if (!p) return true;
    record.doneMask = static_cast<uint32_t>(integerOr(p, "operations performed", 0));
    const Value* steps = plist::lookUp(p, "steps");
    if (!steps) return true;
    std::optional<std::vector<ProcessingStep>> loaded = loadSteps(steps);
    if (!loaded) return false;
    record.steps = std::move(*loaded);
    return true;
}

// The log's text, one array entry per line, for readers of the file.
Value* performedProcessingToTree(const SpectrumDocument& doc) {
    const std::string log =
        processingLog(doc.processing, [&doc](int d) { return int64_t{doc.matrix.dims[d].points}; });
    Value* lines = plist::createArray();
    std::istringstream in(log);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty()) plist::appendToArray(lines, plist::createString(line));
    }
    return lines;
}

// The saved raw file in the document's folder, or the document's own base name with the
// saved file's extension (the data were renamed together with their document).
std::optional<std::string> locateRawData(const fs::path& document, const std::string& saved) {
    std::error_code ec;
    const fs::path folder = document.parent_path();
    if (!saved.empty() && fs::is_regular_file(folder / saved, ec)) return (folder / saved).string();
    fs::path base = document.filename();
    base.replace_extension();
    const fs::path ext = fs::path(saved).extension();
    const fs::path moved = folder / (base.string() + ext.string());
    if (fs::is_regular_file(moved, ec)) return moved.string();
    return std::nullopt;
}

}  // namespace

plist::Value* sourceToTree(const SpectrumSource& s, const SpectrumMatrix* matrix) {
    Value* d = plist::createDictionary();
    putString(d, "raw data file", s.fileName);
    putString(d, "type of numbers", numberTypeName(s.numberType));
    if (s.numberType == NumberType::AsciiSqueezed) {
        putReal(d, "Y factor (real)", s.yFactorReal);
        putReal(d, "Y factor (imaginary)", s.yFactorImaginary);
        for (const JcampOption& o : kJcampOptions)
            if (s.blockSize & o.bit) put(d, o.key, plist::createBoolean(true));
    }
    putInt(d, "block size", s.blockSize);
    if (s.subMatrixHeight) putInt(d, "height of each sub-matrix", s.subMatrixHeight);
    putInt(d, "header size", s.headerSize);
    putInt(d, "block header", s.blockHeader);
    Value* coordinates = plist::createArray();
    for (int f = 1; f <= 3; ++f) {
        if (s.dims[f].points <= 1) continue;
        const DimensionRecord& phases = matrix ? matrix->dims[f] : s.dims[f];
        plist::appendToArray(coordinates,
                             coordinatesToTree(s.dims[f], phases, f, s.ftPreferences[f]));
    }
    put(d, "NMR coordinates", coordinates);
    if (s.highestTIndex < countDimensions(s)) {
        Value* phaseable = plist::createArray();
        for (int f = 1; f <= 3; ++f)
            plist::appendToArray(phaseable, plist::createInteger(s.phaseable[f]));
        put(d, "phaseable dimensions", phaseable);
    }
    putString(d, "provenance", s.provenance);
    for (const SourceFlagName& flag : sourceFlagNames())
        if (s.flags & flag.bit)
            // Written as false for compatibility; readers go by presence.
            put(d, flag.key, plist::createBoolean(flag.bit != source_flags::kInterleaved));
    putInt(d, "highest t-index", s.highestTIndex);
    putInt(d, "x index", s.xIndex);
    if (s.yIndex) putInt(d, "y index", s.yIndex);
    if (s.zIndex) putInt(d, "z index", s.zIndex);
    return d;
}

std::optional<SpectrumSource> sourceFromTree(const Value* d) {
    if (!d || d->kind != plist::Kind::Dictionary) return std::nullopt;
    SpectrumSource s;
    s.fileName = stringOr(d, "raw data file");
    s.numberType = numberTypeFromText(stringOr(d, "type of numbers"));
    const int64_t block = integerOr(d, "block size", 0);
    s.blockSize =
        block > 0 && block <= 0x7FFFFFFF ? static_cast<uint32_t>(block) : kDefaultBlockSize;
    if (s.numberType == NumberType::AsciiSqueezed) {
        s.yFactorReal = static_cast<float>(number(d, "Y factor (real)").value_or(1.0));
        s.yFactorImaginary = static_cast<float>(number(d, "Y factor (imaginary)").value_or(1.0));
        s.blockSize = 0;
        for (const JcampOption& o : kJcampOptions)
            if (plist::lookUp(d, o.key)) s.blockSize |= o.bit;
    }
    const int64_t height = integerOr(d, "height of each sub-matrix", 0);
    s.subMatrixHeight = height >= 1 && height <= 255 ? static_cast<uint8_t>(height) : 1;
    const int64_t header = integerOr(d, "header size", 0);
    s.headerSize = header > 0 && header <= 0x7FFFFFFF ? static_cast<uint32_t>(header) : 0;
    const int64_t blockHeader = integerOr(d, "block header", 0);
    s.blockHeader =
        blockHeader > 0 && blockHeader <= 0x7FFFFFFF ? static_cast<uint32_t>(blockHeader) : 0;
    for (auto& dim : s.dims) dim.points = 1;
    if (const Value* coordinates = child(d, "NMR coordinates", plist::Kind::Array))
        for (const Value* c : coordinates->items)
            if (c && c->kind == plist::Kind::Dictionary) coordinatesFromTree(c, s);
    if (const Value* phaseable = child(d, "phaseable dimensions", plist::Kind::Array))
        for (size_t i = 0; i < 3 && i < phaseable->items.size(); ++i)
            if (phaseable->items[i] && phaseable->items[i]->kind == plist::Kind::Integer)
                s.phaseable[i + 1] = static_cast<uint8_t>(phaseable->items[i]->integer);
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

plist::Value* buildDocumentTree(const SpectrumDocument& doc) {
    Value* root = plist::createDictionary();
    put(root, "window state", windowStateToTree(doc));
    const bool hasMatrix = !doc.matrix.re.empty();
    put(root, "spectroscopy", sourceToTree(doc.source, hasMatrix ? &doc.matrix : nullptr));
    put(root, "processing parameters", processingToTree(doc.processing));
    Value* xyz = plist::createArray();
    for (int8_t i : {doc.source.xIndex, doc.source.yIndex, doc.source.zIndex})
        plist::appendToArray(xyz, plist::createInteger(i));
    put(root, "xyz index", xyz);
    if (doc.processing.doneMask) put(root, "performed processing", performedProcessingToTree(doc));
    putInt(root, "! read with version", doc.readWithVersion);
    putInt(root, "! write with version", kWriterVersion);
    putString(root, "! creator", kCreator);
    putString(root, "! content", "generic NMR spectrum");
    putString(root, "! last use", kLastUseStamp);
    return root;
}

std::string documentPathFor(const SpectrumDocument& doc) {
    return companionDocumentPath(doc.source.rawPath);
}

SaveResult saveDocument(const SpectrumDocument& doc, const std::string& path, bool doBackUp) {
    const SaveResult failed{false, {kSystemErrorCaption, kSystemErrorText}};
    plist::Ref tree(buildDocumentTree(doc));
    const std::string text = plist::write(tree.get());
    const std::optional<std::string> written = writeTemporaryBeside(path, text);
    if (!written) return failed;
    const std::string& temporary = *written;
    std::error_code ec;
    if (doBackUp && fs::exists(path, ec)) {
        fs::path back = path;
        back.replace_extension("back");
        fs::remove(back, ec);
        if (ec) return std::remove(temporary.c_str()), failed;
        fs::rename(path, back, ec);
        if (ec) return std::remove(temporary.c_str()), failed;
    }
    // rename replaces an existing document in one step.
    fs::rename(temporary, path, ec);
    if (ec) return std::remove(temporary.c_str()), failed;
    return {true, {}};
}

DocumentRead readDocumentFile(const std::string& path) {
    DocumentRead r;
    const auto incoherent = [&r] {
        r.message.caption = "Failed to Read the file";
        r.message.text = "This Zolt file seems incoherent";
        r.document.reset();
        return std::move(r);
    };
    const std::optional<std::string> text = readWholeFile(path, kMaxDocumentBytes);
    if (!text) return incoherent();
    plist::Ref root(plist::read(*text));
    if (!root || root->kind != plist::Kind::Dictionary) return incoherent();
    const int64_t readVersion = integerOr(root.get(), "! read with version", 0);
    if (readVersion > kWriterVersion) {
        r.message.caption = kNewerVersionCaption;
        r.message.text = kNewerVersionText;
        return r;
    }
    std::optional<SpectrumSource> source =
        sourceFromTree(child(root.get(), "spectroscopy", plist::Kind::Dictionary));
    if (!source) return incoherent();
    const std::optional<std::string> raw = locateRawData(path, source->fileName);
    if (!raw) return incoherent();
    source->rawPath = *raw;
    source->fileName = fs::path(*raw).filename().string();

    r.document = std::make_unique<SpectrumDocument>();
    SpectrumDocument& doc = *r.document;
    doc.source = std::move(*source);
    doc.readWithVersion = static_cast<int>(readVersion);
    doc.writtenByNewerVersion = integerOr(root.get(), "! write with version", 0) > kWriterVersion;
    windowStateFromTree(child(root.get(), "window state", plist::Kind::Dictionary), doc);
    if (!processingFromTree(child(root.get(), "processing parameters", plist::Kind::Dictionary),
                            doc.processing))
        return incoherent();
    return r;
}

}  // namespace zolt
