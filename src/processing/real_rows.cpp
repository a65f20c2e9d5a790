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

struct RealRows {
    float* data = nullptr;
    AxisWalk w;
    size_t tilesPerBlock = 0;
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

bool tileBuffer(const RealRows& rows, std::vector<float>& buffer) {
    if (rows.w.inner == 1) return true;
    try {
        buffer.resize(rows.w.n * kTile);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

// Groups: runs of kRowGroup contiguous rows, else tiles of up to kTile strided ones.
size_t groupCount(const RealRows& rows) {
    return rows.w.inner == 1 ? (rows.w.outer + kRowGroup - 1) / kRowGroup
                             : rows.w.outer * rows.tilesPerBlock;
}

// Where a strided group's tile starts in the data, its first row and its row count.
float* tileAt(const RealRows& r, size_t group, size_t& first, size_t& count) {
    const AxisWalk& w = r.w;
    const size_t o = group / r.tilesPerBlock, j0 = group % r.tilesPerBlock * kTile;
    first = o * w.inner + j0;
    count = std::min(kTile, w.inner - j0);
    return r.data + o * w.n * w.inner + j0;
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
    size_t count = 0;
    const float* tile = tileAt(r, group, first, count);
    transposeBlock(tile, w.inner, buffer.data(), w.n, w.n, count);
    for (size_t k = 0; k < count; ++k) rows[k] = buffer.data() + k * w.n;
    return count;
}

void writeGroupBack(const RealRows& r, size_t group, const std::vector<float>& buffer) {
    size_t first = 0, count = 0;
    float* tile = tileAt(r, group, first, count);
    transposeBlock(buffer.data(), r.w.n, tile, r.w.inner, count, r.w.n);
}

// Every group in order on this thread, rows handed one by one; a walk that only reads
// leaves the gathered tiles unwritten.
void walkGroups(const RealRows& r, std::vector<float>& buffer,
                const std::function<void(float*, size_t)>& fn, bool writeBack) {
    for (size_t g = 0; g < groupCount(r); ++g) {
        float* rows[kRowGroup];
        size_t first = 0;
        const size_t count = groupRows(r, g, buffer, rows, first);
        for (size_t k = 0; k < count; ++k) fn(rows[k], r.w.n);
        if (writeBack && r.w.inner > 1) writeGroupBack(r, g, buffer);
    }
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
    walkGroups(rows, buffer, fn, true);
    return true;
}

bool forEachRealRowRead(const SpectrumMatrix& m, int fIndex,
                        const std::function<void(const float*, size_t)>& fn) {
    RealRows rows;
    std::vector<float> buffer;
    if (!realRows(m, fIndex, rows) || !tileBuffer(rows, buffer)) return false;
    // Read only: the walk writes nothing back.
    rows.data = const_cast<float*>(m.re.data());
    walkGroups(
        rows, buffer, [&](float* row, size_t n) { fn(row, n); }, false);
    return true;
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
