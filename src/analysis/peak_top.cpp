#include "analysis/peak_top.h"

#include <cmath>

namespace zolt {

namespace {

constexpr double kTiny = 1e-9;

// Half the width on one side of the top k: the walk stops where the trace crosses half the
// height, or rises above the top again, or reaches the end; `found` tells the crossing apart.
struct HalfWidth {
    double points = 0.0;
    bool found = false;
};

HalfWidth rightHalf(const float* y, size_t n, size_t k, double s, double height) {
    const double half = height * 0.5;
    size_t j = k;
    bool found = false;
    while (j + 1 < n) {
        ++j;
        if (s * y[j] < s * half) {
            found = true;
            break;
        }
        if (s * y[j] > s * height) break;
    }
    double t = 0.5;
    if (found && std::fabs(double(y[j - 1]) - y[j]) >= kTiny)
        t = (half - y[j]) / (double(y[j - 1]) - y[j]);
    return {double(j - k) - t, found};
}

HalfWidth leftHalf(const float* y, size_t k, double s, double height) {
    const double half = height * 0.5;
    size_t i = k;
    bool found = false;
    while (i > 0) {
        --i;
        if (s * y[i] < s * half) {
            found = true;
            break;
        }
        if (s * y[i] > s * height) break;
    }
    double t = 0.5;
    if (found && std::fabs(double(y[i + 1]) - y[i]) >= kTiny)
        t = (half - y[i]) / (double(y[i + 1]) - y[i]);
    // The interpolated part is added on this side as well: the widths reported have always
    // been measured this way.
    return {double(k - i) + t, found};
}

}  // namespace

PeakTop refineTop(const float* y, size_t n, size_t start, bool withWidth) {
    PeakTop top;
    if (!y || start >= n) return top;
    const double s = y[start] < 0.0f ? -1.0 : 1.0;
    size_t k = start;
    while (k + 1 < n && s * y[k + 1] > s * y[k]) ++k;
    while (k > 0 && s * y[k - 1] > s * y[k]) --k;
    if (k == 0 || k + 1 >= n) return top;

    double delta = 0.0;
    top.height = y[k];
    const double a = std::fabs(y[k - 1]), b = std::fabs(y[k]), c = std::fabs(y[k + 1]);
    if (a > kTiny && b > kTiny && c > kTiny) {
        const double la = std::log(a), lb = std::log(b), lc = std::log(c);
        const double d = 2.0 * lb - (la + lc);
        if (std::fabs(d) > kTiny) {
            delta = (lc - la) * 0.5 / d;
            top.height = s * std::exp(lb + delta * (lc - la) * 0.25);
        }
    }
    top.position = double(k) + delta;
    if (!withWidth) return top;

    const HalfWidth right = rightHalf(y, n, k, s, top.height);
    const HalfWidth left = leftHalf(y, k, s, top.height);
    if (left.found == right.found)
        top.width = left.points + right.points;
    else
        top.width = 2.0 * (left.found ? left.points : right.points);
    return top;
}

}  // namespace zolt
