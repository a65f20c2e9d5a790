// The measurements kept with a document: its peak list and its multiplets.
#include "document/analysis_section.h"

namespace zolt {

plist::Value* peaksToTree() {
    return plist::createArray();
}

plist::Value* multipletsToTree() {
    return plist::createArray();
}

}  // namespace zolt
