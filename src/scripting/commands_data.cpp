// Commands on the intensities themselves: copying them out and in, and point-wise changes.
#include <algorithm>
#include <cmath>

#include "processing/fft.h"
#include "processing/kernels.h"
#include "scripting/commands.h"
#include "scripting/script_args.h"

namespace zolt {

namespace {

// Largest table paste turns into a spectrum.
constexpr size_t kMaxPastePoints = size_t{1} << 24;

uint32_t axisPoints(const SpectrumMatrix& m, int fIndex) {
    return fIndex > 0 && fIndex < 4 ? std::max<uint32_t>(m.dims[fIndex].points, 1) : 1;
}

// Points per row: the axis stored contiguously.
size_t rowLength(const SpectrumMatrix& m) {
    return axisPoints(m, m.contiguous ? m.contiguous : m.xIndex);
}

size_t integerField(lua_State* L, int table, const char* key, size_t def) {
    lua_getfield(L, table, key);
    size_t v = def;
    if (lua_isnumber(L, -1))
        v = static_cast<size_t>(clampNumber(std::trunc(lua_tonumber(L, -1)), 1, kMaxPastePoints));
    lua_pop(L, 1);
    return v;
}

// The real parts of the first target's current plane, with its axis sizes as x, y and z.
int copy(lua_State* L) {
    SpectrumDocument* d = firstTarget(L);
    if (!d) return 0;
    const SpectrumMatrix& m = d->matrix;
    const size_t nx = axisPoints(m, m.xIndex), ny = axisPoints(m, m.yIndex);
    const size_t nz = axisPoints(m, m.zIndex);
    const size_t offset = std::min(m.planeOffset, m.re.size());
    const size_t n = std::min(nx * ny, m.re.size() - offset);
    lua_createtable(L, static_cast<int>(std::min<size_t>(n, INT32_MAX)), 3);
    for (size_t i = 0; i < n; ++i) {
        lua_pushnumber(L, m.re[offset + i]);
        lua_rawseti(L, -2, static_cast<int>(i + 1));
    }
    setNumberField(L, "x", double(nx));
    setNumberField(L, "y", double(ny));
    setNumberField(L, "z", double(nz));
    return 1;
}

int hilbert(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) {
        SpectrumMatrix& m = d->matrix;
        const size_t n = rowLength(m);
        if (m.re.empty() || n < 2) continue;
        std::vector<float> scratch(n);
        m.im.resize(m.re.size(), 0.0f);
        m.state &= static_cast<uint16_t>(~(matrix_state::kRealOnly | matrix_state::kMagnitude));
        for (size_t row = 0; row + n <= m.re.size(); row += n)
            hilbertRow(m.re.data() + row, m.im.data() + row, n, scratch.data());
        host(L).context().redraw(*d);
    }
    return 0;
}

int magn(lua_State* L) {
    const bool on = optBoolean(L, 1, true);
    for (SpectrumDocument* d : targets(L)) {
        SpectrumMatrix& m = d->matrix;
        const bool isMagnitude = (m.state & matrix_state::kMagnitude) != 0;
        if (m.re.empty() || m.im.size() != m.re.size() || on == isMagnitude) continue;
        togglePolar(m.re.data(), m.im.data(), m.re.size(), on);
        m.state ^= matrix_state::kMagnitude;
        host(L).context().redraw(*d);
    }
    return 0;
}

int noneg(lua_State* L) {
    for (SpectrumDocument* d : targets(L)) {
        for (float& v : d->matrix.re) v = std::max(v, 0.0f);
        host(L).context().redraw(*d);
    }
    return 0;
}

// A table shaped as copy's: replaces the real parts of the first target when the sizes
// agree, otherwise becomes a new real spectrum (axes taken from the first target if any).
int paste(lua_State* L) {
    luaL_checktype(L, 1, LUA_TTABLE);
    const size_t n = lua_objlen(L, 1);
    if (n == 0 || n > kMaxPastePoints) return 0;
    std::vector<float> values(n);
    for (size_t i = 0; i < n; ++i) {
        lua_rawgeti(L, 1, static_cast<int>(i + 1));
        values[i] = static_cast<float>(lua_tonumber(L, -1));
        lua_pop(L, 1);
    }
    SpectrumDocument* d = firstTarget(L);
    if (d && d->matrix.re.size() == n) {
        d->matrix.re = std::move(values);
        d->matrix.im.clear();
        d->matrix.state |= matrix_state::kRealOnly;
        d->matrix.state &= static_cast<uint16_t>(~matrix_state::kMagnitude);
        host(L).context().redraw(*d);
        return 0;
    }
    size_t nx = integerField(L, 1, "x", n), ny = integerField(L, 1, "y", 1);
    if (nx * ny != n) nx = n, ny = 1;
    const std::array<DimensionRecord, 4> axes =
        d ? d->matrix.dims : std::array<DimensionRecord, 4>{};
    SpectrumDocument* created = host(L).context().newDocument();
    if (!created) return 0;
    SpectrumMatrix& m = created->matrix;
    m = SpectrumMatrix{};
    m.dims = axes;
    m.dims[0].points = 1;
    const int xf = ny > 1 ? 2 : 1;
    m.dims[xf].points = static_cast<uint32_t>(nx);
    if (ny > 1) m.dims[1].points = static_cast<uint32_t>(ny);
    for (int f = xf + 1; f < 4; ++f) m.dims[f] = DimensionRecord{};
    for (int f = 1; f <= xf; ++f) {
        if (m.dims[f].spectralWidth < 0.01f) m.dims[f].spectralWidth = 10.0f;
        if (m.dims[f].carrier < 1.0f) m.dims[f].carrier = 1.0f;
    }
    m.xIndex = static_cast<uint8_t>(xf);
    m.yIndex = static_cast<uint8_t>(ny > 1 ? 1 : 0);
    m.dimensions = static_cast<uint8_t>(xf);
    m.contiguous = static_cast<uint8_t>(xf);
    m.state = matrix_state::kRealOnly;
    m.re = std::move(values);
    created->source.numberType = NumberType::InMemory;
    created->source.dims = m.dims;
    created->source.xIndex = static_cast<int8_t>(m.xIndex);
    created->source.yIndex = static_cast<int8_t>(m.yIndex);
    created->source.flags = source_flags::kRealOnly;
    created->source.highestTIndex = 0;
    host(L).rebuildTargets();
    return 0;
}

}  // namespace

const luaL_Reg kDataCommands[] = {
    {"copy", copy},   {"hilbert", hilbert}, {"magn", magn},
    {"noneg", noneg}, {"paste", paste},     {nullptr, nullptr},
};

}  // namespace zolt
