// One axis of a spectrum and the conversions between points, Hz and ppm.
#pragma once

#include <cstdint>

namespace zolt {

struct DimensionRecord {
    uint32_t points = 0;
    uint32_t pointsAfterNus = 0;  // 0: no NUS
    float spectralWidth = 0.0f;   // ppm of the carrier
    float lowestPpm = 0.0f;       // right-hand (low-frequency) edge
    float carrier = 0.0f;         // MHz
    float phase0 = 0.0f;          // radians
    float phase1 = 0.0f;          // radians across the axis
    float timeShift = 0.0f;       // points
    uint8_t isotope = 0;
    char atom[2] = {0, 0};  // "H", "C", "Si"; ".." marks a pseudo-dimension
};

// Spectrometer phases in degrees are stored as degrees times this factor.
inline constexpr double kDegreesToStoredRadians = -0.01745329251994329;

bool isPseudoDimension(const DimensionRecord& d);
// At least 2 points and not a pseudo-dimension.
bool countsAsDimension(const DimensionRecord& d);
// A pseudo-dimension's "ppm" scale counts rows.
void makePseudoDimension(DimensionRecord& d, uint32_t rows);

// Centre of point i: each point is a bin, point 0 the high-ppm edge.
double ppmOfPoint(const DimensionRecord& d, double i);
// Truncated, then clamped to 0 ... N-1.
int64_t pointOfPpm(const DimensionRecord& d, double ppm);
double ppmStep(const DimensionRecord& d);
double hzStep(const DimensionRecord& d);
double spectralWidthHz(const DimensionRecord& d);
double dwellTimeMs(const DimensionRecord& d);
// A reader's width in Hz becomes ppm of the carrier.
float spectralWidthFromHz(double hz, double carrierMhz);
// A dwell time in microseconds becomes a width in Hz.
double spectralWidthHzFromDwell(double dwellMicroseconds);

// "H", "C", "Si", "..": the atom as text.
const char* atomText(const DimensionRecord& d, char (&buffer)[3]);
void setAtom(DimensionRecord& d, const char* symbol);

}  // namespace zolt
