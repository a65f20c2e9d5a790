// Quadrature recombination of an indirect dimension: pairs of time points become one complex
// point (States / TPPI pairs, echo / anti-echo pairs).
#pragma once

#include <cstddef>

#include "model/processing_step.h"

namespace zolt {

// The rows to recombine: n time points each, row r at r * stride. Point k of a row is written
// in place from points 2k and 2k+1 (k < n/2). When re2 is not null the hypercomplex half is
// written too, row r at re2 + r * stride2 and im2 + r * stride2 (a region apart from the rows).
struct ShuffleRows {
    float* re = nullptr;
    float* im = nullptr;
    size_t rows = 0;
    size_t n = 0;
    size_t stride = 0;
    float* re2 = nullptr;
    float* im2 = nullptr;
    size_t stride2 = 0;
};

void shuffleRows(Shuffling mode, const ShuffleRows& rows);

}  // namespace zolt
