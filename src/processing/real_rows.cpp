#include "processing/real_rows.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <vector>

#include "processing/kernels.h"
#include "processing/phase.h"
#include "processing/row_parallel.h"

namespace zolt {
namespace {

// Strided rows are gathered a tile at a time, so that each cache line read or written serves a
// whole tile of rows instead of one point.
constexpr size_t kTile = kRowGroup;

using RowFunction = std::function<void(float*, size_t, size_t)>;

struct RealRows {
    float* data = nullptr;
    AxisWalk w;
    size_t tilesPerBlock = 0;
    // Work units: whole rows when contiguous, else tiles of up to kTile rows.
    size_t units() const { return w.inner == 1 ? w.outer : w.outer * tilesPerBlock; }
};

// The walk of the real parts; data is left for the caller that writes them.
bool realRows(const SpectrumMatrix& m, int fIndex, RealRows& rows) {
    if (fIndex < 1 || fIndex > 3) return false;
    const size_t total = m.pointCount();
    if (m.re.size() < total) return false;
    // With hypercomplex halves only the first half holds the real parts of every axis.
    const size_t count = hasHypercomplexHalves(m) ? total / 2 : total;
    rows.w = axisWalk(m, fIndex, count);
    rows.tilesPerBlock = (rows.w.inner + kTile - 1) / kTile;
    return true;
}

// Units [begin, end) of the walk; fn still sees the rows of a tile one by one, in order. A
// walk that only reads leaves the gathered tiles unwritten.
void walkUnits(const RealRows& rows, size_t begin, size_t end, std::vector<float>& buffer,
               const RowFunction& fn, bool writeBack = true) {
    const AxisWalk& w = rows.w;
    const size_t block = w.n * w.inner;
    for (size_t u = begin; u < end; ++u) {
        if (w.inner == 1) {
            fn(rows.data + u * block, w.n, u);
            continue;
        }
        const size_t o = u / rows.tilesPerBlock, j0 = u % rows.tilesPerBlock * kTile;
        const size_t t = std::min(kTile, w.inner - j0);
        float* base = rows.data + o * block + j0;
        transposeBlock(base, w.inner, buffer.data(), w.n, w.n, t);
        for (size_t j = 0; j < t; ++j) fn(buffer.data() + j * w.n, w.n, o * w.inner + j0 + j);
        if (writeBack) transposeBlock(buffer.data(), w.n, base, w.inner, t, w.n);
    }
}

bool tileBuffer(const RealRows& rows, std::vector<float>& buffer) {
    if (rows.w.inner == 1) return true;
    try {
        buffer.resize(rows.w.n * kTile);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

size_t groupCount(const RealRows& rows) {
    return rows.w.inner == 1 ? (rows.w.outer + kRowGroup - 1) / kRowGroup : rows.units();
}

// The rows of a group: contiguous ones where they stand, a tile's gathered into buffer.
size_t groupRows(const RealRows& r, size_t group, std::vector<float>& buffer,
                 float* rows[kRowGroup], size_t& first) {
    const AxisWalk& w = r.w;
    if (w.inner == 1) {
        first = group * kRowGroup;
        const size_t count = first < w.outer ? std::min(kRowGroup, w.outer - first) : 0;
        for (size_t k = 0; k < count; ++k) rows[k] = r.data + (first + k) * w.n;
        return count;
    }
    const size_t o = group / r.tilesPerBlock, j0 = group % r.tilesPerBlock * kTile;
    const size_t count = std::min(kTile, w.inner - j0);
    transposeBlock(r.data + o * w.n * w.inner + j0, w.inner, buffer.data(), w.n, w.n, count);
    first = o * w.inner + j0;
    for (size_t k = 0; k < count; ++k) rows[k] = buffer.data() + k * w.n;
    return count;
}

void writeGroupBack(const RealRows& r, size_t group, const std::vector<float>& buffer) {
    const AxisWalk& w = r.w;
    const size_t o = group / r.tilesPerBlock, j0 = group % r.tilesPerBlock * kTile;
    const size_t count = std::min(kTile, w.inner - j0);
    transposeBlock(buffer.data(), w.n, r.data + o * w.n * w.inner + j0, w.inner, count, w.n);
}

}  // namespace

size_t realRowCount(const SpectrumMatrix& m, int fIndex) {
    RealRows rows;
    if (!realRows(m, fIndex, rows)) return 0;
    return rows.w.outer * rows.w.inner;
}

bool forEachRealRow(SpectrumMatrix& m, int fIndex, const std::function<void(float*, size_t)>& fn) {
    RealRows rows;
    std::vector<float> buffer;
    if (!realRows(m, fIndex, rows) || !tileBuffer(rows, buffer)) return false;
    rows.data = m.re.data();
    walkUnits(rows, 0, rows.units(), buffer, [&](float* row, size_t n, size_t) { fn(row, n); });
    return true;
}

bool forEachRealRowRead(const SpectrumMatrix& m, int fIndex,
                        const std::function<void(const float*, size_t)>& fn) {
    RealRows rows;
    std::vector<float> buffer;
    if (!realRows(m, fIndex, rows) || !tileBuffer(rows, buffer)) return false;
    // Read only: the walk writes nothing back.
    rows.data = const_cast<float*>(m.re.data());
    walkUnits(
        rows, 0, rows.units(), buffer, [&](float* row, size_t n, size_t) { fn(row, n); }, false);
    return true;
}

bool forEachRealRowInParallel(SpectrumMatrix& m, int fIndex, const RowFunction& fn) {
    RealRows rows;
    if (!realRows(m, fIndex, rows)) return false;
    rows.data = m.re.data();
    // A tile holds up to kTile rows, so fewer tiles than rows make a thread worth while.
    const size_t minUnits = rows.w.inner == 1 ? 16 : 2;
    bool complete = true;
    try {
        forEachRowRange(rows.units(), minUnits, [&](size_t begin, size_t end) {
            std::vector<float> buffer;
            if (!tileBuffer(rows, buffer)) throw std::bad_alloc();
            walkUnits(rows, begin, end, buffer, fn);
        });
    } catch (const std::bad_alloc&) {
        complete = false;
    }
    return complete;
}

size_t realRowGroupCount(const SpectrumMatrix& m, int fIndex) {
    RealRows rows;
    if (!realRows(m, fIndex, rows)) return 0;
    return groupCount(rows);
}

size_t readRealRowGroup(const SpectrumMatrix& m, int fIndex, size_t group,
                        std::vector<float>& buffer, const float* rows[kRowGroup], size_t& first) {
    RealRows r;
    if (!realRows(m, fIndex, r)) return 0;
    if (!tileBuffer(r, buffer)) throw std::bad_alloc();
    // Read only: nothing is written through these rows.
    r.data = const_cast<float*>(m.re.data());
    float* found[kRowGroup];
    const size_t count = groupRows(r, group, buffer, found, first);
    std::copy_n(found, count, rows);
    return count;
}

bool forEachRealRowGroupInParallel(SpectrumMatrix& m, int fIndex, const GroupFunction& fn) {
    RealRows r;
    if (!realRows(m, fIndex, r)) return false;
    r.data = m.re.data();
    // The groups are taken one after another by whichever thread is free: the work of a row
    // varies with what it holds, and rows of signal come in runs.
    const size_t groups = groupCount(r);
    std::atomic<size_t> next{0};
    bool complete = true;
    try {
        onRowThreads(std::max<size_t>(1, groups / (r.w.inner == 1 ? 1 : 2)), [&] {
            std::vector<float> buffer;
            if (!tileBuffer(r, buffer)) throw std::bad_alloc();
            for (size_t g = next.fetch_add(1); g < groups; g = next.fetch_add(1)) {
                float* rows[kRowGroup];
                size_t first = 0;
                const size_t count = groupRows(r, g, buffer, rows, first);
                fn(rows, count, r.w.n, first);
                if (r.w.inner > 1) writeGroupBack(r, g, buffer);
            }
        });
    } catch (const std::bad_alloc&) {
        complete = false;
    }
    return complete;
}

}  // namespace zolt
