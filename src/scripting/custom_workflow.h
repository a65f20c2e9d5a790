// A document's custom workflow: the script kept beside its data, run in place of the saved
// processing whenever the document is reopened, and the console's store and restore buttons
// that write and read it.
#pragma once

#include <string>

#include "model/spectrum_document.h"
#include "scripting/script_host.h"

namespace zolt {

inline constexpr const char* kNoInternalScriptCaption = "Could not find the internal script";
inline constexpr const char* kNoInternalScriptText = "to stop this alert: cw()";
inline constexpr const char* kWorkflowOnText = "Custom Workflow ON - cw() to disable";
inline constexpr const char* kFolderScriptName = "script.lua";

// The data file's full name + ".lua" for a loose native file (sample.fid.lua), otherwise
// "script.lua" in the data's folder; empty for a document without a data path.
std::string customScriptPath(const SpectrumDocument& doc);

// Puts the document's custom script into the input line and executes it as the Run button
// does; the message box above when the script is missing or the interpreter is not there.
// False when it could not run or failed.
bool runCustomWorkflow(ScriptHost& host, const SpectrumDocument& doc);

// Store button, for the front document: an existing custom script is opened with the system;
// otherwise the history is written to it, one entry a line, and the workflow is switched on.
void storeWorkflow(ScriptHost& host);
// Restore button: the front document's custom script into the input line, not run.
void restoreWorkflow(ScriptHost& host);

}  // namespace zolt
