#include "operations/integral_operations.h"

#include <algorithm>
#include <cmath>

#include "analysis/integral_limits.h"
#include "analysis/integral_report.h"
#include "analysis/integration.h"
#include "operations/analysis_tables.h"
#include "operations/document_axes.h"
#include "processing/baseline.h"

namespace zolt {
namespace {

constexpr double kDeleteAllBelow = 1e-30;
constexpr size_t kMostReadingValues = 7;
// The unit is scaled down a little so that the smallest groups read just above whole numbers.
constexpr double kUnitShare = 0.99;

// The real trace of a transformed 1-D document, or nullptr.
const float* oneDimensionalTrace(const SpectrumDocument& doc) {
    if (doc.source.highestTIndex != 0 || frequencyAxes(doc.matrix) != 1) return nullptr;
    const DimensionRecord& axis = doc.matrix.dims[horizontalAxis(doc)];
    if (axis.points < 2 || doc.matrix.re.size() < axis.points) return nullptr;
    return doc.matrix.re.data();
}

}  // namespace

std::vector<double> rawIntegrals(const SpectrumDocument& doc) {
    const int kind = integralKind(doc);
    const IntegralAxes axes = integralAxes(doc);
    std::vector<double> values;
    values.reserve(doc.integrals.size());
    for (const IntegralRegion& r : doc.integrals)
        values.push_back(r.dimensions() == kind ? integrateRegion(doc.matrix, axes, r) : 0.0);
    return values;
}

OperationResult automaticIntegration(SpectrumDocument& doc, const AutoCutParameters& p) {
    const float* trace = oneDimensionalTrace(doc);
    if (!trace) return {};
    AutoCutResult cut = autoCutRegions(trace, doc.matrix.dims[horizontalAxis(doc)], p);
    if (cut.regions.empty()) return {};
    doc.integrals = std::move(cut.regions);
    doc.page.integralNormalization = cut.divisor;
    return OperationResult{true, std::nullopt};
}

OperationResult addIntegralRegion(SpectrumDocument& doc, std::array<double, 2> x,
                                  std::optional<std::array<double, 2>> y) {
    if (doc.source.highestTIndex != 0 || doc.matrix.re.empty()) return {};
    const int axes = frequencyAxes(doc.matrix);
    if (axes != (y ? 2 : 1)) return {};
    const auto finite = [](const std::array<double, 2>& p) {
        return std::isfinite(p[0]) && std::isfinite(p[1]) && std::fabs(p[0]) < kUnusedLimit &&
               std::fabs(p[1]) < kUnusedLimit;
    };
    if (!finite(x) || (y && !finite(*y))) return {};
    IntegralRegion r;
    r.fields[0] = static_cast<float>(std::max(x[0], x[1]));
    r.fields[1] = static_cast<float>(std::min(x[0], x[1]));
    if (y) {
        r.fields[2] = static_cast<float>(std::max((*y)[0], (*y)[1]));
        r.fields[3] = static_cast<float>(std::min((*y)[0], (*y)[1]));
    }
    doc.integrals.push_back(r);
    doc.flags |= document_flags::kModified;
    return OperationResult{true, std::nullopt};
}

OperationResult fragmentScale(SpectrumDocument& doc, const AutoCutParameters& p) {
    const float* trace = oneDimensionalTrace(doc);
    if (!trace) return {};
    const int x = horizontalAxis(doc);
    std::vector<float> fragments = autoCutFragments(trace, doc.matrix.dims[x], p);
    if (fragments.empty()) return {};
    if (doc.page.plots.empty()) doc.page.plots.emplace_back().horizontal.fIndex = uint8_t(x);
    doc.page.plots.front().horizontal.ppm = std::move(fragments);
    return OperationResult{true, std::nullopt};
}

OperationResult improveIntegralLimits(SpectrumDocument& doc) {
    const float* trace = oneDimensionalTrace(doc);
    if (!trace || doc.integrals.empty()) return {};
    fitLimitsToSignal(doc.integrals, trace, doc.matrix.dims[horizontalAxis(doc)]);
    return OperationResult{true, std::nullopt};
}

void normaliseIntegrals(SpectrumDocument& doc) {
    const double unit = doc.integrals.empty() ? 0.0 : integralUnit(rawIntegrals(doc));
    const float divisor = static_cast<float>(kUnitShare * unit);
    doc.page.integralNormalization = divisor > 0.0f && std::isfinite(divisor) ? divisor : 1.0f;
}

OperationResult deleteIntegrals(SpectrumDocument& doc, double below) {
    if (below < kDeleteAllBelow || std::isnan(below)) {
        doc.integrals.clear();
    } else {
        const int kind = integralKind(doc);
        const std::vector<double> raw = rawIntegrals(doc);
        const double factor = integralFactor(doc);
        std::vector<IntegralRegion> kept;
        for (size_t k = 0; k < doc.integrals.size(); ++k)
            if (doc.integrals[k].dimensions() != kind || !(raw[k] * factor < below))
                kept.push_back(doc.integrals[k]);
        doc.integrals = std::move(kept);
    }
    doc.flags |= document_flags::kModified;
    return OperationResult{true, std::nullopt};
}

std::optional<std::vector<double>> integralReading(const SpectrumDocument& doc, size_t index) {
    if (index >= doc.integrals.size()) return std::nullopt;
    const IntegralRegion& r = doc.integrals[index];
    std::vector<double> values{integrateRegion(doc.matrix, integralAxes(doc), r) *
                               integralFactor(doc)};
    for (const float f : r.fields) {
        if (f >= kOpenLimit || values.size() == kMostReadingValues) break;
        values.push_back(f);
    }
    return values;
}

bool setIntegralReading(SpectrumDocument& doc, size_t index, double value) {
    if (index >= doc.integrals.size()) return false;
    const double raw = integrateRegion(doc.matrix, integralAxes(doc), doc.integrals[index]);
    const float divisor = static_cast<float>(raw / value);
    if (!std::isfinite(divisor) || divisor == 0.0f) return false;
    doc.page.integralNormalization = divisor;
    return true;
}

std::optional<OperationResult> baselineOutsideIntegrals(SpectrumDocument& doc, int order) {
    const float* trace = oneDimensionalTrace(doc);
    const int x = horizontalAxis(doc);
    const DimensionRecord& axis = doc.matrix.dims[x];
    std::vector<uint8_t> signal(axis.points, 0);
    bool any = false;
    for (const IntegralRegion& r : doc.integrals) {
        if (!trace || r.dimensions() != 1) continue;
        const size_t a = integralLimitIndex(axis, r.fields[0]);
        const size_t b = integralLimitIndex(axis, r.fields[1]);
        std::fill(signal.begin() + std::min(a, b), signal.begin() + std::max(a, b), 1);
        any = true;
    }
    if (!any) return std::nullopt;
    order = std::clamp(order, 0, 127);  // what the polynomial step holds
    if (polynomialFitPoints(axis.points, order) >= axis.points)
        return OperationResult{false, Message{kInsufficientPointsCaption, kInsufficientPointsText}};
    PolynomialStep step;
    step.coefficients = fitBaselinePolynomial(trace, signal.data(), axis.points, order);
    if (step.coefficients.empty()) return OperationResult{};
    step.order = static_cast<int8_t>(order);
    applyPolynomialStep(doc, x, step);
    return OperationResult{true, std::nullopt};
}

std::string integralTableText(const SpectrumDocument& doc, bool midpoints, bool commaSeparated) {
    return integralReportText({&doc}, midpoints, 1.0, commaSeparated);
}

}  // namespace zolt
