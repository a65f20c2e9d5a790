#include "model/spectrum_matrix.h"

namespace zolt {

size_t pointProduct(const std::array<DimensionRecord, 4>& dims) {
    size_t n = 1;
    for (const auto& d : dims) n *= d.points ? d.points : 1;
    return n;
}

int directFIndex(const std::array<DimensionRecord, 4>& dims) {
    for (int f = 3; f >= 1; --f)
        if (dims[f].points > 1) return f;
    return 0;
}

size_t SpectrumMatrix::pointCount() const {
    return pointProduct(dims);
}

}  // namespace zolt
