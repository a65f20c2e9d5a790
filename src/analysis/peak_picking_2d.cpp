#include "analysis/peak_picking_2d.h"

#include <cmath>

#include "processing/phase.h"

namespace zolt {

namespace {

// The points of one axis inside a selection, and how far apart they lie in the matrix.
struct AxisSpan {
    size_t first = 0, count = 1, stride = 0;
};

AxisSpan spanOf(const SpectrumMatrix& m, int f, const std::array<double, 2>& ppm, size_t total) {
    if (f < 1 || f > 3) return {};
    const DimensionRecord& d = m.dims[f];
    const int64_t a = pointOfPpm(d, ppm[0]), b = pointOfPpm(d, ppm[1]);
    const size_t lo = static_cast<size_t>(std::min(a, b)), hi = static_cast<size_t>(std::max(a, b));
    return {lo, hi - lo + 1, axisWalk(m, f, total).inner};
}

size_t storedPoints(const SpectrumMatrix& m) {
    size_t total = 1;
    for (int f = 1; f <= 3; ++f) total *= std::max<size_t>(m.dims[f].points, 1);
    return total;
}

// Lines of a multiplet closer than the merge distance collapse into one peak.
int32_t mergeWindow(const DimensionRecord& d, float deltaHz, size_t lineLength) {
    const double w = std::trunc(d.points * double(deltaHz) / (double(d.carrier) * d.spectralWidth));
    const double limit = static_cast<double>(std::max<size_t>(lineLength, 1));
    return static_cast<int32_t>(std::isfinite(w) ? std::clamp(w, 1.0, std::min(limit, 1e9)) : 1.0);
}

float centre(const DimensionRecord& d, size_t i) {
    return static_cast<float>(ppmOfPoint(d, static_cast<double>(i)));
}

}  // namespace

void scanLine(const float* line, size_t n, size_t stride, const PeakPickingOptions& options,
              uint8_t* mask, size_t maskStride, uint8_t bit) {
    const size_t window = static_cast<size_t>(std::max(options.window, 1));
    size_t i = 0;
    while (i < n) {
        const float v = line[i * stride];
        const double magnitude = options.negative ? std::fabs(v) : v;
        if (!(magnitude > options.threshold)) {
            ++i;
            continue;
        }
        const double s = v < 0.0f ? -1.0 : 1.0;
        const size_t start = i;
        size_t best = i, last = i;  // the last point the look-ahead examined
        double bestValue = magnitude;
        // Every new best restarts the look-ahead from itself.
        for (size_t k = i + 1; k < n && k - best <= window; ++k) {
            last = k;
            const double w = s * line[k * stride];
            if (w < 0.0) break;
            if (w > bestValue) best = k, bestValue = w;
        }
        if (bestValue < options.upper) mask[best * maskStride] |= bit;
        i = last;
        while (i + 1 < n && std::fabs(line[(i + 1) * stride]) < std::fabs(line[i * stride])) ++i;
        if (i == start) ++i;
    }
}

PickedPeaks pickPeaks(const SpectrumMatrix& m, const PeakAxes& axes, const PpmBox& box,
                      PeakPickingOptions& options) {
    PickedPeaks r;
    const size_t total = storedPoints(m);
    const bool threeD = axes.z >= 1 && axes.z <= 3;
    if (axes.x < 1 || axes.x > 3 || axes.y < 1 || axes.y > 3 || m.re.size() < total) return r;
    const AxisSpan sx = spanOf(m, axes.x, box.x, total), sy = spanOf(m, axes.y, box.y, total);
    const AxisSpan sz = threeD ? spanOf(m, axes.z, box.z, total) : AxisSpan{};
    const size_t cols = sx.count, rows = sy.count, planes = sz.count;
    std::vector<uint8_t> mask(cols * rows * planes, 0);
    const float* origin =
        m.re.data() + sx.first * sx.stride + sy.first * sy.stride + sz.first * sz.stride;

    options.window = mergeWindow(m.dims[axes.y], options.deltaY, rows);
    for (size_t p = 0; p < planes; ++p)
        for (size_t c = 0; c < cols; ++c)
            scanLine(origin + p * sz.stride + c * sx.stride, rows, sy.stride, options,
                     &mask[p * rows * cols + c], cols, 1);
    options.window = mergeWindow(m.dims[axes.x], options.deltaX, cols);
    for (size_t p = 0; p < planes; ++p)
        for (size_t row = 0; row < rows; ++row)
            scanLine(origin + p * sz.stride + row * sy.stride, cols, sx.stride, options,
                     &mask[(p * rows + row) * cols], 1, 2);
    uint8_t all = 3;
    if (threeD) {
        options.window = 1;
        for (size_t row = 0; row < rows; ++row)
            for (size_t c = 0; c < cols; ++c)
                scanLine(origin + row * sy.stride + c * sx.stride, planes, sz.stride, options,
                         &mask[row * cols + c], rows * cols, 4);
        all = 7;
    }

    const size_t limit = threeD ? kMax3DPeaks : kMax2DPeaks;
    for (size_t p = 0; p < planes; ++p)
        for (size_t row = 0; row < rows; ++row)
            for (size_t c = 0; c < cols; ++c) {
                if (mask[(p * rows + row) * cols + c] != all) continue;
                if (r.peaks.size() == limit) {
                    r.peaks.clear();
                    r.tooMany = true;
                    return r;
                }
                r.peaks.push_back({centre(m.dims[axes.x], sx.first + c),
                                   centre(m.dims[axes.y], sy.first + row),
                                   threeD ? centre(m.dims[axes.z], sz.first + p) : 0.0f});
            }
    return r;
}

std::array<float, 3> highestPoint(const SpectrumMatrix& m, const PeakAxes& axes,
                                  const PpmBox& box) {
    const size_t total = storedPoints(m);
    if (axes.x < 1 || axes.x > 3 || axes.y < 1 || axes.y > 3 || m.re.size() < total) return {};
    const AxisSpan sx = spanOf(m, axes.x, box.x, total), sy = spanOf(m, axes.y, box.y, total);
    const bool threeD = axes.z >= 1 && axes.z <= 3;
    const AxisSpan sz = threeD ? spanOf(m, axes.z, box.z, total) : AxisSpan{};
    const size_t plane = sz.first + sz.count / 2;
    const size_t planeOffset = plane * sz.stride;
    size_t bx = sx.first, by = sy.first;
    float best = -INFINITY;
    for (size_t row = sy.first; row < sy.first + sy.count; ++row)
        for (size_t c = sx.first; c < sx.first + sx.count; ++c) {
            const float v = m.re[planeOffset + row * sy.stride + c * sx.stride];
            if (v > best) best = v, bx = c, by = row;
        }
    const float z = threeD ? static_cast<float>((box.z[0] + box.z[1]) * 0.5) : 0.0f;
    return {centre(m.dims[axes.x], bx), centre(m.dims[axes.y], by), z};
}

std::vector<std::array<float, 2>> peaksOnRow(const std::vector<std::array<float, 2>>& list,
                                             const DimensionRecord& vertical, double ppm) {
    const double half = 0.5 * vertical.spectralWidth / std::max<uint32_t>(vertical.points, 1);
    std::vector<std::array<float, 2>> row;
    for (const auto& p : list)
        if (std::fabs(p[1] - ppm) <= half) row.push_back(p);
    return row;
}

}  // namespace zolt
