#include "plot/chessboard.h"

#include <algorithm>
#include <cmath>

#include "display/vertical_scale.h"

namespace zolt {

namespace {

// A field is never smaller than this many pixels, and holds at least one point.
constexpr double kFieldPixels = 8.0;
const QColor kDarkField(238, 238, 238);

// The fields along one segment of an axis: the point range each covers and its pixels.
struct Field {
    size_t first, last;  // points, last exclusive
    double pixelA, pixelB;
};
std::vector<Field> fieldsOf(const DimensionRecord& d, const SegmentMap& s) {
    std::vector<Field> fields;
    const double a = pointPosition(d, s.ppmA), b = pointPosition(d, s.ppmB);
    const double lo = std::max(0.0, std::round(std::min(a, b)));
    const double hi = std::min(double(d.points), std::round(std::max(a, b)) + 1);
    if (!(hi > lo)) return fields;
    const double pixelsPerPoint = std::fabs(s.pixelB - s.pixelA) / std::max(1.0, std::fabs(b - a));
    const auto per = static_cast<size_t>(std::max(1.0, std::ceil(kFieldPixels / pixelsPerPoint)));
    for (auto i = static_cast<size_t>(lo); i < static_cast<size_t>(hi); i += per) {
        const size_t j = std::min(i + per, static_cast<size_t>(hi));
        const double pa = s.pixel(ppmOfPoint(d, double(i) - 0.5));
        const double pb = s.pixel(ppmOfPoint(d, double(j) - 0.5));
        fields.push_back({i, j, std::min(pa, pb), std::max(pa, pb)});
    }
    return fields;
}

// The value of largest magnitude in a field (the first of equal ones).
float extreme(const GridWindow& g, const Field& rows, const Field& columns) {
    float best = 0.0f;
    for (size_t r = rows.first; r < rows.last; ++r)
        for (size_t c = columns.first; c < columns.last; ++c) {
            const float v = g.value(r, c);
            if (std::fabs(v) > std::fabs(best)) best = v;
        }
    return best;
}

}  // namespace

int levelsReached(float value, const std::vector<float>& positive,
                  const std::vector<float>& negative) {
    if (value > 0.0f)
        return int(std::upper_bound(positive.begin(), positive.end(), value) - positive.begin());
    if (value < 0.0f)
        return int(
            std::upper_bound(negative.begin(), negative.end(), value, std::greater<float>()) -
            negative.begin());
    return 0;
}

void drawChessboard(QPainter& p, const Plane& pl, const DisplayParameters& plot,
                    const PlotFrame& f) {
    const ContourLevels levels = contourLevels(plot);
    const double most = double(std::max(levels.positive.size(), levels.negative.size()));
    p.save();
    p.setPen(Qt::NoPen);
    p.setRenderHint(QPainter::Antialiasing, false);
    for (const SegmentMap& sx : f.x)
        for (const SegmentMap& sy : f.y) {
            const auto columns = fieldsOf(*pl.x, sx);
            const auto rows = fieldsOf(*pl.y, sy);
            p.setClipRect(
                QRectF(QPointF(sx.pixelA, sy.pixelA), QPointF(sx.pixelB, sy.pixelB)).normalized());
            for (size_t i = 0; i < rows.size(); ++i)
                for (size_t j = 0; j < columns.size(); ++j) {
                    const QRectF field(QPointF(columns[j].pixelA, rows[i].pixelA),
                                       QPointF(columns[j].pixelB, rows[i].pixelB));
                    if ((i + j) % 2 == 0) p.fillRect(field, kDarkField);
                    const float v = extreme(pl.grid, rows[i], columns[j]);
                    const int reached = levelsReached(v, levels.positive, levels.negative);
                    if (reached == 0 || most <= 0) continue;
                    // The side grows with the square root of the levels reached, so that the
                    // area does with their number.
                    const double share = std::sqrt(double(reached) / most);
                    const double w = field.width() * share, h = field.height() * share;
                    p.fillRect(QRectF(field.center().x() - w / 2, field.center().y() - h / 2, w, h),
                               v > 0 ? f.color1 : f.color2);
                }
        }
    p.restore();
}

}  // namespace zolt
