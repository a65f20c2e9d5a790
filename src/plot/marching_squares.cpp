#include "plot/marching_squares.h"

#include <algorithm>
#include <cmath>

namespace zolt {

namespace {

enum Edge { kTop, kRight, kBottom, kLeft };

// The edges each corner pattern joins: corners top-left 1, top-right 2, bottom-right 4,
// bottom-left 8. The saddles 5 and 10 have their two readings: index 0 with the inside corners
// apart, index 1 with them joined across the centre.
struct EdgePairs {
    int count;
    Edge pairs[2][2];
};
constexpr EdgePairs kCases[16] = {
    {0, {}},
    {1, {{kLeft, kTop}}},
    {1, {{kTop, kRight}}},
    {1, {{kLeft, kRight}}},
    {1, {{kRight, kBottom}}},
    {2, {{kLeft, kTop}, {kRight, kBottom}}},  // saddle, apart
    {1, {{kTop, kBottom}}},
    {1, {{kLeft, kBottom}}},
    {1, {{kBottom, kLeft}}},
    {1, {{kTop, kBottom}}},
    {2, {{kTop, kRight}, {kBottom, kLeft}}},  // saddle, apart
    {1, {{kRight, kBottom}}},
    {1, {{kLeft, kRight}}},
    {1, {{kTop, kRight}}},
    {1, {{kLeft, kTop}}},
    {0, {}},
};
constexpr EdgePairs kSaddlesJoined[2] = {
    {2, {{kTop, kRight}, {kBottom, kLeft}}},  // 5: top-left and bottom-right joined
    {2, {{kLeft, kTop}, {kRight, kBottom}}},  // 10: top-right and bottom-left joined
};

float crossing(float a, float b, float level) {
    const float t = (level - a) / (b - a);
    return std::isfinite(t) ? std::clamp(t, 0.0f, 1.0f) : 0.5f;
}

struct Cell {
    float x, y;  // top-left corner
    float tl, tr, br, bl;

    void point(Edge e, float level, float& px, float& py) const {
        switch (e) {
            case kTop:
                px = x + crossing(tl, tr, level), py = y;
                break;
            case kRight:
                px = x + 1, py = y + crossing(tr, br, level);
                break;
            case kBottom:
                px = x + crossing(bl, br, level), py = y + 1;
                break;
            case kLeft:
                px = x, py = y + crossing(tl, bl, level);
                break;
        }
    }
};

// Negative levels are traced as positive ones of the negated data.
void traceLevel(const Cell& c, float level, bool negative, std::vector<ContourSegment>& out) {
    const float s = negative ? -1.0f : 1.0f;
    const float l = s * level;
    const int pattern = (s * c.tl >= l ? 1 : 0) | (s * c.tr >= l ? 2 : 0) |
                        (s * c.br >= l ? 4 : 0) | (s * c.bl >= l ? 8 : 0);
    const EdgePairs* edges = &kCases[pattern];
    if (pattern == 5 || pattern == 10) {
        const float centre = s * (c.tl + c.tr + c.br + c.bl) * 0.25f;
        if (centre >= l) edges = &kSaddlesJoined[pattern == 5 ? 0 : 1];
    }
    for (int i = 0; i < edges->count; ++i) {
        ContourSegment seg;
        c.point(edges->pairs[i][0], level, seg.x0, seg.y0);
        c.point(edges->pairs[i][1], level, seg.x1, seg.y1);
        out.push_back(seg);
    }
}

}  // namespace

std::vector<std::vector<ContourSegment>> traceContours(const GridWindow& g,
                                                       const std::vector<float>& levels) {
    std::vector<std::vector<ContourSegment>> out(levels.size());
    if (!g.data || g.lastRow < g.firstRow + 2 || g.lastColumn < g.firstColumn + 2) return out;
    if (g.columnsContiguous()) {
        // The lines of the transposed grid, transposed back: the same lines, since every
        // decision of a cell, the saddle's centre too, is symmetric in its two axes.
        out = traceContours(g.transposed(), levels);
        for (auto& level : out)
            for (ContourSegment& s : level) s = {s.y0, s.x0, s.y1, s.x1};
        return out;
    }
    float lowestPositive = INFINITY, highestNegative = -INFINITY;
    for (float l : levels)
        if (l >= 0.0f)
            lowestPositive = std::min(lowestPositive, l);
        else
            highestNegative = std::max(highestNegative, l);
    // Two rows at a time in buffers, and each cell's lowest and highest corner computed for a
    // whole row in a loop the compiler vectorizes: most cells are noise between the innermost
    // levels and are passed over after two comparisons.
    const size_t n = g.lastColumn - g.firstColumn;
    std::vector<float> upper(n), lower(n), cellLow(n - 1), cellHigh(n - 1);
    const auto load = [&](size_t r, std::vector<float>& row) {
        for (size_t k = 0; k < n; ++k) row[k] = g.value(r, g.firstColumn + k);
    };
    load(g.firstRow, lower);
    for (size_t r = g.firstRow; r + 1 < g.lastRow; ++r) {
        upper.swap(lower);
        load(r + 1, lower);
        // Blocks of a fixed size, so that the loops need no remainder and vectorize.
        constexpr size_t kBlock = 16;
        const size_t cells = n - 1;
        for (size_t k0 = 0; k0 < cells; k0 += kBlock) {
            if (k0 + kBlock + 1 <= n) {
                bool any = false;
                for (size_t j = 0; j < kBlock; ++j) {
                    const size_t k = k0 + j;
                    const float lo = std::min(std::min(upper[k], upper[k + 1]),
                                              std::min(lower[k], lower[k + 1]));
                    const float hi = std::max(std::max(upper[k], upper[k + 1]),
                                              std::max(lower[k], lower[k + 1]));
                    cellLow[k] = lo;
                    cellHigh[k] = hi;
                    any |= (hi >= lowestPositive) | (lo <= highestNegative);
                }
                if (!any) continue;
            } else {
                for (size_t k = k0; k < cells; ++k) {
                    cellLow[k] = std::min(std::min(upper[k], upper[k + 1]),
                                          std::min(lower[k], lower[k + 1]));
                    cellHigh[k] = std::max(std::max(upper[k], upper[k + 1]),
                                           std::max(lower[k], lower[k + 1]));
                }
            }
            for (size_t k = k0; k < std::min(k0 + kBlock, cells); ++k) {
                const float lo = cellLow[k], hi = cellHigh[k];
                if (hi < lowestPositive && lo > highestNegative) continue;
                const Cell c{float(g.firstColumn + k),
                             float(r),
                             upper[k],
                             upper[k + 1],
                             lower[k + 1],
                             lower[k]};
                for (size_t i = 0; i < levels.size(); ++i) {
                    const float level = levels[i];
                    const bool negative = level < 0.0f;
                    if (negative ? (lo > level || hi <= level) : (hi < level || lo >= level))
                        continue;
                    traceLevel(c, level, negative, out[i]);
                }
            }
        }
    }
    return out;
}

}  // namespace zolt
