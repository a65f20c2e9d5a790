// Where the tick marks and labels of a plot's scale go.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zolt {

struct ScaleTicks {
    double first = 0.0;      // the first minor tick at or after the start
    double minorStep = 0.0;  // signed: negative on a scale that runs downwards
    double end = 0.0;        // the scale's end, extended so that a tick on it is kept
    int minorPerMajor = 5;
    // With k the index of the first major tick: minorPerMajor - k. Tick i is a major one when
    // (i + firstMajor) is a multiple of minorPerMajor.
    int firstMajor = 0;
    std::string format;  // printf format of the labels
};

// Ticks of a scale from a to b (a > b runs downwards, as ppm does from left to right) with a
// rough major step d; fixedFormat, when not empty, is the user's label format.
ScaleTicks chooseTicks(double a, double b, double d, std::string_view fixedFormat = {});

struct Tick {
    double value = 0.0;
    bool major = false;
};
// Every tick from the first to the end; bounded, whatever the input.
std::vector<Tick> tickList(const ScaleTicks& ticks);
std::string tickLabel(const ScaleTicks& ticks, double value);

}  // namespace zolt
