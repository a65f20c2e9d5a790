#include "processing/ft_step.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "processing/ft_defaults.h"

namespace zolt {

namespace {

float clampOr(float v, float lo, float hi, float neutral) {
    if (std::isnan(v)) return neutral;
    return std::clamp(v, lo, hi);
}

// The one place a step is created: null when the axis has no defaults.
FourierTransformStep* appendDefaultStep(SpectrumDocument& doc, int fIndex) {
    const VendorProcessing* vendor =
        fIndex >= 1 && fIndex <= 3 ? &doc.vendorProcessing[fIndex] : nullptr;
    auto step = defaultFourierTransformStep(doc.source, fIndex, vendor);
    if (!step) return nullptr;
    doc.processing.steps.push_back(ProcessingStep{static_cast<uint8_t>(fIndex), *step});
    return &std::get<FourierTransformStep>(doc.processing.steps.back().data);
}

}  // namespace

uint32_t roundFtSize(uint64_t size, uint32_t maxSize) {
    const uint64_t top =
        std::clamp<uint64_t>(std::bit_floor(uint64_t{maxSize}), kMinFtSize, kMaxFtSize);
    if (size <= kMinFtSize) return kMinFtSize;
    if (size >= top) return static_cast<uint32_t>(top);
    return static_cast<uint32_t>(std::bit_ceil(size));
}

void clampFourierTransformStep(FourierTransformStep& step) {
    auto& p = step.weights;
    for (int i : {kWeightExponential, kWeightGaussian, kWeightSineBell, kWeightSquaredSine})
        p[i] = clampOr(p[i], -kWeightShiftLimit, kWeightShiftLimit, 0.0f);
    p[kWeightTruncation] = clampOr(p[kWeightTruncation], kTruncationMin, kTruncationMax, 100.0f);
    p[kWeightFirstPoint] = clampOr(p[kWeightFirstPoint], 0.0f, kFirstPointMax, 1.0f);
    if (step.maxIstIterations != 0)
        step.maxIstIterations = std::clamp<int16_t>(step.maxIstIterations, 1, kMaxIstIterations);
    step.ftSize = roundFtSize(step.ftSize);
}

FourierTransformStep* findFourierTransformStep(ProcessingRecord& record, int fIndex) {
    for (auto& s : record.steps)
        if (s.dimension == fIndex && s.kind() == StepKind::FourierTransform)
            return &std::get<FourierTransformStep>(s.data);
    return nullptr;
}

const FourierTransformStep* findFourierTransformStep(const ProcessingRecord& record, int fIndex) {
    return findFourierTransformStep(const_cast<ProcessingRecord&>(record), fIndex);
}

FourierTransformStep& fourierTransformStep(SpectrumDocument& doc, int fIndex) {
    if (auto* found = findFourierTransformStep(doc.processing, fIndex)) return *found;
    if (auto* created = appendDefaultStep(doc, fIndex)) return *created;
    doc.processing.steps.push_back(
        ProcessingStep{static_cast<uint8_t>(fIndex), FourierTransformStep{}});
    return std::get<FourierTransformStep>(doc.processing.steps.back().data);
}

void addDefaultFourierTransformSteps(SpectrumDocument& doc) {
    for (int f = doc.source.highestTIndex; f >= 1; --f)
        if (!findFourierTransformStep(doc.processing, f)) appendDefaultStep(doc, f);
}

}  // namespace zolt
