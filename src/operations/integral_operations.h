// Integration of a document: the automatic cut, improved limits, normalisation, deletion,
// single-region readings and the baseline fitted outside the integral regions.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include "analysis/auto_cut.h"
#include "model/spectrum_document.h"
#include "operations/operation_result.h"

namespace zolt {

// Automatic cut in integration mode on a transformed 1-D document: the regions found replace
// the document's list and the divisor becomes largest / ratio; a trace without signal leaves
// both as they were.
OperationResult automaticIntegration(SpectrumDocument& doc, const AutoCutParameters& p);
// Automatic cut in scale-fragmentation mode: the runs of signal become the segments of the
// main plot's horizontal axis.
OperationResult fragmentScale(SpectrumDocument& doc, const AutoCutParameters& p);

// A region drawn with the integrator over ascending ppm pairs: horizontal only on a transformed
// 1-D document, horizontal and vertical on a 2-D one (no end-point correction). It is appended
// with the higher limit first, as the automatic cut stores them. Marks the document modified.
OperationResult addIntegralRegion(SpectrumDocument& doc, std::array<double, 2> x,
                                  std::optional<std::array<double, 2>> y = std::nullopt);

// `exact`: the limits of the 1-D regions of a transformed 1-D document fitted to its signal.
OperationResult improveIntegralLimits(SpectrumDocument& doc);

// `normi`: the divisor becomes 0.99 x the estimated unit (integralUnit), so that the smallest
// groups read just above whole numbers; 1 without integrals or without a counted one.
void normaliseIntegrals(SpectrumDocument& doc);

// `delint`: below 1e-30 every region goes; otherwise the regions of the document's kind whose
// displayed value (raw integral / divisor) is below the limit. Marks the document modified.
OperationResult deleteIntegrals(SpectrumDocument& doc, double below);

// `intreg`: the region's displayed value, then its stored fields up to the first one that is
// 10000 or more, seven values at most. Nothing for an index (from 0) out of range.
std::optional<std::vector<double>> integralReading(const SpectrumDocument& doc, size_t index);
// Sets the divisor so that the region reads `value`; false (nothing changed) when the index is
// out of range or no finite, non-zero divisor results.
bool setIntegralReading(SpectrumDocument& doc, size_t index, double value);

// The raw integral of each region (0 for regions of another kind than the document's).
std::vector<double> rawIntegrals(const SpectrumDocument& doc);

// Polynomial baseline of a transformed 1-D document whose 1-D integral regions are the
// signal and everything outside them the baseline; recorded as an explicit polynomial step so
// that replaying it needs no regions. False (not applied) when the document has no such
// regions; the message when the order asks for more points than the row has.
std::optional<OperationResult> baselineOutsideIntegrals(SpectrumDocument& doc, int order);

}  // namespace zolt
