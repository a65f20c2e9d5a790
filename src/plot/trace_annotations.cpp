#include "plot/trace_annotations.h"

#include <QFontMetricsF>
#include <QPolygonF>
#include <algorithm>
#include <cmath>

#include "analysis/integration.h"

namespace zolt {

namespace {

constexpr double kLabelGap = 4.0;
// The highest curve reaches this share of the data's height.
constexpr double kIntegralHeight = 0.3;
constexpr double kIntegralLift = 8.0;

const SegmentMap* segmentHolding(const std::vector<SegmentMap>& segments, double ppm) {
    for (const SegmentMap& s : segments)
        if (s.holds(ppm)) return &s;
    return nullptr;
}

QString peakText(const SpectrumDocument& doc, const DisplayParameters& plot, float ppm) {
    const DimensionRecord& d = doc.matrix.dims[std::clamp<int>(doc.matrix.xIndex, 1, 3)];
    if (plot.flags & display_flags::kHzLabels)
        return QString::number(double(ppm) * d.carrier, 'f', 1);
    // Enough digits to tell apart neighbouring points.
    const double step = std::fabs(ppmStep(d));
    const int digits = std::clamp(int(std::ceil(-std::log10(step > 0 ? step : 1.0))), 2, 3);
    return QString::number(double(ppm), 'f', digits);
}

// Label positions along the axis: each as near its peak as it can be with at least `gap`
// between neighbours; a run of crowded labels is centred on its peaks.
std::vector<double> spreadLabels(const std::vector<double>& wanted, double gap) {
    struct Run {
        size_t first, count;
        double start, sum;
    };
    std::vector<Run> runs;
    for (size_t i = 0; i < wanted.size(); ++i) {
        runs.push_back({i, 1, wanted[i], wanted[i]});
        // Merge with the run before while they overlap, re-centring the merged run.
        while (runs.size() > 1) {
            Run& b = runs.back();
            Run& a = runs[runs.size() - 2];
            if (a.start + double(a.count) * gap <= b.start) break;
            a.count += b.count;
            a.sum += b.sum;
            a.start = a.sum / double(a.count) - (double(a.count) - 1) * gap / 2;
            runs.pop_back();
        }
    }
    std::vector<double> at;
    for (const Run& r : runs)
        for (size_t k = 0; k < r.count; ++k) at.push_back(r.start + double(k) * gap);
    return at;
}

}  // namespace

double peakLabelBand(const QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                     const PlotFrame& f) {
    const bool text = plot.flags & display_flags::kFrequencies;
    if (!text && !(plot.flags & display_flags::kLabels)) return 0.0;
    const QFontMetricsF metrics(p.font());
    double longest = -1.0;
    for (float ppm : doc.peaks.oneD)
        if (segmentHolding(f.x, ppm))
            longest =
                std::max(longest, text ? metrics.horizontalAdvance(peakText(doc, plot, ppm)) : 0.0);
    if (longest < 0.0) return 0.0;
    // The leader's knee and the gaps above and below the text.
    return std::min(longest + 8 * kLabelGap, 0.4 * f.data.height());
}

void drawPeakLabels(QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                    const PlotFrame& f, const IntensityMap& im) {
    const bool text = plot.flags & display_flags::kFrequencies;
    const bool leaders = plot.flags & display_flags::kLabels;
    if (!text && !leaders) return;
    const QFontMetricsF metrics(p.font());
    std::vector<float> peaks = doc.peaks.oneD;
    std::sort(peaks.begin(), peaks.end(), std::greater<float>());  // left to right
    struct Label {
        double x, top;
        QString text;
    };
    p.save();
    p.setPen(QPen(f.color1, 0));
    for (const SegmentMap& s : f.x) {
        const std::vector<ColumnExtremes> columns = segmentColumns(doc.matrix, s);
        if (columns.empty()) continue;
        std::vector<Label> labels;
        std::vector<double> wanted;
        double longest = 0.0;
        for (float ppm : peaks) {
            if (!s.holds(ppm)) continue;
            const double x = s.pixel(ppm);
            const auto c = static_cast<size_t>(
                std::clamp(x - std::floor(s.pixelA), 0.0, double(columns.size() - 1)));
            // A trace amplified beyond the top is cut off at the top of the intensity map.
            const double top = std::max(im.yBottom - im.height, im.y(columns[c].high)) - kLabelGap;
            labels.push_back({x, top, peakText(doc, plot, ppm)});
            wanted.push_back(x);
            longest = std::max(longest, metrics.horizontalAdvance(labels.back().text));
        }
        const std::vector<double> at = spreadLabels(wanted, metrics.height());
        // Every label of a crowded run starts at one height, above the run's highest peak.
        for (size_t i = 0; i < labels.size();) {
            size_t j = i + 1;
            double top = labels[i].top;
            while (j < labels.size() && at[j] - at[j - 1] <= metrics.height() + 0.01)
                top = std::min(top, labels[j++].top);
            const bool moved = j - i > 1 || std::fabs(at[i] - labels[i].x) > 0.5;
            const double knee = top - (moved ? 4 : 1) * kLabelGap;
            const double wantedBase = knee - 2 * kLabelGap;
            const double base = std::max(wantedBase, f.box.top() + longest + kLabelGap);
            // Labels pushed down by the top of the box would lie on their peaks: they move
            // beside them.
            const double aside = base > wantedBase ? 0.8 * metrics.height() : 0.0;
            for (size_t k = i; k < j; ++k) {
                const Label& l = labels[k];
                const double x = at[k] + aside;
                if (leaders)
                    p.drawPolyline(QPolygonF{{l.x, l.top},
                                             {l.x, std::min(l.top, knee)},
                                             {at[k], std::min(l.top, knee) - kLabelGap},
                                             {at[k], base + 1}});
                if (!text) continue;
                p.save();
                p.translate(x + metrics.ascent() / 2 - 1, base);
                p.rotate(-90);
                // Integral curves passing behind a label leave it readable.
                p.fillRect(QRectF(0, -metrics.ascent(), metrics.horizontalAdvance(l.text),
                                  metrics.ascent() + metrics.descent()),
                           Qt::white);
                p.drawText(QPointF(0, 0), l.text);
                p.restore();
            }
            i = j;
        }
    }
    p.restore();
}

void drawIntegrals(QPainter& p, const SpectrumDocument& doc, const DisplayParameters& plot,
                   const PlotFrame& f, const IntensityMap& im) {
    const bool curves = plot.flags & display_flags::kIntegralsAsCurves;
    const bool values = plot.flags & display_flags::kIntegralsAsValues;
    const SpectrumMatrix& m = doc.matrix;
    const int xf = m.xIndex;
    if ((!curves && !values) || xf < 1 || xf > 3) return;
    const DimensionRecord& d = m.dims[xf];
    if (d.points == 0 || m.re.size() < m.planeOffset + d.points) return;
    const float* row = m.re.data() + m.planeOffset;

    struct Curve {
        size_t first = 0;
        std::vector<double> sums;
        double value = 0.0;
        float ppm = 0.0f;
    };
    std::vector<Curve> list;
    double largest = 0.0;
    for (const IntegralRegion& r : doc.integrals) {
        if (r.dimensions() != 1) continue;
        size_t a = integralLimitIndex(d, r.fields[0]), b = integralLimitIndex(d, r.fields[1]);
        if (a > b) std::swap(a, b);
        Curve c{a, {}, integrateRegion(m, {xf, 0, 0}, r), (r.fields[0] + r.fields[1]) / 2};
        double sum = 0.0;
        for (size_t i = a; i < b; ++i) c.sums.push_back(sum += row[i]);
        largest = std::max(largest, std::fabs(sum));
        list.push_back(std::move(c));
    }
    if (list.empty()) return;
    const double zero = std::min(im.y(0.0), f.data.bottom()) - kIntegralLift;
    const double scale = largest > 0 ? kIntegralHeight * f.data.height() / largest : 0.0;
    const QFontMetricsF metrics(p.font());
    p.save();
    p.setPen(QPen(f.color2, 0));
    struct Value {
        double x;
        QString text;
    };
    std::vector<Value> shown;
    double widest = 0.0;
    for (const Curve& c : list) {
        if (curves) {
            QPolygonF line;
            for (size_t k = 0; k < c.sums.size(); ++k) {
                const double ppm = ppmOfPoint(d, double(c.first + k));
                if (const SegmentMap* s = segmentHolding(f.x, ppm))
                    line << QPointF(s->pixel(ppm), zero - c.sums[k] * scale);
            }
            p.drawPolyline(line);
        }
        const SegmentMap* s = segmentHolding(f.x, c.ppm);
        if (!values || !s) continue;
        const double normal =
            doc.page.integralNormalization != 0 ? doc.page.integralNormalization : 1.0;
        const QString text =
            QString::number(c.value / normal, 'f', std::clamp<int>(doc.page.integralDigits, 0, 9));
        widest = std::max(widest, metrics.horizontalAdvance(text));
        shown.push_back({s->pixel(c.ppm), text});
    }
    // Values of neighbouring regions would print over each other: they are spread like the
    // peak labels, each run of crowded ones centred on its regions.
    std::sort(shown.begin(), shown.end(), [](const Value& a, const Value& b) { return a.x < b.x; });
    std::vector<double> wanted;
    for (const Value& v : shown) wanted.push_back(v.x);
    const std::vector<double> at = spreadLabels(wanted, widest + metrics.averageCharWidth());
    const double baseline = f.data.bottom() + kTraceScaleBand - metrics.descent() - 1;
    for (size_t i = 0; i < shown.size(); ++i)
        p.drawText(QPointF(at[i] - metrics.horizontalAdvance(shown[i].text) / 2, baseline),
                   shown[i].text);
    p.restore();
}

void drawMarks(QPainter& p, const SpectrumDocument& doc, const PlotFrame& f, bool map) {
    p.save();
    p.setPen(QPen(f.color2, 0, Qt::DashLine));
    for (float ppm : doc.marks[0])
        if (const SegmentMap* s = segmentHolding(f.x, ppm))
            p.drawLine(QLineF(s->pixel(ppm), f.data.top(), s->pixel(ppm), f.data.bottom()));
    if (map)
        for (float ppm : doc.marks[1])
            if (const SegmentMap* s = segmentHolding(f.y, ppm))
                p.drawLine(QLineF(f.data.left(), s->pixel(ppm), f.data.right(), s->pixel(ppm)));
    p.restore();
}

}  // namespace zolt
