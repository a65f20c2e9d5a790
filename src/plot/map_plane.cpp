#include "plot/map_plane.h"

#include <algorithm>
#include <cmath>

#include "plot/axis_map.h"
#include "processing/phase.h"

namespace zolt {

namespace {

size_t planeOffset(const SpectrumMatrix& m, float zeta, size_t total) {
    const int zf = m.zIndex;
    if (zf < 1 || zf > 3 || zf == m.xIndex || zf == m.yIndex || m.dims[zf].points < 2)
        return m.planeOffset;
    const DimensionRecord& z = m.dims[zf];
    const double at = pointPosition(z, zeta);
    const size_t plane =
        std::isfinite(at) ? size_t(std::clamp(std::round(at), 0.0, double(z.points - 1))) : 0;
    return plane * axisWalk(m, zf, total).inner;
}

}  // namespace

std::optional<Plane> shownPlane(const SpectrumMatrix& m, float zeta) {
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
    const size_t offset = planeOffset(m, zeta, total);
    if (offset + last >= m.re.size()) return std::nullopt;
    pl.grid.data = m.re.data() + offset;
    return pl;
}

}  // namespace zolt
