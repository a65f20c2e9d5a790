#include "document/integral_section.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "document/tree_reading.h"

namespace zolt {
namespace {

constexpr const char* kRegionsKey = "integral regions";

// A saved real as a field: beyond the float range it is the largest float of its sign, so
// that the conversion is always defined.
std::optional<float> fieldOf(const plist::Value* v) {
    const std::optional<double> x = plist::numberOf(v);
    if (!x) return std::nullopt;
    constexpr double top = std::numeric_limits<float>::max();
    return static_cast<float>(std::isnan(*x) ? *x : std::clamp(*x, -top, top));
}

std::optional<IntegralRegion> regionOf(const plist::Value* entry) {
    if (!entry || entry->kind != plist::Kind::Array || entry->items.size() != 6)
        return std::nullopt;
    IntegralRegion r;
    for (size_t k = 0; k < 6; ++k) {
        const std::optional<float> f = fieldOf(entry->items[k]);
        if (!f) return std::nullopt;
        r.fields[k] = *f;
    }
    return r;
}

}  // namespace

void addIntegralSection(plist::Value* root, const SpectrumDocument& doc) {
    if (!doc.integrals.empty()) {
        plist::Value* list = plist::setArray(root, kRegionsKey);
        for (const IntegralRegion& r : doc.integrals) {
            plist::Value* fields = plist::createArray();
            for (const float f : r.fields) plist::appendReal(fields, f);
            plist::appendToArray(list, fields);
        }
    }
}

void integralSectionFromTree(const plist::Value* root, SpectrumDocument& doc) {
    doc.integrals.clear();
    if (const plist::Value* list = tree::child(root, kRegionsKey, plist::Kind::Array))
        for (const plist::Value* entry : list->items)
            if (auto r = regionOf(entry)) doc.integrals.push_back(*r);
}

bool isIntegralSectionKey(std::string_view key) {
    return key == kRegionsKey;
}

}  // namespace zolt
