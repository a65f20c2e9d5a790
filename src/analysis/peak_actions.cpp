#include "analysis/peak_actions.h"

namespace zolt {

namespace {

template <size_t N>
void append(std::vector<std::array<float, N>>& list, const std::array<float, 3>& p) {
    std::array<float, N> q{};
    for (size_t a = 0; a < N; ++a) q[a] = p[a];
    list.push_back(q);
}

template <size_t N>
PeakActionResult run(std::vector<std::array<float, N>>& list, const SpectrumMatrix& m,
                     const PeakAxes& axes, const std::optional<PpmBox>& selection,
                     PeakPickingOptions& options) {
    const auto pick = [&](const PpmBox& box) {
        PickedPeaks picked = pickPeaks(m, axes, box, options);
        for (const auto& p : picked.peaks) append(list, p);
        return PeakActionResult{true, picked.tooMany};
    };
    switch (PeakAction(options.action)) {
        case PeakAction::ScanSpectrum:
            list.clear();
            return pick(kWholeSpectrum);
        case PeakAction::ClearAll:
            list.clear();
            return {true};
        case PeakAction::SaveOptions:
            return {};
        case PeakAction::UndoHighest:
            if (list.empty()) return {};
            list.pop_back();
            return {true};
        default:
            break;
    }
    if (!selection) return {};
    switch (PeakAction(options.action)) {
        case PeakAction::ClearSelection:
            deleteInside(list, *selection);
            return {true};
        case PeakAction::ScanSelection:
            deleteInside(list, *selection);
            return pick(*selection);
        case PeakAction::PickSelection:
            return pick(*selection);
        case PeakAction::AddHighest:
            append(list, highestPoint(m, axes, *selection));
            return {true};
        default:
            return {};
    }
}

}  // namespace

PeakActionResult runPeakAction(PeakLists& lists, const SpectrumMatrix& m, const PeakAxes& axes,
                               const std::optional<PpmBox>& selection,
                               PeakPickingOptions& options) {
    if (options.dimensions == 3) return run(lists.threeD, m, axes, selection, options);
    return run(lists.twoD, m, axes, selection, options);
}

}  // namespace zolt
