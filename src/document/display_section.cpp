// How the document was shown: its window, its display axes and its pages.
#include "document/display_section.h"

#include <array>
#include <string>

#include "document/display_records.h"
#include "document/tree_reading.h"

namespace zolt {
namespace {

using plist::Value;

void setStringIfSet(Value* dict, const char* key, const std::string& s) {
    if (!s.empty()) plist::setString(dict, key, s);
}

// Fills `out` from the integers of an array; false when there is no array.
template <size_t N>
bool integersFrom(const Value* array, std::array<int, N>& out) {
    if (!array) return false;
    for (size_t i = 0; i < N && i < array->items.size(); ++i)
        if (const auto v = plist::integerOf(array->items[i])) out[i] = *v;
    return true;
}

}  // namespace

plist::Value* windowStateToTree(const SpectrumDocument& doc) {
    const WindowState& state = doc.windowState;
    Value* w = plist::createDictionary();
    Value* page = plist::setArray(w, "page and margins");
    for (int v : state.pageAndMargins) plist::appendInteger(page, v);
    plist::setBoolean(w, "free size", state.freeSize);
    plist::setBoolean(w, "drawer", state.drawer);
    plist::setInteger(w, "page number", state.pageNumber);
    if (state.hasBounds) {
        Value* bounds = plist::setArray(w, "window bounds");
        for (int v : state.bounds) plist::appendInteger(bounds, v);
    }
    const SampleMetadata& m = doc.metadata;
    setStringIfSet(w, "optional title", m.title);
    setStringIfSet(w, "ASCII formula", m.formula);
    setStringIfSet(w, "SMILES string", m.smiles);
    setStringIfSet(w, "solvent", m.solvent);
    setStringIfSet(w, "pulse sequence", m.pulseSequence);
    if (m.temperature != 0.0f) plist::setReal(w, "temperature", m.temperature);
    // The first page's record lives here; "pages" holds the pages after it.
    addPageRecordKeys(w, doc.page);
    return w;
}

void windowStateFromTree(const Value* w, SpectrumDocument& doc) {
    if (!w) return;
    using tree::child;
    WindowState& state = doc.windowState;
    integersFrom(child(w, "page and margins", plist::Kind::Array), state.pageAndMargins);
    state.hasBounds = integersFrom(child(w, "window bounds", plist::Kind::Array), state.bounds);
    if (const auto b = plist::booleanOf(plist::lookUp(w, "free size"))) state.freeSize = *b;
    if (const auto b = plist::booleanOf(plist::lookUp(w, "drawer"))) state.drawer = *b;
    state.pageNumber = static_cast<int>(tree::integerOr(w, "page number", 0));
    SampleMetadata& m = doc.metadata;
    m.title = tree::stringOr(w, "optional title");
    m.formula = tree::stringOr(w, "ASCII formula");
    m.smiles = tree::stringOr(w, "SMILES string");
    m.solvent = tree::stringOr(w, "solvent");
    m.pulseSequence = tree::stringOr(w, "pulse sequence");
    m.temperature = static_cast<float>(tree::number(w, "temperature").value_or(0.0));
    doc.page = pageRecordFromTree(w);
}

bool isWindowStateKey(std::string_view key) {
    static constexpr std::string_view kKeys[] = {
        "page and margins", "free size",      "drawer",        "page number",
        "window bounds",    "optional title", "ASCII formula", "SMILES string",
        "solvent",          "pulse sequence", "temperature"};
    for (std::string_view k : kKeys)
        if (k == key) return true;
    return isPageRecordKey(key);
}

plist::Value* xyzIndexToTree(const SpectrumSource& source) {
    Value* xyz = plist::createArray();
    for (int8_t i : {source.xIndex, source.yIndex, source.zIndex}) plist::appendInteger(xyz, i);
    return xyz;
}

plist::Value* pagesToTree() {
    return plist::createArray();
}

}  // namespace zolt
