#include "io/nucleus_label.h"

#include <algorithm>

namespace zolt {

namespace {

// The isotope observed when a label gives the element alone.
int usualIsotope(char element) {
    switch (element) {
        case 'H':
            return 1;
        case 'C':
            return 13;
        case 'N':
            return 15;
        case 'F':
            return 19;
        case 'P':
            return 31;
        default:
            return 0;
    }
}

}  // namespace

bool setNucleusFromLabel(DimensionRecord& axis, std::string_view label) {
    size_t i = 0;
    while (i < label.size() && label[i] == ' ') ++i;
    int mass = 0;
    bool hasMass = false;
    for (; i < label.size() && label[i] >= '0' && label[i] <= '9'; ++i) {
        mass = std::min(mass * 10 + (label[i] - '0'), 255);
        hasMass = true;
    }
    if (i >= label.size() || static_cast<unsigned char>(label[i]) < 'A') return false;
    axis.atom[0] = label[i];
    axis.atom[1] =
        i + 1 < label.size() && label[i + 1] >= 'a' && label[i + 1] <= 'z' ? label[i + 1] : 0;
    if (!hasMass) mass = axis.atom[1] ? 0 : usualIsotope(label[i]);
    axis.isotope = static_cast<uint8_t>(mass);
    return true;
}

}  // namespace zolt
