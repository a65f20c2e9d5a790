// The data tables of JCAMP-DX files: lines of numbers in the ASCII squeezed difference form
// (ASDF) or plain (AFFN), decoded page by page into the loader's arrays.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace zolt {

// Where one page of values lands: `count` values `stride` floats apart from `first`, filled
// from the end when `reverse`, each multiplied by `factor`.
struct JcampPage {
    float* first = nullptr;
    size_t count = 0;
    size_t stride = 1;
    bool reverse = false;
    double factor = 1.0;
};

struct JcampTableOptions {
    bool yDataOnly = false;  // lines carry no X value
    // A page that fills up ends its table: what follows up to the next "##DATA TABLE" is
    // ignored and the next page starts there. Otherwise a page runs on across further
    // tables (the rows of a 2-D set), each table starting its difference check afresh.
    bool onePagePerTable = true;
};

// Decodes the data lines that start `text` (the line after the table's label). False when a
// table ends before its pages are full, holds a character outside the forms, or a line of the
// difference form does not repeat the value the previous line ended on.
bool decodeJcampTable(std::string_view text, std::span<const JcampPage> pages,
                      const JcampTableOptions& options);

}  // namespace zolt
