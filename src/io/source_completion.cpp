#include "io/source_completion.h"

#include <algorithm>

namespace zolt {

void completeSource(SpectrumSource& source) {
    const int start = std::clamp<int>(source.xIndex, 0, 3);
    for (int f = start; f <= 3; ++f) {
        DimensionRecord& axis = source.dims[f];
        if (axis.points <= 1) {
            axis.points = 1;
            continue;
        }
        if (f != source.xIndex) {
            source.zIndex = source.yIndex;
            source.yIndex = source.xIndex;
            source.xIndex = static_cast<int8_t>(f);
        }
        // Written as "not at least" so that a NaN is replaced too.
        if (!(axis.spectralWidth >= 0.01f)) axis.spectralWidth = 10.0f;
        if (!(axis.carrier >= 1.0f)) axis.carrier = 1.0f;
    }
    if (source.blockSize == 0) source.blockSize = kDefaultBlockSize;
}

}  // namespace zolt
