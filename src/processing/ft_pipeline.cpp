#include "processing/ft_pipeline.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <numbers>
#include <sstream>

#include "base/files.h"
#include "processing/apodization.h"
#include "processing/dimension_rotation.h"
#include "processing/fft.h"
#include "processing/ft_step.h"
#include "processing/kernels.h"
#include "processing/large_arrays.h"
#include "processing/linear_prediction.h"
#include "processing/phase.h"
#include "processing/polar.h"
#include "processing/row_parallel.h"
#include "processing/shuffling.h"

namespace zolt {

namespace {

// Fewer rows than this a thread cost more to hand over than to transform.
constexpr size_t kMinRowsPerThread = 16;

// The quantities of one run, named as the steps use them.
struct Run {
    SpectrumDocument& doc;
    SpectrumMatrix& m;
    FourierTransformStep& step;
    int d;
    size_t F, N, N0, R, s;
    bool H;
    size_t stride = N;       // of the rows as they stand
    size_t used = SIZE_MAX;  // points of a row past which it holds zeros only
};

FtResult failure(FtOutcome outcome, const char* caption, const char* text) {
    return FtResult{outcome, Message{caption, text}};
}

bool has(const FourierTransformStep& s, uint16_t bit) {
    return (s.flags & bit) != 0;
}

template <class F>
bool tryAllocate(F&& f) {
    try {
        f();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    } catch (const std::length_error&) {
        return false;
    }
}

// Moves rows of count points from one stride to another (possibly another base), overlap-safe.
void moveRows(float* data, size_t from, size_t oldStride, size_t to, size_t newStride, size_t rows,
              size_t count) {
    if (from == to && oldStride == newStride) return;
    const bool backwards = to + newStride > from + oldStride || to > from;
    for (size_t i = 0; i < rows; ++i) {
        const size_t r = backwards ? rows - 1 - i : i;
        std::memmove(data + to + r * newStride, data + from + r * oldStride, count * sizeof(float));
    }
}

void moveRowsBoth(SpectrumMatrix& m, size_t from, size_t oldStride, size_t to, size_t newStride,
                  size_t rows, size_t count) {
    moveRows(m.re.data(), from, oldStride, to, newStride, rows, count);
    if (m.im.size() == m.re.size())
        moveRows(m.im.data(), from, oldStride, to, newStride, rows, count);
}

// NUS: the sampled rows of the slowest axis d go to their place on the full grid.
std::optional<FtResult> expandNus(SpectrumDocument& doc, int d) {
    SpectrumMatrix& m = doc.matrix;
    DimensionRecord& axis = m.dims[d];
    const auto folder = std::filesystem::path(doc.source.rawPath).parent_path();
    const auto list = readNusList((folder / "nuslist").string());
    if (!list) return failure(FtOutcome::NusListMissing, kNusMissingCaption, kNusMissingText);
    bool slowest = m.contiguous != d && m.dims[0].points <= 1;
    for (int f = 1; f < d; ++f) slowest = slowest && m.dims[f].points <= 1;
    const size_t sampled = axis.points, full = axis.pointsAfterNus;
    if (!slowest || full <= sampled) return std::nullopt;  // transformed as sampled
    const size_t perEntry = sampled / list->size();
    if (perEntry == 0 || perEntry * list->size() != sampled)
        return failure(FtOutcome::NusListMissing, kNusMissingCaption, kNusMissingText);
    for (uint32_t v : *list)
        if ((size_t{v} + 1) * perEntry > full)
            return failure(FtOutcome::NusListMissing, kNusMissingCaption, kNusMissingText);
    const size_t row = m.pointCount() / sampled;
    std::vector<float> re, im;
    if (row * full > kMaxTransformFloats ||
        !tryAllocate([&] { growZeroed(re, row * full), growZeroed(im, row * full); }))
        return failure(FtOutcome::NusNoMemory, kNusMemoryCaption, kNusMemoryText);
    for (size_t e = 0; e < list->size(); ++e) {
        const size_t src = e * perEntry * row, dst = size_t{(*list)[e]} * perEntry * row;
        std::copy_n(m.re.begin() + src, perEntry * row, re.begin() + dst);
        if (!m.im.empty()) std::copy_n(m.im.begin() + src, perEntry * row, im.begin() + dst);
    }
    m.re.swap(re);
    m.im.swap(im);
    m.state &= ~matrix_state::kRealOnly;
    axis.points = static_cast<uint32_t>(full);
    return std::nullopt;
}

// Step 3: the mean of each row's tail, from the first point after the filter delay on.
void subtractDcOffset(Run& r) {
    if (!has(r.step, ft_flags::kSubtractDc)) return;
    if (r.m.contiguous != r.d) {
        r.step.flags &= ~ft_flags::kSubtractDc;  // only ever acts on the direct dimension
        return;
    }
    const size_t f = firstPointIndex(r.m.dims[r.d].timeShift, r.N);
    subtractDc(r.m.re.data(), r.R, r.N, r.N, f);
    if (!r.m.im.empty()) subtractDc(r.m.im.data(), r.R, r.N, r.N, f);
}

// Step 4: data longer than the recombined FT size are cut.
void truncateLongData(Run& r) {
    if (r.s * r.F >= r.N) return;
    const size_t keep = r.s * r.F;
    moveRowsBoth(r.m, 0, r.N, 0, keep, r.R, keep);
    r.m.re.resize(r.R * keep);
    if (!r.m.im.empty()) r.m.im.resize(r.R * keep);
    r.m.dims[r.d].points = static_cast<uint32_t>(keep);
    r.N = r.stride = keep;
}

// Step 6: room for the final size (and the hypercomplex half), within the limit.
std::optional<FtResult> reserveRoom(Run& r) {
    const size_t need = std::max(r.F, r.N) * r.R * (r.H ? 2 : 1);
    auto tooLarge = failure(FtOutcome::TooLarge, kTooLargeCaption, kTooLargeText);
    if (need > kMaxTransformFloats) return tooLarge;
    const size_t reSize = r.m.re.size(), imSize = r.m.im.size();
    // Real data grow a zero imaginary part.
    if (!tryAllocate([&] { growZeroed(r.m.re, need), growZeroed(r.m.im, need); })) {
        r.m.re.resize(reSize);
        r.m.im.resize(imSize);
        return tooLarge;
    }
    r.m.state &= ~matrix_state::kRealOnly;
    return std::nullopt;
}

// Steps 2 and 6 at once where they allow it: the rows go straight to their final stride
// in arrays of the final size, so that the matrix is had once and each point moved once.
// Every point of the grown area is written before it is read: rows past the data are zeros,
// and the tail of each row up to its length before the recombination is cleared after it.
bool placeRows(Run& r) {
    if (r.s * r.F < r.N) return false;  // truncated first
    const size_t stride = std::max(r.F, r.N);
    const size_t need = stride * r.R * (r.H ? 2 : 1);
    if (need > kMaxTransformFloats) return false;
    if (r.m.contiguous == r.d && r.m.re.capacity() >= need) return false;  // grows in place
    if (!rotateIntoRows(r.m, r.d, stride, need)) return false;
    r.m.state &= ~matrix_state::kRealOnly;
    r.stride = stride;
    r.used = r.N;
    return true;
}

// Steps 7-10: recombination, the hypercomplex half, the rows re-strided to F points.
void shuffleAndRestride(Run& r) {
    const size_t second = std::max(r.F, r.N) * r.R;  // the half's rows wait here
    if (r.s == 2) {
        ShuffleRows rows{r.m.re.data(), r.m.im.data(), r.R, r.N, r.stride};
        if (r.H)
            rows = {rows.re,          rows.im,          r.R,     r.N, r.stride,
                    rows.re + second, rows.im + second, r.stride};
        shuffleRows(r.step.shuffling, rows);
    }
    const size_t kept = r.N / r.s;
    r.m.dims[r.d].points = static_cast<uint32_t>(r.F);
    moveRowsBoth(r.m, 0, r.stride, 0, r.F, r.R, kept);
    if (r.H) {
        moveRowsBoth(r.m, second, r.stride, r.R * r.F, r.F, r.R, kept);
        r.m.dims[0].points = 2;
        r.R *= 2;
    }
    r.m.re.resize(r.R * r.F);
    r.m.im.resize(r.R * r.F);
    r.N = kept;
}

// Steps 11-14: leading points, prediction or zeros, the window, the zeros up to F.
void prepareRows(Run& r) {
    float* re = r.m.re.data();
    float* im = r.m.im.data();
    DimensionRecord& axis = r.m.dims[r.d];
    const size_t c = r.step.deleteFirst;
    if (c != 0 && c < r.N) {
        deleteFirst(re, im, r.R, r.N, r.F, c);
        axis.timeShift = 0.0f;
    }
    if (r.N > r.F) {
        r.N = r.F;
    } else if (has(r.step, ft_flags::kLinearPrediction) && r.N < r.F &&
               extendByPrediction(re, im, r.R, r.N, r.F, r.F)) {
        r.N = r.F;
    }
    const WeightingInput in{r.N, r.N0, weightingSpectralWidth(axis.spectralWidth, axis.carrier),
                            firstPointIndex(axis.timeShift, r.N),
                            (r.m.state & matrix_state::kComplexConjugate) != 0};
    applyWeighting(r.step, in, re, im, r.R, r.F);
    zeroTail(re, im, r.R, r.N, std::min(r.F, r.used), r.F);
}

// The rows are independent: shared out among the threads, each transformed as one thread would.
void transformRows(Run& r) {
    const bool realFt = has(r.step, ft_flags::kRealFt);
    forEachRowRange(r.R, kMinRowsPerThread, [&](size_t begin, size_t end) {
        for (size_t row = begin; row < end; ++row) {
            float* re = r.m.re.data() + row * r.F;
            float* im = r.m.im.data() + row * r.F;
            fft(re, im, r.F, +1);
            if (realFt) unscrambleRealFt(re, im, r.F);
        }
    });
}

// Step 19: the next time-domain axis skips single points and pseudo-dimensions.
void lowerTIndex(SpectrumDocument& doc) {
    int t = doc.source.highestTIndex - 1;
    while (t > 0 && (doc.matrix.dims[t].points <= 1 || isPseudoDimension(doc.matrix.dims[t]))) --t;
    doc.source.highestTIndex = static_cast<int8_t>(std::max(t, 0));
}

// The polar toggle of a document: the hypercomplex half is folded away first.
void togglePolarDocument(SpectrumMatrix& m) {
    if (m.dims[0].points == 2) {
        m.dims[0].points = 1;
        m.re.resize(m.re.size() / 2);
        m.im.resize(m.im.size() / 2);
    }
    m.state ^= matrix_state::kMagnitude;
    if (m.im.size() == m.re.size())
        togglePolar(m.re.data(), m.im.data(), m.re.size(),
                    (m.state & matrix_state::kMagnitude) != 0);
}

// Steps 20-21: magnitude, or the stored phase with the filter delay's first order. The fresh
// spectrum carries no phase yet, so the stored phase is applied as a change from zero by the
// phase-change rule; the record then keeps the stored values (phase 0 wrapped).
void finishPhase(SpectrumDocument& doc, const FourierTransformStep& step, int d, size_t F) {
    if (F == 0) return;
    SpectrumMatrix& m = doc.matrix;
    if (has(step, ft_flags::kMagnitude)) {
        togglePolarDocument(m);
        return;
    }
    DimensionRecord& axis = m.dims[d];
    const float phase0 = wrapPhase(axis.phase0), phase1 = axis.phase1;
    axis.phase0 = phase0;
    if (F < 2) return;
    const double delay = phase1 + 2.0 * std::numbers::pi * axis.timeShift;
    axis.phase0 = axis.phase1 = 0.0f;
    changePhase(m, doc.source.highestTIndex, d, phase0, delay);
    axis.phase0 = phase0;
    axis.phase1 = phase1;
}

size_t effectiveFtSize(uint32_t size) {
    return size < kMinFtSize ? size : roundFtSize(size);
}

}  // namespace

std::optional<std::vector<uint32_t>> readNusList(const std::string& path) {
    const std::optional<std::string> text = readWholeFile(path, size_t{16} << 20);
    if (!text || text->empty()) return std::nullopt;
    std::istringstream in(*text);
    std::vector<uint32_t> list;
    std::string word;
    while (in >> word) {
        if (word.find_first_not_of("0123456789") != std::string::npos || word.size() > 9)
            return std::nullopt;
        list.push_back(static_cast<uint32_t>(std::stoul(word)));
    }
    if (list.empty()) return std::nullopt;
    return list;
}

FtResult transformNextDimension(SpectrumDocument& doc) {
    SpectrumMatrix& m = doc.matrix;
    const int d = doc.source.highestTIndex;
    if (d < 1 || d > 3 || m.dims[d].points == 0) return {};
    const size_t total = m.pointCount();
    if (m.re.size() != total || (!m.im.empty() && m.im.size() != total)) return {};
    if (!findFourierTransformStep(doc.processing, d)) addDefaultFourierTransformSteps(doc);
    FourierTransformStep* found = findFourierTransformStep(doc.processing, d);
    if (!found) return {};
    FourierTransformStep& step = *found;
    doc.processing.doneMask |= done_mask::transformed(d);
    if (m.contiguous < 1 || m.contiguous > 3) m.contiguous = static_cast<uint8_t>(d);

    if (m.dims[d].pointsAfterNus != 0)
        if (auto stop = expandNus(doc, d)) return *stop;
    const size_t N = m.dims[d].points;
    Run r{doc,
          m,
          step,
          d,
          effectiveFtSize(step.ftSize),
          N,
          N,
          m.pointCount() / N,
          step.shuffling == Shuffling::None ? size_t{1} : size_t{2},
          false};
    if (r.F < kMinFtSize) {
        m.dims[d].phase0 = m.dims[d].phase1 = 0.0f;
        lowerTIndex(doc);
        finishPhase(doc, step, d, r.F);
        return FtResult{FtOutcome::LeftUntransformed, std::nullopt};
    }
    if (r.R == 1) {
        m.workRow.assign(r.F, 0.0f);
        m.state |= matrix_state::kWorkRow;
    } else {
        r.H = r.s == 2 && has(step, ft_flags::kHypercomplex) && r.R > 1 && m.dims[0].points <= 1;
    }
    subtractDcOffset(r);
    if (!placeRows(r)) {
        if (m.contiguous != d && !rotateToContiguous(m, d))
            return FtResult{FtOutcome::RotationFailed, std::nullopt};
        truncateLongData(r);
        if (auto stop = reserveRoom(r)) return *stop;
    }
    shuffleAndRestride(r);
    prepareRows(r);
    if (has(step, ft_flags::kStopBeforeTransform))
        return FtResult{FtOutcome::StoppedBeforeTransform, std::nullopt};
    transformRows(r);
    if (r.H) m.state |= matrix_state::kF2Phaseable;
    lowerTIndex(doc);
    finishPhase(doc, step, d, r.F);
    return FtResult{FtOutcome::Transformed, std::nullopt};
}

}  // namespace zolt
