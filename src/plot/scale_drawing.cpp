#include "plot/scale_drawing.h"

#include <QFontMetricsF>
#include <cmath>

#include "display/scale_ticks.h"

namespace zolt {

namespace {

constexpr double kMajorTick = 6.0, kMinorTick = 3.0;
// Room each label wants along the scale, so that labels never touch.
constexpr double kLabelSpacing = 80.0, kDenseLabelSpacing = 50.0, kVerticalLabelSpacing = 40.0;

// A segment in the scale's unit: ppm, or Hz with a carrier (MHz, Hz per ppm) given.
struct UnitSegment {
    SegmentMap ppm;
    double perPpm = 1.0;

    double pixel(double value) const { return ppm.pixel(value / perPpm); }
    bool holds(double value) const { return ppm.holds(value / perPpm); }
};

UnitSegment inUnit(const SegmentMap& s, double hzPerPpm) {
    return {s, hzPerPpm > 0.0 && std::isfinite(hzPerPpm) ? hzPerPpm : 1.0};
}

QString unitName(double hzPerPpm) {
    return hzPerPpm > 0.0 ? "Hz" : "ppm";
}

ScaleTicks segmentTicks(const UnitSegment& u, double spacing) {
    const double pixels = std::fabs(u.ppm.pixelB - u.ppm.pixelA);
    const double labels = std::max(1.0, pixels / spacing);
    const double a = u.ppm.ppmA * u.perPpm, b = u.ppm.ppmB * u.perPpm;
    return chooseTicks(a, b, std::fabs(b - a) / labels);
}

void drawGridLine(QPainter& p, const QLineF& line) {
    p.save();
    p.setPen(QPen(QColor(200, 200, 200), 0, Qt::DotLine));
    p.drawLine(line);
    p.restore();
}

}  // namespace

void drawHorizontalScale(QPainter& p, const PlotFrame& f, uint32_t flags) {
    const QFontMetricsF metrics(p.font());
    const double y = f.data.bottom();
    const double spacing =
        flags & display_flags::kMoreScaleLabels ? kDenseLabelSpacing : kLabelSpacing;
    for (const SegmentMap& segment : f.x) {
        const UnitSegment s = inUnit(segment, f.xHzPerPpm);
        p.drawLine(QLineF(segment.pixelA, y, segment.pixelB, y));
        const ScaleTicks ticks = segmentTicks(s, spacing);
        for (const Tick& t : tickList(ticks)) {
            if (!s.holds(t.value)) continue;
            const double x = s.pixel(t.value);
            if (t.major && (flags & display_flags::kGrid))
                drawGridLine(p, QLineF(x, f.data.top(), x, y));
            p.drawLine(QLineF(x, y, x, y + (t.major ? kMajorTick : kMinorTick)));
            if (!t.major) continue;
            const QString label = QString::fromStdString(tickLabel(ticks, t.value));
            const double w = metrics.horizontalAdvance(label);
            p.drawText(QPointF(x - w / 2, y + kMajorTick + metrics.ascent() + 1), label);
        }
    }
    if (!(flags & display_flags::kHideScaleUnit) && !f.x.empty()) {
        const QString unit = unitName(f.xHzPerPpm);
        const double x = f.x.back().pixelB - metrics.horizontalAdvance(unit);
        p.drawText(QPointF(x, y + kMajorTick + 2 * metrics.height() + 1), unit);
    }
}

void drawVerticalScale(QPainter& p, const PlotFrame& f, uint32_t flags) {
    const QFontMetricsF metrics(p.font());
    const double x = f.data.left();
    for (const SegmentMap& segment : f.y) {
        const UnitSegment s = inUnit(segment, f.yHzPerPpm);
        p.drawLine(QLineF(x, segment.pixelA, x, segment.pixelB));
        const ScaleTicks ticks = segmentTicks(s, kVerticalLabelSpacing);
        for (const Tick& t : tickList(ticks)) {
            if (!s.holds(t.value)) continue;
            const double y = s.pixel(t.value);
            if (t.major && (flags & display_flags::kGrid))
                drawGridLine(p, QLineF(x, y, f.data.right(), y));
            p.drawLine(QLineF(x - (t.major ? kMajorTick : kMinorTick), y, x, y));
            if (!t.major) continue;
            const QString label = QString::fromStdString(tickLabel(ticks, t.value));
            const double w = metrics.horizontalAdvance(label);
            p.drawText(QPointF(x - kMajorTick - 2 - w, y + metrics.ascent() / 2 - 1), label);
        }
    }
    if (!(flags & display_flags::kHideScaleUnit) && !f.y.empty()) {
        const QString unit = unitName(f.yHzPerPpm);
        p.drawText(QPointF(x - kMajorTick - 2 - metrics.horizontalAdvance(unit),
                           f.y.front().pixelA - metrics.descent() - 2),
                   unit);
    }
}

}  // namespace zolt
