#include "plot/map_plane.h"

#include "processing/phase.h"

namespace zolt {

std::optional<Plane> shownPlane(const SpectrumMatrix& m) {
    const int xf = m.xIndex, yf = m.yIndex;
    if (xf < 1 || xf > 3 || yf < 1 || yf > 3 || xf == yf) return std::nullopt;
    const size_t total = m.pointCount();
    if (m.re.size() < total || m.dims[xf].points < 2 || m.dims[yf].points < 2) return std::nullopt;
    Plane pl;
    pl.x = &m.dims[xf];
    pl.y = &m.dims[yf];
    pl.grid.columnStride = axisWalk(m, xf, total).inner;
    pl.grid.rowStride = axisWalk(m, yf, total).inner;
    const size_t last =
        (pl.x->points - 1) * pl.grid.columnStride + (pl.y->points - 1) * pl.grid.rowStride;
    if (m.planeOffset + last >= m.re.size()) return std::nullopt;
    pl.grid.data = m.re.data() + m.planeOffset;
    return pl;
}

}  // namespace zolt
