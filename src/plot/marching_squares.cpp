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
    float lowestPositive = INFINITY, highestNegative = -INFINITY;
    for (float l : levels)
        if (l >= 0.0f)
            lowestPositive = std::min(lowestPositive, l);
        else
            highestNegative = std::max(highestNegative, l);
    for (size_t r = g.firstRow; r + 1 < g.lastRow; ++r) {
        for (size_t col = g.firstColumn; col + 1 < g.lastColumn; ++col) {
            const Cell c{float(col),
                         float(r),
                         g.value(r, col),
                         g.value(r, col + 1),
                         g.value(r + 1, col + 1),
                         g.value(r + 1, col)};
            const float lo = std::min(std::min(c.tl, c.tr), std::min(c.br, c.bl));
            const float hi = std::max(std::max(c.tl, c.tr), std::max(c.br, c.bl));
            // Most cells are noise between the innermost levels: two comparisons for them.
            if (hi < lowestPositive && lo > highestNegative) continue;
            for (size_t i = 0; i < levels.size(); ++i) {
                const float level = levels[i];
                const bool negative = level < 0.0f;
                if (negative ? (lo > level || hi <= level) : (hi < level || lo >= level)) continue;
                traceLevel(c, level, negative, out[i]);
            }
        }
    }
    return out;
}

}  // namespace zolt
