// The processing record and its log as the document file keeps them.
#include "document/processing_section.h"

#include <optional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "document/processing_log.h"
#include "document/processing_steps.h"
#include "document/tree_reading.h"

namespace zolt {

plist::Value* processingToTree(const ProcessingRecord& record) {
    plist::Value* p = plist::createDictionary();
    plist::addToDictionary(p, "steps", saveSteps(record.steps));
    plist::setInteger(p, "operations performed", static_cast<int32_t>(record.doneMask));
    return p;
}

bool processingFromTree(const plist::Value* p, ProcessingRecord& record) {
    if (!p) return true;
    record.doneMask = static_cast<uint32_t>(tree::integerOr(p, "operations performed", 0));
    const plist::Value* steps = plist::lookUp(p, "steps");
    if (!steps) return true;
    std::optional<std::vector<ProcessingStep>> loaded = loadSteps(steps);
    if (!loaded) return false;
    record.steps = std::move(*loaded);
    return true;
}

plist::Value* performedProcessingToTree(const SpectrumDocument& doc) {
    const std::string log =
        processingLog(doc.processing, [&doc](int d) { return int64_t{doc.matrix.dims[d].points}; });
    plist::Value* lines = plist::createArray();
    std::istringstream in(log);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty()) plist::appendToArray(lines, plist::createString(line));
    }
    return lines;
}

}  // namespace zolt
