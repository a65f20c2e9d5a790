#include "analysis/integration.h"

#include <algorithm>
#include <cmath>

#include "processing/phase.h"

namespace zolt {
namespace {

bool hasAxis(const SpectrumMatrix& m, int f) {
    return f >= 1 && f <= 3 && m.dims[f].points >= 1;
}

// Distance in the array between neighbouring points along axis f.
size_t strideOf(const SpectrumMatrix& m, int f) {
    return axisWalk(m, f, m.pointCount()).inner;
}

struct IndexRange {
    size_t first = 0, end = 0;  // [first, end)
};

IndexRange rangeOf(const DimensionRecord& axis, double a, double b) {
    const size_t i = integralLimitIndex(axis, a), j = integralLimitIndex(axis, b);
    return {std::min(i, j), std::max(i, j)};
}

// The plane whose centre lies nearest to the ppm.
size_t nearestPoint(const DimensionRecord& axis, double ppm) {
    const double n = axis.points;
    const double x = std::round((1.0 - (ppm - axis.lowestPpm) / axis.spectralWidth) * n - 0.5);
    if (!(x > 0.0)) return 0;
    return x >= n - 1.0 ? axis.points - 1 : static_cast<size_t>(x);
}

double integrateRectangle(const SpectrumMatrix& m, const IntegralAxes& axes,
                          const IntegralRegion& r, bool threeD) {
    if (!hasAxis(m, axes.x) || !hasAxis(m, axes.y) || axes.x == axes.y) return 0.0;
    if (threeD && (!hasAxis(m, axes.z) || axes.z == axes.x || axes.z == axes.y)) return 0.0;
    const IndexRange x = rangeOf(m.dims[axes.x], r.fields[0], r.fields[1]);
    const IndexRange y = rangeOf(m.dims[axes.y], r.fields[2], r.fields[3]);
    size_t base = 0;
    if (threeD)
        base = nearestPoint(m.dims[axes.z], 0.5 * (double(r.fields[4]) + r.fields[5])) *
               strideOf(m, axes.z);
    const size_t sx = strideOf(m, axes.x), sy = strideOf(m, axes.y);
    double sum = 0.0;
    for (size_t j = y.first; j < y.end; ++j) {
        const float* row = m.re.data() + base + j * sy;
        for (size_t i = x.first; i < x.end; ++i) sum += row[i * sx];
    }
    return sum;
}

}  // namespace

size_t integralLimitIndex(const DimensionRecord& axis, double ppm) {
    const double n = axis.points;
    const double x = std::trunc((1.0 - (ppm - axis.lowestPpm) / axis.spectralWidth) * n + 0.5);
    if (!(x > 0.0)) return 0;  // NaN too
    return x >= n ? axis.points : static_cast<size_t>(x);
}

double edgePpm(const DimensionRecord& axis, size_t i) {
    return (1.0 - double(i) / axis.points) * axis.spectralWidth + axis.lowestPpm;
}

double integrateTrace(const float* trace, size_t n, size_t i0, size_t i1, long endPointCount) {
    i1 = std::min(i1, n);
    if (i0 >= i1) return 0.0;
    double s = 0.0;
    for (size_t i = i0; i < i1; ++i) s += trace[i];
    const long m = std::min({static_cast<long>(n - i1), static_cast<long>(i0), endPointCount});
    if (m <= 0) return s;
    double left = 0.0, right = 0.0;
    for (size_t k = 0; k < static_cast<size_t>(m); ++k) {
        left += trace[i0 - k];
        right += trace[i1 - 1 + k];
    }
    // The area under the line joining the two end-point averages over the N points.
    return s - (left + right) * double(i1 - i0) * 0.5 / double(m);
}

double integrateRegion(const SpectrumMatrix& m, const IntegralAxes& axes,
                       const IntegralRegion& region) {
    if (m.re.size() < m.pointCount()) return 0.0;
    const int kind = region.dimensions();
    if (kind != 1) return integrateRectangle(m, axes, region, kind == 3);
    if (!hasAxis(m, axes.x)) return 0.0;
    const DimensionRecord& axis = m.dims[axes.x];
    const IndexRange r = rangeOf(axis, region.fields[0], region.fields[1]);
    const double count = std::round(double(region.fields[5]));
    const long endPoints =
        count >= 1.0 ? static_cast<long>(std::min(count, double(axis.points))) : 0;
    const size_t stride = strideOf(m, axes.x);
    if (stride == 1) return integrateTrace(m.re.data(), axis.points, r.first, r.end, endPoints);
    std::vector<float> trace(axis.points);
    for (size_t i = 0; i < axis.points; ++i) trace[i] = m.re[i * stride];
    return integrateTrace(trace.data(), axis.points, r.first, r.end, endPoints);
}

double integralUnit(std::vector<double> integrals) {
    std::erase_if(integrals, [](double v) { return !(v > kSmallestCountedIntegral); });
    if (integrals.empty()) return 0.0;
    std::sort(integrals.begin(), integrals.end());
    const double smallest = integrals.front();
    double kv = 0.0, kk = 0.0;
    for (const double v : integrals) {
        if (v > 10.0 * smallest) break;
        const double k = std::max(1.0, std::round(v / smallest));
        kv += k * v;
        kk += k * k;
    }
    return kv / kk;
}

}  // namespace zolt
