#include "app/document_commands.h"

#include <numbers>

#include "app/command_table.h"
#include "app/document_opening.h"
#include "app/integral_copy.h"
#include "app/window_arrangement.h"
#include "document/processing_log.h"
#include "model/display_record.h"
#include "operations/analysis_tables.h"
#include "operations/baseline_operations.h"
#include "operations/data_operations.h"
#include "operations/display_operations.h"
#include "operations/integral_operations.h"
#include "operations/peak_operations.h"
#include "operations/phase_operations.h"
#include "operations/transform_operations.h"

namespace zolt {

using namespace command_ids;

namespace {

// Format > Fast Plot ... Chessboard, as the letters of bidi.
constexpr char kPlotModeLetters[] = "FCWSZAB";

bool transformed(const SpectrumDocument& doc) {
    return doc.source.numberType != NumberType::NoData && !inTimeDomain(doc);
}

bool hasData(const SpectrumDocument& doc) {
    return doc.source.numberType != NumberType::NoData;
}

uint32_t mainFlags(const SpectrumDocument& doc) {
    return doc.page.plots.empty() ? 0 : doc.page.plots.front().flags;
}

void copyText(Application& app, const std::string& text) {
    app.platform().setClipboardText(text);
    app.platform().beep();
}

std::optional<OperationResult> clipboardCommand(Application& app, SpectrumDocument& doc, int id) {
    const bool commas = app.preferences().has(pref_flags::kCommaSeparatedValues);
    switch (id) {
        case kCopyPeaks:
            copyText(app, peakTableText(doc, commas));
            return OperationResult{};
        case kCopyIntegrals:
            copyIntegrals(app, {&doc});
            return OperationResult{};
        case kCopyProcessing:
            copyText(app, processingLog(doc.processing, [&doc](int d) {
                         return int64_t{doc.matrix.dims[d].points};
                     }));
            return OperationResult{};
        default:
            return std::nullopt;
    }
}

std::optional<OperationResult> fileCommand(Application& app, SpectrumDocument& doc, int id) {
    switch (id) {
        case kSave:
            app.save(doc);
            return OperationResult{};
        case kSaveAll:
            for (SpectrumDocument* d : app.documents())
                if (d->flags & document_flags::kModified) app.save(*d);
            return OperationResult{};
        case kReload:
            return OperationResult{app.reload(doc, false), std::nullopt};
        case kRevertToSaved:
            return OperationResult{revertToSaved(app, doc), std::nullopt};
        default:
            return std::nullopt;
    }
}

std::optional<OperationResult> dataCommand(Application&, SpectrumDocument& doc, int id) {
    switch (id) {
        case kFull:
            return showWholeSpectrum(doc);
        case kIntegralValues:
            return toggleDisplayFlag(doc, display_flags::kIntegralsAsValues);
        case kIntegralCurves:
            return toggleDisplayFlag(doc, display_flags::kIntegralsAsCurves);
        case kIntegrateNow:
            return automaticIntegration(doc, AutoCutParameters{});
        case kDeleteIntegrals:
            return deleteIntegrals(doc, 0.0);
        case kPeakFrequencies:
            return toggleDisplayFlag(doc, display_flags::kFrequencies);
        case kRemoveFrequencies:
            return removePeaks(doc);
        case kPeakLabels:
            return toggleDisplayFlag(doc, display_flags::kLabels);
        case kFtNow:
            return weightAndTransform(doc, WeightAndTransform{});
        case kPhaseInversion:
            return changeDocumentPhase(doc, std::numbers::pi, 0.0);
        case kAutomaticPhase:
            return automaticPhase(doc, false);
        case kMagnitude:
            return setMagnitude(doc, !(doc.matrix.state & matrix_state::kMagnitude));
        case kAutomaticBaseline:
            return automaticBaseline(doc);
        case kStraightLine:
            return straightBaseline(doc);
        default:
            if (id >= kFastPlot && id <= kChessboard)
                return setPlotModeFromLetter(doc, kPlotModeLetters[id - kFastPlot]);
            return std::nullopt;
    }
}

}  // namespace

DocumentCommand runDocumentCommand(Application& app, SpectrumDocument& doc, int id) {
    for (auto* command : {clipboardCommand, fileCommand, dataCommand})
        if (auto result = command(app, doc, id)) return {true, *result};
    return {};
}

std::vector<ItemState> documentMenuItems(Menu menu, const SpectrumDocument& doc) {
    const bool data = hasData(doc), done = transformed(doc);
    const uint32_t shown = mainFlags(doc);
    auto item = [](int id, bool enabled, bool checked = false) {
        return ItemState{id, enabled, checked, {}};
    };
    switch (menu) {
        case Menu::File:
            return {item(kClose, true),
                    item(kSave, data),
                    item(kSaveAll, true),
                    item(kExport, data),
                    item(kReload, !doc.source.rawPath.empty()),
                    item(kRevertToSaved, !doc.documentPath.empty())};
        case Menu::Edit:
            return {item(kCopyPeaks, done), item(kCopyIntegrals, done),
                    item(kCopyProcessing, data)};
        case Menu::Format: {
            std::vector<ItemState> items;
            const bool twoD = done && countDimensions(doc.source) == 2;
            const uint32_t mode = shown & display_flags::kPlotModeMask;
            for (int id = kFastPlot; id <= kChessboard; ++id)
                items.push_back(item(id, twoD, twoD && mode == uint32_t(id - kFastPlot)));
            // A trace has a threshold and a ratio of its own too.
            items.push_back(item(kLevelsColors, data && !doc.page.plots.empty()));
            return items;
        }
        case Menu::View:
            return {item(kFull, data),
                    item(kIntegralValues, done, shown & display_flags::kIntegralsAsValues),
                    item(kIntegralCurves, done, shown & display_flags::kIntegralsAsCurves),
                    item(kIntegrateNow, done),
                    item(kDeleteIntegrals, !doc.integrals.empty()),
                    item(kPeakFrequencies, done, shown & display_flags::kFrequencies),
                    item(kRemoveFrequencies, done),
                    item(kPeakLabels, done, shown & display_flags::kLabels)};
        case Menu::Process:
            return {item(kFtNow, data && inTimeDomain(doc)),
                    item(kPhaseInversion, done),
                    item(kAutomaticPhase, done),
                    item(kMagnitude, done, doc.matrix.state & matrix_state::kMagnitude),
                    item(kAutomaticBaseline, done),
                    item(kStraightLine, done)};
        case Menu::Window:
            return {item(kTileVertically, true), item(kTileHorizontally, true),
                    item(kDoNotTile, true)};
        default:
            return {};
    }
}

std::string dataSetTitle(const SpectrumDocument& doc) {
    static constexpr std::string_view kExtract = "EXTRACT of ";
    std::string_view name = doc.windowName;
    size_t prefix = 0;
    while (name.substr(prefix).starts_with(kExtract)) prefix += kExtract.size();
    if (!hasData(doc)) return doc.windowName;
    const std::string_view path = name.substr(prefix);
    const size_t last = path.rfind('/');
    if (last == std::string_view::npos) return doc.windowName;
    size_t begin = last + 1;
    // A Bruker experiment number names nothing alone: its data set's folder goes with it.
    const std::string_view tail = path.substr(begin);
    if (!tail.empty() && tail.find_first_not_of("0123456789") == std::string_view::npos &&
        last > 0) {
        const size_t before = path.rfind('/', last - 1);
        begin = before == std::string_view::npos ? 0 : before + 1;
    }
    return std::string(name.substr(0, prefix)) + std::string(path.substr(begin));
}

bool revertToSaved(Application& app, SpectrumDocument& doc) {
    if (doc.documentPath.empty()) return false;
    Message failure;
    auto saved = readDocument(doc.documentPath, app.preferences(), failure);
    if (!saved) {
        app.platform().messageBox(failure.caption, failure.text);
        return false;
    }
    doc = std::move(*saved);
    return true;
}

}  // namespace zolt
