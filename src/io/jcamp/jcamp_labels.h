// The labelled data records of a JCAMP-DX file ("##LABEL= value"), up to its first data table.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolt {

// The label of a record as compared: upper case, without blanks, hyphens, underscores and
// slashes, up to the "=" ("JCAMP-DX", "JCAMPDX" and "jcamp dx" are one label).
// `text` starts after the "##".
std::string normalisedLabel(std::string_view text);

struct JcampRecord {
    std::string label;  // normalised
    std::string value;  // trimmed, without "$$" comments, continuation lines joined by blanks
};

struct JcampHeader {
    // The records of the block that holds the data (a linked file's block of its own title).
    std::vector<JcampRecord> records;
    std::string dataLabel;    // "XYDATA" or "DATATABLE"
    std::string dataValue;    // "(X++(Y..Y))", "(X++(R..R)), XYDATA"
    uint64_t dataOffset = 0;  // where the first data line starts

    // The first record of the label; null when there is none.
    const std::string* find(std::string_view label) const;
};

// Reads records up to the first data table; nothing when the file cannot be read or ends first.
std::optional<JcampHeader> readJcampHeader(const std::string& path);

// The comma- (or blank-) separated fields of a value: "4789.1, -118793" -> {"4789.1", "-118793"}.
std::vector<std::string> splitFields(std::string_view value);
// The value as a number; nothing for text that does not start with one.
std::optional<double> numberOf(std::string_view value);

}  // namespace zolt
