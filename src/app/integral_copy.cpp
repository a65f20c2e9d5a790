#include "app/integral_copy.h"

#include "analysis/integral_report.h"

namespace zolt {

void copyIntegrals(Application& app, const std::vector<const SpectrumDocument*>& docs) {
    if (docs.empty() || !docs.front()) return;
    Platform& platform = app.platform();
    bool midpoints = true;
    if (integralKind(*docs.front()) == 1)
        midpoints = platform.messageBox(kMidpointsQuestion, kMidpointsChoices,
                                        MessageButtons::YesNo) == MessageAnswer::Yes;
    const bool commas = app.preferences().has(pref_flags::kCommaSeparatedValues);
    platform.setClipboardText(integralReportText(docs, midpoints, 1.0, commas));
    plist::Ref list(integralReportList(docs, midpoints, 1.0));
    platform.setClipboardPropertyList(plist::write(list.get()));
    platform.beep();
}

}  // namespace zolt
