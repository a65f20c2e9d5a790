#include "display/scale_ticks.h"

#include <cmath>
#include <cstdio>

namespace zolt {

namespace {

// No window is wide enough for more ticks than this.
constexpr size_t kMaxTicks = 10000;

// n decimals when the minor step needs them, none for steps of about 1 ... 1000, powers of
// ten beyond.
std::string labelFormat(double minorStep) {
    const double digits = std::trunc(0.999999 - std::log10(2.0 * std::fabs(minorStep)));
    if (!(std::fabs(digits) < 1000)) return "%0.1e";  // a step of 0 or beyond any scale
    const int n = static_cast<int>(digits);
    if (n > 0) {
        std::string f = "%#1.0f";
        f[4] = static_cast<char>('0' + n % 8);
        return f;
    }
    if (n > -3) return "%0.0f";
    return "%0.1e";
}

// A user's format is used only when it prints one number: a single conversion among f, e, g.
bool printsOneNumber(std::string_view f) {
    const size_t percent = f.find('%');
    if (percent == std::string_view::npos || f.find('%', percent + 1) != std::string_view::npos)
        return false;
    size_t i = percent + 1;
    while (i < f.size() &&
           std::string_view("#0-+ .0123456789").find(f[i]) != std::string_view::npos)
        ++i;
    // A short width and precision: a label fits a scale.
    return i < f.size() && i - percent <= 6 &&
           std::string_view("feEgG").find(f[i]) != std::string_view::npos;
}

}  // namespace

ScaleTicks chooseTicks(double a, double b, double d, std::string_view fixedFormat) {
    ScaleTicks t;
    // No step, or no scale: no ticks (tickList gives none for a zero step).
    if (!(d > 0) || !std::isfinite(d) || !std::isfinite(a) || !std::isfinite(b)) {
        t.format = labelFormat(1.0);
        return t;
    }
    // p is a power of ten near d, then moved to 1, 2 or 5 times one: 1.45 * 0.5 * 0.6 = 0.435.
    double p = std::pow(10.0, std::round(std::log10(d)));
    int m = 5;
    if (p > 1.45 * d) {
        p /= 2;
    } else if (p <= 0.435 * d) {
        p *= 5;
    } else {
        m = 2;
        if (p < 0.725 * d) p *= 2;
    }
    const double direction = a > b ? -1.0 : 1.0;
    const double P = direction * p;
    double T = std::round(a / P) * P;
    if ((T - a) * direction < 0)
        T += P;
    else if ((T - P - a) * direction >= 0)
        T -= P;
    const double q = P / m;
    double k = std::trunc((T - a) / q);
    if (!(std::fabs(k) < m)) k = 0;  // only rounding at the edge of the range can get here
    t.first = T - k * q;
    t.minorStep = q;
    t.end = b + 0.001 * q;
    t.minorPerMajor = m;
    t.firstMajor = m - static_cast<int>(k);
    t.format = !printsOneNumber(fixedFormat) ? labelFormat(q) : std::string(fixedFormat);
    return t;
}

std::vector<Tick> tickList(const ScaleTicks& t) {
    std::vector<Tick> ticks;
    if (!std::isfinite(t.first) || !std::isfinite(t.end) || !std::isfinite(t.minorStep) ||
        t.minorStep == 0 || t.minorPerMajor <= 0)
        return ticks;
    const double direction = t.minorStep > 0 ? 1.0 : -1.0;
    for (size_t i = 0; i < kMaxTicks; ++i) {
        const double v = t.first + static_cast<double>(i) * t.minorStep;
        if ((v - t.end) * direction > 0) break;
        ticks.push_back(
            {v, (static_cast<int>(i % t.minorPerMajor) + t.firstMajor) % t.minorPerMajor == 0});
    }
    return ticks;
}

std::string tickLabel(const ScaleTicks& t, double value) {
    char text[64];
    // A tick computed onto zero may come out as -0: it is labelled 0.
    if (std::fabs(value) < 1e-9 * std::fabs(t.minorStep)) value = 0.0;
    std::snprintf(text, sizeof text, t.format.c_str(), value);
    return text;
}

}  // namespace zolt
