#include "processing/phase_criteria.h"

#include <algorithm>
#include <cmath>

#include "processing/baseline_detection.h"

namespace zolt {
namespace {

constexpr size_t kBlock = 32;

}  // namespace

// The value of point k is m_k cos(theta_k + a + k b) = re_k cos(a + k b) - im_k sin(a + k b);
// points with |theta + a + k b| > pi/2 are exactly those with a negative value. Blocks are
// visited by decreasing modulus and the scan stops once no block can go deeper than the depth
// found.
DeepestNegative::DeepestNegative(const float* r, const float* i, size_t count, bool conjugate)
    : re(r, r + count), im(i, i + count) {
    if (conjugate)
        for (auto& x : im) x = -x;
    const size_t blocks = (count + kBlock - 1) / kBlock;
    blockMax.assign(blocks, 0.0f);
    for (size_t k = 0; k < count; ++k)
        blockMax[k / kBlock] = std::max(blockMax[k / kBlock], std::hypot(re[k], im[k]));
    order.resize(blocks);
    for (size_t b = 0; b < blocks; ++b) order[b] = static_cast<uint32_t>(b);
    std::sort(order.begin(), order.end(),
              [&](uint32_t x, uint32_t y) { return blockMax[x] > blockMax[y]; });
}

double DeepestNegative::operator()(double a, double b) const {
    const double dc = std::cos(b), ds = std::sin(b);
    const size_t count = re.size();
    double depth = 0.0;
    for (uint32_t blk : order) {
        if (blockMax[blk] <= depth) break;
        const size_t first = blk * kBlock, last = std::min(count, first + kBlock);
        double c = std::cos(a + first * b), s = std::sin(a + first * b);
        for (size_t k = first; k < last; ++k) {
            const double value = re[k] * c - im[k] * s;
            if (-value > depth) depth = -value;
            const double c2 = c * dc - s * ds;
            s = s * dc + c * ds;
            c = c2;
        }
    }
    return depth;
}

// The signal points are found on the modulus, which no trial phase changes. The cost is
// non-negative, and zero when every line is absorptive and upright.
NegativeSignal::NegativeSignal(const float* r, const float* i, size_t count, bool conjugate)
    : re(r, r + count), im(i, i + count), mask(count) {
    if (conjugate)
        for (auto& x : im) x = -x;
    std::vector<float> modulus(count);
    for (size_t k = 0; k < count; ++k) modulus[k] = std::hypot(re[k], im[k]);
    detectSignal(modulus.data(), count, mask.data());
    for (size_t k = 0; k < count; ++k)
        if (mask[k]) norm += double{modulus[k]} * modulus[k];
}

double NegativeSignal::operator()(double a, double b) const {
    if (norm <= 0.0) return 0.0;
    const double dc = std::cos(b), ds = std::sin(b);
    double c = std::cos(a), s = std::sin(a), sum = 0.0;
    for (size_t k = 0; k < re.size(); ++k) {
        if (mask[k]) {
            const double value = re[k] * c - im[k] * s;
            if (value < 0.0) sum += value * value;
        }
        const double c2 = c * dc - s * ds;
        s = s * dc + c * ds;
        c = c2;
    }
    return sum / norm;
}

void Asymmetry::add(const float* r, const float* i, size_t q, bool conjugate) {
    Line line;
    line.first = q - kPhaseHalfLine - 1;
    for (size_t t = 0; t < kPhaseSliceSpan; ++t) {
        line.re[t] = r[line.first + t];
        line.im[t] = conjugate ? -i[line.first + t] : i[line.first + t];
    }
    line.modulus = std::hypot(r[q], i[q]);
    if (line.modulus > 0.0) lines.push_back(line);
}

double Asymmetry::operator()(double a, double b) const {
    const double dc = std::cos(b), ds = std::sin(b);
    double total = 0.0;
    bool upright = false;
    std::array<double, kPhaseSliceSpan> v;
    for (const Line& line : lines) {
        double c = std::cos(a + line.first * b), s = std::sin(a + line.first * b);
        for (size_t t = 0; t < kPhaseSliceSpan; ++t) {
            v[t] = line.re[t] * c - line.im[t] * s;
            const double c2 = c * dc - s * ds;
            s = s * dc + c * ds;
            c = c2;
        }
        // The phased maximum may sit one point beside the modulus maximum.
        size_t centre = kPhaseHalfLine + 1;
        if (v[centre - 1] > v[centre] && v[centre - 1] >= v[centre + 1])
            --centre;
        else if (v[centre + 1] > v[centre] && v[centre + 1] > v[centre - 1])
            ++centre;
        double sum = 0.0;
        for (size_t j = 1; j <= kPhaseHalfLine; ++j)
            sum += std::fabs(v[centre - j] - v[centre + j]);
        total += sum / line.modulus;
        if (v[centre] > 0.0) upright = true;
    }
    // Inverted lines are avoided.
    return upright ? total : 1000.0 * total;
}

}  // namespace zolt
