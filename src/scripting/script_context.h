// What the script host reaches outside the interpreter; the application provides it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/peak_options.h"
#include "model/spectrum_document.h"

namespace zolt {

class ScriptContext {
public:
    virtual ~ScriptContext() = default;

    // The open documents, front-most first.
    virtual std::vector<SpectrumDocument*> documents() = 0;
    // The members of a container document in their order; none for other documents.
    virtual std::vector<SpectrumDocument*> containerMembers(SpectrumDocument&) { return {}; }
    virtual void bringToFront(SpectrumDocument& document) = 0;
    // A new empty document in front of the others, or nullptr when none can be made.
    virtual SpectrumDocument* newDocument() = 0;
    // A file, or every recognised data set inside a folder; the number of documents opened.
    virtual int open(const std::string& path) = 0;
    // Reads the document's data again from its files; false leaves it as it was.
    virtual bool reload(SpectrumDocument& document, bool clearProcessedChoice) = 0;

    virtual void message(std::string_view caption, std::string_view text) = 0;
    virtual std::string clipboardText() = 0;
    virtual void setClipboardText(std::string_view text) = 0;
    // Opens a file with the program the system associates with it.
    virtual void openWithSystem(const std::string& /*path*/) {}

    // Empty when there is no folder for scripts.
    virtual std::string scriptsFolder() = 0;
    virtual std::string consoleShortcuts() = 0;

    // Each line as it enters the console log (the headless program echoes it).
    virtual void logAppended(std::string_view /*line*/) {}
    // The console's "for all documents" box follows the flag.
    virtual void applyToAllChanged(bool /*on*/) {}
    // The stored 2-D picking options for a threshold of 1 (upper = the stored ratio), and the
    // fewest display points a 1-D peak must rise above the baseline.
    virtual PeakPickingOptions peakPickingOptions() { return loadPeakOptions(nullptr, 1.0f); }
    virtual int peakPickingMinimum() { return 4; }
    // Writes a picture of the document's page in the format of the four-character type (else
    // by the path's extension); false when there is no drawing here or writing failed.
    virtual bool savePicture(SpectrumDocument& /*document*/, const std::string& /*path*/,
                             std::string_view /*type*/) {
        return false;
    }
    // The document's window shows changed data.
    virtual void redraw(SpectrumDocument& /*document*/) {}
};

}  // namespace zolt
