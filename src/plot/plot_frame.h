// One plot of a page as it is drawn: its box, the part of it the data take, where the ppm
// values of each axis fall, and the pens' colours and the font of the page.
#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <vector>

#include "model/display_record.h"
#include "plot/axis_map.h"

namespace zolt {

struct PlotFrame {
    QRectF box;
    QRectF data;  // the box less the room its scales take inside it
    std::vector<SegmentMap> x, y;
    // Hz per ppm (the carrier in MHz) of each axis when the page's scales are in Hz, else 0.
    double xHzPerPpm = 0.0, yHzPerPpm = 0.0;
    QColor color1, color2;
    QFont font;
    int palette = 1;
    double titleRoom = 0.0;  // the height the page's title takes at the top of the box
};

inline QColor pageColor(const std::array<uint16_t, 3>& rgb) {
    return QColor::fromRgba64(rgb[0], rgb[1], rgb[2]);
}

}  // namespace zolt
