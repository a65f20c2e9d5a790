// The front document's share of the command table: the commands it takes, run through the same
// operations as their script twins, and what it enables and checks when a menu opens.
#pragma once

#include <string>
#include <vector>

#include "app/application.h"
#include "app/menu_enabling.h"
#include "operations/operation_result.h"

namespace zolt {

namespace command_ids {
// Format > Level && Colors...: the document window opens its dialog.
inline constexpr int kLevelsColors = 404;
}  // namespace command_ids

struct DocumentCommand {
    bool handled = false;  // the document takes the command; otherwise the frame goes on
    OperationResult result;
};

// The document-level commands that need no window (data, display, integrals, peaks, saving,
// clipboard tables). Messages are shown by the caller; the clipboard copies beep here.
DocumentCommand runDocumentCommand(Application& app, SpectrumDocument& doc, int id);

// What the document enables and checks in a menu, for the commands above.
std::vector<ItemState> documentMenuItems(Menu menu, const SpectrumDocument& doc);

// What the document's window shows as its title: the data set rather than the path of its
// window name ("cyclosporin_hsqc/3" for ".../data/cyclosporin_hsqc/3", "aspirin.dx"), with
// the name's "EXTRACT of " prefixes; a document without data keeps its name.
std::string dataSetTitle(const SpectrumDocument& doc);

// Revert to Saved: the document read again from its document file; false when it has none or
// it cannot be read (the message is shown).
bool revertToSaved(Application& app, SpectrumDocument& doc);

}  // namespace zolt
