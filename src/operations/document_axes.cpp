#include "operations/document_axes.h"

namespace zolt {

int horizontalAxis(const SpectrumDocument& doc) {
    const int x = doc.matrix.xIndex;
    return x >= 1 && x <= 3 ? x : 1;
}

int frequencyAxes(const SpectrumMatrix& m) {
    int n = 0;
    for (int f = 1; f <= 3; ++f) n += countsAsDimension(m.dims[f]);
    return n;
}

}  // namespace zolt
