// The plain conversions of a display-parameter record.
#include "model/display_record.h"

namespace zolt {

VerticalRange verticalRange(const DisplayParameters& plot) {
    const double perPixel = plot.threshold;
    return {-double(plot.auxiliaryScale) * perPixel,
            (double(plot.box[3]) - plot.auxiliaryScale) * perPixel};
}

}  // namespace zolt
