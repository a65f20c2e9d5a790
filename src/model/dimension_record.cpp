#include "model/dimension_record.h"

#include <cmath>

namespace zolt {

bool isPseudoDimension(const DimensionRecord& d) { return d.atom[0] == '.' && d.atom[1] == '.'; }

bool countsAsDimension(const DimensionRecord& d) { return d.points >= 2 && !isPseudoDimension(d); }

void makePseudoDimension(DimensionRecord& d, uint32_t rows) {
    d.isotope = 0;
    d.atom[0] = d.atom[1] = '.';
    d.spectralWidth = static_cast<float>(rows);
    d.carrier = static_cast<float>(rows);
    d.lowestPpm = -static_cast<float>(rows);
}

double ppmOfPoint(const DimensionRecord& d, double i) {
    const double n = d.points ? d.points : 1;
    return d.lowestPpm + d.spectralWidth * (1.0 - (i + 0.5) / n);
}

int64_t pointOfPpm(const DimensionRecord& d, double ppm) {
    const int64_t n = d.points ? d.points : 1;
    if (d.spectralWidth == 0.0f) return 0;
    const double x = (1.0 - (ppm - d.lowestPpm) / d.spectralWidth) * static_cast<double>(n);
    if (!(x > 0.0)) return 0;  // also catches NaN
    if (x >= static_cast<double>(n - 1)) return n - 1;
    return static_cast<int64_t>(x);
}

double ppmStep(const DimensionRecord& d) {
    return static_cast<double>(d.spectralWidth) / (d.points ? d.points : 1);
}

double hzStep(const DimensionRecord& d) { return ppmStep(d) * d.carrier; }

double spectralWidthHz(const DimensionRecord& d) {
    return static_cast<double>(d.spectralWidth) * d.carrier;
}

double dwellTimeMs(const DimensionRecord& d) { return 1000.0 / spectralWidthHz(d); }

float spectralWidthFromHz(double hz, double carrierMhz) {
    return static_cast<float>(hz / carrierMhz);
}

double spectralWidthHzFromDwell(double dwellMicroseconds) { return 1e6 / dwellMicroseconds; }

const char* atomText(const DimensionRecord& d, char (&buffer)[3]) {
    buffer[0] = d.atom[0];
    buffer[1] = d.atom[1];
    buffer[2] = 0;
    return buffer;
}

void setAtom(DimensionRecord& d, const char* symbol) {
    d.atom[0] = symbol && symbol[0] ? symbol[0] : 0;
    d.atom[1] = d.atom[0] && symbol[1] ? symbol[1] : 0;
}

}  // namespace zolt
