#include "processing/dimension_rotation.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <vector>

#include "processing/kernels.h"
#include "processing/large_arrays.h"

namespace zolt {
namespace {

// The axes of at least two points in storage order, fastest first; record 0 (the hypercomplex
// halves) is always the slowest and is not listed.
struct AxisOrder {
    int axis[3] = {0, 0, 0};
    int count = 0;
};

size_t axisPoints(const SpectrumMatrix& m, int f) {
    return std::max<size_t>(m.dims[f].points, 1);
}

AxisOrder storageOrder(const SpectrumMatrix& m, int contiguous) {
    AxisOrder order;
    if (axisPoints(m, contiguous) > 1) order.axis[order.count++] = contiguous;
    for (int f = 3; f >= 1; --f)
        if (f != contiguous && axisPoints(m, f) > 1) order.axis[order.count++] = f;
    return order;
}

// One transposition: the axis at position p comes to the front; the faster axes before it
// move behind it as one block of A points, the slower ones stay where they are.
struct Move {
    size_t block = 1;   // A: points of the axes passed over
    size_t points = 1;  // points of the axis moved
    size_t planes = 1;  // everything slower, halves included
};

Move moveToFront(const SpectrumMatrix& m, AxisOrder& order, int f) {
    int p = 0;
    while (order.axis[p] != f) ++p;
    Move move;
    for (int k = 0; k < p; ++k) move.block *= axisPoints(m, order.axis[k]);
    move.points = axisPoints(m, f);
    for (int k = p + 1; k < order.count; ++k) move.planes *= axisPoints(m, order.axis[k]);
    move.planes *= axisPoints(m, 0);
    for (int k = p; k > 0; --k) order.axis[k] = order.axis[k - 1];
    order.axis[0] = f;
    return move;
}

// The axes of `target` to bring to the front, in turn, to turn `from` into `target`: those
// before the longest tail of `target` that already stands in the same relative order.
std::vector<int> movesBetween(const AxisOrder& from, const AxisOrder& target) {
    int keep = 0;
    for (int length = 1; length <= target.count; ++length) {
        int k = target.count - length, matched = 0;
        for (int s = 0; s < from.count && k + matched < target.count; ++s)
            if (from.axis[s] == target.axis[k + matched]) ++matched;
        if (matched == length) keep = length;
    }
    std::vector<int> moves;
    for (int k = target.count - keep - 1; k >= 0; --k) moves.push_back(target.axis[k]);
    return moves;
}

int currentContiguous(const SpectrumMatrix& m) {
    if (m.contiguous >= 1 && m.contiguous <= 3) return m.contiguous;
    // Not recorded: the direct axis as loaded, the highest f-index in use.
    const int direct = directFIndex(m.dims);
    return direct ? direct : 1;
}

bool sizeMatches(const SpectrumMatrix& m, size_t& total) {
    total = 1;
    for (int f = 0; f < 4; ++f) {
        const size_t n = axisPoints(m, f);
        if (total > SIZE_MAX / n) return false;
        total *= n;
    }
    return m.re.size() == total && (m.im.empty() || m.im.size() == total);
}

// The transpositions that make fIndex contiguous, relabellings left out, with the largest
// scratch any of them needs.
std::vector<Move> planMoves(const SpectrumMatrix& m, int current, int fIndex, size_t total,
                            size_t& scratchSize) {
    AxisOrder order = storageOrder(m, current);
    const std::vector<int> moves = movesBetween(order, storageOrder(m, fIndex));
    std::vector<Move> steps;
    scratchSize = 0;
    for (int f : moves) {
        const Move step = moveToFront(m, order, f);
        if (step.block == 1 || step.points == 1) continue;  // a relabelling only
        steps.push_back(step);
        scratchSize = std::max(scratchSize, step.planes > 1 ? step.block * step.points : total);
    }
    return steps;
}

}  // namespace

bool rotateIntoRows(SpectrumMatrix& m, int fIndex, size_t stride, size_t size) {
    size_t total = 0;
    if (fIndex < 1 || fIndex > 3 || !sizeMatches(m, total)) return false;
    const int current = currentContiguous(m);
    size_t scratchSize = 0;
    std::vector<Move> steps;
    if (current != fIndex) steps = planMoves(m, current, fIndex, total, scratchSize);
    if (steps.size() > 1 || (steps.size() == 1 && steps[0].planes > 1)) return false;
    const size_t n = axisPoints(m, fIndex), rows = total / n;
    if (stride < n || rows > size / stride) return false;
    std::vector<float> re, im;
    try {
        reserveLarge(re, size);
        reserveLarge(im, size);
    } catch (const std::bad_alloc&) {
        return false;
    }
    // One array at a time, each old one let go before the next is filled: at most one old
    // array and the two new ones take memory at once.
    for (auto [from, to] : {std::pair{&m.re, &re}, std::pair{&m.im, &im}}) {
        to->resize(size);
        if (steps.empty()) {
            for (size_t r = 0; r < rows && !from->empty(); ++r)
                std::copy_n(from->data() + r * n, n, to->data() + r * stride);
        } else if (!from->empty()) {
            transpose(from->data(), to->data(), steps[0].block, steps[0].points, stride);
        }
        from->swap(*to);
        *to = std::vector<float>();
    }
    m.contiguous = static_cast<uint8_t>(fIndex);
    return true;
}

bool rotateToContiguous(SpectrumMatrix& m, int fIndex) {
    if (fIndex < 1 || fIndex > 3) return false;
    const int current = currentContiguous(m);
    if (current == fIndex) {
        m.contiguous = static_cast<uint8_t>(fIndex);
        return true;
    }
    size_t total = 0;
    if (!sizeMatches(m, total)) return false;

    // Plan every step first so that the one scratch buffer is had before any data move.
    size_t scratchSize = 0;
    const std::vector<Move> steps = planMoves(m, current, fIndex, total, scratchSize);
    std::vector<float> scratch;
    try {
        scratch.resize(scratchSize);
    } catch (const std::bad_alloc&) {
        return false;
    }

    for (const Move& step : steps) {
        const size_t plane = step.block * step.points;
        if (step.planes > 1) {
            // Plane by plane through the scratch plane: real parts, then imaginary parts.
            for (std::vector<float>* data : {&m.re, &m.im}) {
                if (data->empty()) continue;
                for (size_t p = 0; p < step.planes; ++p) {
                    float* at = data->data() + p * plane;
                    std::copy(at, at + plane, scratch.begin());
                    transpose(scratch.data(), at, step.block, step.points);
                }
            }
        } else {
            // Real parts into the spare buffer, imaginary parts into the old real buffer.
            transpose(m.re.data(), scratch.data(), step.block, step.points);
            if (!m.im.empty()) {
                transpose(m.im.data(), m.re.data(), step.block, step.points);
                m.im.swap(m.re);
            }
            m.re.swap(scratch);
        }
    }
    m.contiguous = static_cast<uint8_t>(fIndex);
    return true;
}

}  // namespace zolt
