#include "io/jcamp/jcamp_table_loading.h"

#include <vector>

#include "base/files.h"
#include "io/jcamp/jcamp_asdf.h"

namespace zolt {

namespace {

// The densest a real table gets: long runs of one value in the repeat form.
constexpr uint64_t kMaxValuesPerByte = 64;

}  // namespace

bool jcampTableFits(const SpectrumSource& source, uint64_t values, uint64_t fileSize) {
    if (fileSize <= source.headerSize) return false;
    return values <= (fileSize - source.headerSize) * kMaxValuesPerByte;
}

bool loadJcampTable(const SpectrumSource& source, SpectrumMatrix& m) {
    using namespace jcamp_options;
    const auto text = readWholeFile(source.rawPath, uint64_t{1} << 32);
    if (!text || text->size() <= source.headerSize) return false;
    const std::string_view table = std::string_view(*text).substr(source.headerSize);
    const bool reverse = source.blockSize & kReverseOrder;
    JcampTableOptions options;
    options.yDataOnly = source.blockSize & kYDataOnly;
    std::vector<JcampPage> pages;
    if (source.blockSize & kNtuples) {
        if (m.im.size() != m.re.size()) return false;
        pages.push_back({m.re.data(), m.re.size(), 1, reverse, source.yFactorReal});
        pages.push_back({m.im.data(), m.im.size(), 1, reverse, source.yFactorImaginary});
    } else {
        // One page holds every value: real data only.
        if (!m.im.empty()) return false;
        pages.push_back({m.re.data(), m.re.size(), 1, reverse, source.yFactorReal});
        options.onePagePerTable = false;
    }
    return decodeJcampTable(table, pages, options);
}

}  // namespace zolt
