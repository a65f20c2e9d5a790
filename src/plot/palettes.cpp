#include "plot/palettes.h"

#include <QColor>
#include <algorithm>
#include <cmath>

namespace zolt {

namespace {

// Below this share of the scale a point is left white, so that the noise does not tint the
// whole plane.
constexpr double kWhiteShare = 0.02;

int channel(double v) {
    return std::clamp(int(std::lround(v)), 0, 255);
}

// From white through `mid` to `end` as t goes from 0 to 1.
QRgb ramp(double t, QRgb mid, QRgb end) {
    const auto mix = [](int a, int b, double s) { return a + (b - a) * s; };
    if (t < 0.5) {
        const double s = t * 2;
        return qRgb(channel(mix(255, qRed(mid), s)), channel(mix(255, qGreen(mid), s)),
                    channel(mix(255, qBlue(mid), s)));
    }
    const double s = (t - 0.5) * 2;
    return qRgb(channel(mix(qRed(mid), qRed(end), s)), channel(mix(qGreen(mid), qGreen(end), s)),
                channel(mix(qBlue(mid), qBlue(end), s)));
}

// A hue sweep at full saturation, darker towards the top for the "thermometer".
QRgb hueSweep(double t, int hueFrom, int hueTo, int valueFrom, int valueTo) {
    return QColor::fromHsv(int(hueFrom + (hueTo - hueFrom) * t) % 360,
                           channel(80 + 175 * std::min(1.0, 3 * t)),
                           channel(valueFrom + (valueTo - valueFrom) * t))
        .rgb();
}

}  // namespace

QRgb paletteColour(int palette, double position) {
    const double t = std::clamp(std::fabs(position) / 255.0, 0.0, 1.0);
    if (!(t >= kWhiteShare)) return qRgb(255, 255, 255);  // NaN too
    const bool negative = position < 0;
    switch (((palette % kPaletteCount) + kPaletteCount) % kPaletteCount) {
        case 0:  // grey
            return negative ? ramp(t, qRgb(150, 150, 170), qRgb(40, 40, 70))
                            : ramp(t, qRgb(150, 150, 150), qRgb(0, 0, 0));
        case 1:  // brown & blue
            return negative ? ramp(t, qRgb(110, 150, 255), qRgb(20, 30, 150))
                            : ramp(t, qRgb(255, 120, 30), qRgb(110, 40, 0));
        case 2:  // red & blue
            return negative ? ramp(t, qRgb(100, 140, 255), qRgb(0, 0, 170))
                            : ramp(t, qRgb(255, 90, 90), qRgb(170, 0, 0));
        case 3:  // red & green
            return negative ? ramp(t, qRgb(110, 210, 110), qRgb(0, 110, 0))
                            : ramp(t, qRgb(255, 90, 90), qRgb(170, 0, 0));
        case 4:  // green & blue
            return negative ? ramp(t, qRgb(100, 140, 255), qRgb(0, 0, 170))
                            : ramp(t, qRgb(110, 210, 110), qRgb(0, 110, 0));
        case 5:  // phosphorescent: yellow-green glowing into white-hot, negatives violet
            return negative ? hueSweep(t, 260, 300, 200, 120) : hueSweep(t, 150, 60, 180, 255);
        case 6:  // galaxy: deep blue through violet to pink, negatives teal
            return negative ? hueSweep(t, 190, 160, 200, 110) : hueSweep(t, 240, 330, 220, 140);
        default:  // thermometer: blue, green, yellow, red; negatives from cyan to blue
            return negative ? hueSweep(t, 180, 240, 230, 140) : hueSweep(t, 200, 0, 230, 200);
    }
}

}  // namespace zolt
