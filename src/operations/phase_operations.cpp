#include "operations/phase_operations.h"

#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include "operations/document_axes.h"
#include "processing/auto_phase.h"
#include "processing/phase.h"
#include "processing/polar.h"

namespace zolt {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;

bool phaseable(const SpectrumMatrix& m) {
    return !m.realOnly() && !m.im.empty() && !(m.state & matrix_state::kMagnitude);
}

}  // namespace

OperationResult changeDocumentPhase(SpectrumDocument& doc, double zero, double first,
                                    std::optional<int> fIndex) {
    const int f = fIndex ? *fIndex : horizontalAxis(doc);
    changePhase(doc.matrix, doc.source.highestTIndex, f, zero, first);
    return OperationResult{true, std::nullopt};
}

OperationResult changeDocumentPhaseDegrees(SpectrumDocument& doc, double zeroDegrees,
                                           double firstDegrees, std::optional<int> fIndex) {
    return changeDocumentPhase(doc, zeroDegrees * kRadiansPerDegree,
                               firstDegrees * kRadiansPerDegree, fIndex);
}

double zeroOrderAtFirstPoint(const PivotedPhase& p, size_t points) {
    if (points == 0) return p.zeroDegrees;
    return p.zeroDegrees - p.firstDegrees * p.pivot / static_cast<double>(points);
}

PivotedPhase removingPhase(const DimensionRecord& d, double pivot) {
    PivotedPhase p{0.0, -d.phase1 / kRadiansPerDegree, pivot};
    const double atFirst = -d.phase0 / kRadiansPerDegree;
    p.zeroDegrees = d.points ? atFirst + p.firstDegrees * pivot / d.points : atFirst;
    return p;
}

OperationResult automaticPhase(SpectrumDocument& doc, bool alternative) {
    if (doc.source.highestTIndex != 0 || !phaseable(doc.matrix)) return {};
    const int axes = frequencyAxes(doc.matrix);
    if (axes == 1)
        autoPhase(doc.matrix, 0, {}, alternative);
    else if (axes == 2)
        autoPhase2D(doc.matrix, 0);
    return OperationResult{true, std::nullopt};
}

OperationResult phaseRow(SpectrumDocument& doc, size_t row, double a, double b) {
    SpectrumMatrix& m = doc.matrix;
    const size_t total = m.pointCount();
    if (m.realOnly() || m.re.size() < total || m.im.size() < total) return {};
    const int x = horizontalAxis(doc);
    const int paired = halvesComplexAxis(m);
    const size_t count = paired ? total / 2 : total;
    const AxisWalk w = axisWalk(m, x, count);
    if (row >= w.outer * w.inner) return {};
    if (m.state & matrix_state::kMagnitude) {
        togglePolar(m.re.data(), m.im.data(), total, false);
        m.state &= ~matrix_state::kMagnitude;
    }
    const size_t start = (row / w.inner) * w.n * w.inner + row % w.inner;
    // Along an axis other than the paired one of hypercomplex halves, the imaginary parts of
    // the axis lie in the second half, for the real and for the imaginary array.
    std::vector<std::pair<float*, float*>> pairs{{m.re.data(), m.im.data()}};
    if (paired && paired != x)
        pairs = {{m.re.data(), m.re.data() + count}, {m.im.data(), m.im.data() + count}};
    std::vector<float> re(w.n), im(w.n);
    for (auto [pa, pb] : pairs) {
        for (size_t k = 0; k < w.n; ++k) {
            re[k] = pa[start + k * w.inner];
            im[k] = pb[start + k * w.inner];
        }
        applyPhaseToRow(re.data(), im.data(), w.n, a, b);
        for (size_t k = 0; k < w.n; ++k) {
            pa[start + k * w.inner] = re[k];
            pb[start + k * w.inner] = im[k];
        }
    }
    return OperationResult{true, std::nullopt};
}

}  // namespace zolt
