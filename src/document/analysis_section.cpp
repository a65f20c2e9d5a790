// The measurements kept with a document: its peak list and its multiplets.
#include "document/analysis_section.h"

#include <algorithm>

namespace zolt {

namespace {

template <size_t N>
void appendPoints(plist::Value* array, const std::vector<std::array<float, N>>& list) {
    for (const auto& p : list) {
        plist::Value* point = plist::createArray();
        for (float v : p) plist::appendReal(point, v);
        plist::appendToArray(array, point);
    }
}

template <size_t N>
bool readPoint(const plist::Value* v, std::vector<std::array<float, N>>& list) {
    if (v->items.size() != N) return false;
    std::array<float, N> p{};
    for (size_t a = 0; a < N; ++a) {
        const auto x = plist::numberOf(v->items[a]);
        if (!x) return false;
        p[a] = static_cast<float>(*x);
    }
    list.push_back(p);
    return true;
}

}  // namespace

plist::Value* peaksToTree(const PeakLists& peaks) {
    plist::Value* array = plist::createArray();
    for (float p : peaks.oneD) plist::appendReal(array, p);
    appendPoints(array, peaks.twoD);
    appendPoints(array, peaks.threeD);
    return array;
}

plist::Value* multipletsToTree() {
    return plist::createArray();
}

PeakLists peaksFromTree(const plist::Value* array) {
    PeakLists peaks;
    if (!array || array->kind != plist::Kind::Array) return peaks;
    for (const plist::Value* v : array->items) {
        if (!v) continue;
        if (v->kind == plist::Kind::Array) {
            readPoint(v, peaks.twoD) || readPoint(v, peaks.threeD);
        } else if (const auto x = plist::numberOf(v)) {
            peaks.oneD.push_back(static_cast<float>(*x));
        }
    }
    // Kept ascending, whatever the file held.
    std::sort(peaks.oneD.begin(), peaks.oneD.end());
    return peaks;
}

bool sameLists(const PeakLists& a, const PeakLists& b) {
    return a.oneD == b.oneD && a.twoD == b.twoD && a.threeD == b.threeD;
}

}  // namespace zolt
