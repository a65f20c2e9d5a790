#include "io/jcamp/jcamp_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <vector>

namespace zolt {

namespace {

constexpr double kFullScale = 80000.0;
constexpr size_t kSqueezedLineLimit = 80;
constexpr size_t kDifferenceLineLength = 76;

std::string formatted(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string formatted(const char* format, ...) {
    char buffer[256];
    va_list args;
    va_start(args, format);
    const int n = std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    return std::string(buffer, static_cast<size_t>(std::clamp(n, 0, int(sizeof buffer) - 1)));
}

// `zero` for 0, else the leading digit as a letter counted from `positive` or `negative`.
std::string lettered(int64_t v, char zero, char positive, char negative) {
    if (v == 0) return std::string(1, zero);
    const uint64_t magnitude = v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v);
    const std::string digits = std::to_string(magnitude);
    std::string out(1, static_cast<char>((v < 0 ? negative : positive) + (digits[0] - '1')));
    return out + digits.substr(1);
}

// Far beyond any intensity: keeps the conversion defined for absurd references.
int64_t scaled(double y, double perUnit) {
    const double v = std::round(double(y) * perUnit);
    return std::isfinite(v) ? static_cast<int64_t>(std::clamp(v, -1e15, 1e15)) : 0;
}

int64_t xValue(double x, double factor) {
    return scaled(x, 1.0 / factor);
}

void line(std::string& out, const std::string& text) {
    out += text;
    out += "\r\n";
}

void writeHeader(const JcampExport& e, std::string& out) {
    line(out, formatted("##TITLE= %.70s", e.title.c_str()));
    line(out, "##JCAMP-DX= 5.01 \t $$ Zolt");
    line(out, formatted("##DATA TYPE= NMR %s", e.fid ? "FID" : "SPECTRUM"));
    line(out, formatted("##DATA CLASS= %s", e.fid ? "NTUPLES" : "XYDATA"));
    line(out, "##ORIGIN= origin");
    line(out, "##OWNER= owner");
    line(out, formatted("##.OBSERVE FREQUENCY=%10.4f", double(e.axis.carrier)));
    line(out,
         formatted("##.OBSERVE NUCLEUS= ^%d%c%c", e.axis.isotope ? e.axis.isotope : 1,
                   e.axis.atom[0] ? e.axis.atom[0] : 'X', e.axis.atom[1] ? e.axis.atom[1] : ' '));
    // Mode 3 is written as SINGLE on purpose, as the program always has.
    const char* mode = "SIMULTANEOUS";
    if (e.quadratureMode == 1 || e.quadratureMode == 3) mode = "SINGLE";
    if (e.quadratureMode == 2) mode = "SEQUENTIAL";
    line(out, formatted("##.ACQUISITION MODE= %s", mode));
}

// X of the first point, then each value squeezed; a value that would take the line past 80
// characters starts the next one.
void writeSqueezedPage(std::span<const float> y, double perUnit, double firstTime, double dwell,
                       double xFactor, std::string& out) {
    std::string text;
    for (size_t i = 0; i < y.size(); ++i) {
        const std::string value = squeezedForm(scaled(y[i], perUnit));
        if (!text.empty() && text.size() + value.size() > kSqueezedLineLimit) {
            line(out, text);
            text.clear();
        }
        if (text.empty())
            text = formatted("%lld", (long long)xValue(firstTime + double(i) * dwell, xFactor));
        text += value;
    }
    if (!text.empty()) line(out, text);
}

void writeFid(const JcampExport& e, double perUnit, std::string& out) {
    const int n = static_cast<int>(e.axis.points);
    const double dwell = 1.0 / spectralWidthHz(e.axis);
    const double firstTime = e.axis.timeShift * dwell;
    const double lastTime = (n - 1 + e.axis.timeShift) * dwell;
    const double xFactor = lastTime != 0.0 ? lastTime / kFullScale : 1.0;
    const double yFactor = e.reference / kFullScale;
    const float firstIm = e.im.empty() ? 0.0f : e.im.front();
    const float lastIm = e.im.empty() ? 0.0f : e.im.back();
    line(out, "##NTUPLES= NMR FID");
    line(out, "##VAR_NAME= \t TIME, \t FID/REAL, \t FID/IMAG, \t PAGE NUMBER");
    line(out, "##SYMBOL= \t\t X, \t\t R, \t\t I, \t\t N");
    line(out, "##VAR_TYPE= INDEPENDENT, DEPENDENT, DEPENDENT, \t PAGE");
    line(out, "##VAR_FORM= \t AFFN, \t\t ASDF, \t\t ASDF, \t\t AFFN");
    line(out, formatted("##VAR_DIM= \t\t %d, \t %d, \t %d, \t 2", n, n, n));
    line(out, "##UNITS= \t SECONDS, ARBITRARY UNITS, ARBITRARY UNITS,");
    line(out, formatted("##FIRST= \t %12.12G, %12.12G, %12.12G, \t 1", firstTime,
                        double(e.re.front()), double(firstIm)));
    line(out, formatted("##LAST= \t\t %12.12G, %12.12G, %12.12G, \t 2", lastTime,
                        double(e.re.back()), double(lastIm)));
    line(out, formatted("##FACTOR= \t %12.12G, %12.12G, %12.12G, \t 1", xFactor, yFactor, yFactor));
    line(out, "##PAGE= N = 1");
    line(out, "##DATA TABLE=(X++(R..R)), XYDATA");
    writeSqueezedPage(e.re, perUnit, firstTime, dwell, xFactor, out);
    line(out, "##DATA TABLE=(X++(I..I)), XYDATA");
    std::vector<float> zeros;
    if (e.im.size() != e.re.size()) zeros.assign(e.re.size(), 0.0f);
    writeSqueezedPage(zeros.empty() ? e.im : std::span<const float>(zeros), perUnit, firstTime,
                      dwell, xFactor, out);
}

// Each line: X and the first value squeezed, then differences; ended at 76 characters, and the
// next line repeats its last value (the check of the difference form).
void writeSpectrum(const JcampExport& e, double perUnit, std::string& out) {
    const size_t n = e.axis.points;
    const double widthHz = spectralWidthHz(e.axis);
    const double step = widthHz / double(n);
    const double lowestHz = double(e.axis.lowestPpm) * e.axis.carrier;
    const double firstX = lowestHz + widthHz - step / 2;
    const double lastX = lowestHz + step / 2;
    const double largest = std::max(std::abs(firstX), std::abs(lastX));
    const double xFactor = largest > 0.0 ? largest / kFullScale : 1.0;
    line(out, "##XUNITS= HZ");
    line(out, formatted("##YUNITS= %s", e.magnitude ? "MAGNITUDE" : "ARBITRARY UNITS"));
    line(out, formatted("##FIRSTX= %9.2f", firstX));
    line(out, formatted("##LASTX= %9.2f", lastX));
    line(out, formatted("##XFACTOR= %12.12G", xFactor));
    line(out, formatted("##YFACTOR= %12.12G", e.reference / kFullScale));
    line(out, formatted("##NPOINTS= %d", static_cast<int>(n)));
    line(out, "##XYDATA= (X++(Y..Y))");
    for (size_t p = 0;;) {
        std::string text = formatted("%lld", (long long)xValue(firstX - double(p) * step, xFactor));
        int64_t previous = scaled(e.re[p], perUnit);
        text += squeezedForm(previous);
        size_t q = p;
        while (q + 1 < n && text.size() < kDifferenceLineLength) {
            const int64_t v = scaled(e.re[++q], perUnit);
            text += differenceForm(v - previous);
            previous = v;
        }
        line(out, text);
        if (q + 1 >= n) break;
        p = q;
    }
}

}  // namespace

std::string squeezedForm(int64_t v) {
    return lettered(v, '@', 'A', 'a');
}

std::string differenceForm(int64_t v) {
    return lettered(v, '%', 'J', 'j');
}

std::string jcampText(const JcampExport& e) {
    std::string out;
    if (e.axis.points == 0 || e.re.size() < e.axis.points) return out;
    JcampExport whole = e;
    whole.re = e.re.first(e.axis.points);
    if (!e.im.empty()) whole.im = e.im.first(std::min<size_t>(e.im.size(), e.axis.points));
    const double reference = e.reference > 0.0 && std::isfinite(e.reference) ? e.reference : 1.0;
    whole.reference = reference;
    writeHeader(whole, out);
    if (e.fid)
        writeFid(whole, kFullScale / reference, out);
    else
        writeSpectrum(whole, kFullScale / reference, out);
    line(out, "");
    line(out, "##END=");
    return out;
}

bool writeJcamp(const JcampExport& e, const std::string& path) {
    const std::string text = jcampText(e);
    if (text.empty()) return false;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file) return false;
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    return static_cast<bool>(file.flush());
}

}  // namespace zolt
