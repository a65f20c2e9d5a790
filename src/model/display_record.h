// What a document window shows and at which scale: one display-parameter record per plot (the
// main plot first, then the insets) inside the document's page record. Documents without a
// window have them too, sized for a default client area, so that scale-dependent commands
// (peak thresholds, adj, amp) behave the same headless.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace zolt {

namespace display_flags {
inline constexpr uint32_t kPlotModeMask = 0x7;  // bits 0-2, PlotMode
inline constexpr uint32_t kXAxis = 0x8;
inline constexpr uint32_t kYAxis = 0x10;
inline constexpr uint32_t kScaleOnTop = 0x20;
inline constexpr uint32_t kScaleOnLeft = 0x40;
inline constexpr uint32_t kGrid = 0x80;
inline constexpr uint32_t kClip = 0x100;
inline constexpr uint32_t kSameMmPerPpm = 0x200;
inline constexpr uint32_t kHideScaleUnit = 0x400;
inline constexpr uint32_t kMoreScaleLabels = 0x800;
inline constexpr uint32_t kIntegralsAsValues = 0x1000;
inline constexpr uint32_t kIntegralsAsCurves = 0x2000;
inline constexpr uint32_t kFrequencies = 0x4000;
inline constexpr uint32_t kLabels = 0x8000;
inline constexpr uint32_t kNotes = 0x10000;
inline constexpr uint32_t kHzLabels = 0x20000;
inline constexpr uint32_t kShowWidths = 0x40000;
inline constexpr uint32_t kScaleSetByHand = 0x80000;  // never saved
inline constexpr uint32_t kFlatIntegrals = 0x200000;
inline constexpr uint32_t kCleanOverlays = 0x800000;
}  // namespace display_flags

enum class PlotMode : uint8_t {
    Fast = 0,
    Contours = 1,
    GradientContours = 2,
    Stacked = 3,
    WhiteWashed = 4,
    Arrayed = 5,
    Mosaic = 6,
};

// The ppm limits (from, to) of each segment shown along one axis; more than one segment makes
// a split plot.
struct AxisSegments {
    uint8_t fIndex = 1;
    std::vector<float> ppm;  // 2 per segment
};

struct DisplayParameters {
    std::array<float, 4> box{};  // origin x, origin y, width, height: pixels of the window
    float mainScale = 0.0f;
    // In 1-D: the height in pixels of the zero line above the bottom of the box.
    float auxiliaryScale = 0.0f;
    // Intensity per pixel in 1-D; the lowest contour level in 2-D.
    float threshold = 1.0f;
    float ratio = 1.4f;  // between adjacent contour levels
    float horizontalProjection = 0.0f;
    float verticalProjection = 0.0f;
    float zeta = 0.0f;  // ppm of the shown plane along the axis on neither side
    uint32_t flags = display_flags::kXAxis;
    int8_t positiveLevels = 10;
    int8_t negativeLevels = 0;
    AxisSegments horizontal;
    bool hasVertical = false;
    AxisSegments vertical;

    PlotMode plotMode() const { return PlotMode(flags & display_flags::kPlotModeMask); }
};

enum class ScaleUnit : int8_t { Points = 0, Hz = 1, Ppm = 2 };

struct PageRecord {
    uint16_t pageWidth = 0;
    uint16_t pageHeight = 0;
    std::string fontName = "Verdana";
    uint8_t fontSize = 10;
    ScaleUnit scaleUnit = ScaleUnit::Ppm;
    int8_t integralDigits = 2;
    // Divides every raw integral before it is shown or reported; 1 means absolute integrals.
    float integralNormalization = 1.0f;
    std::array<uint16_t, 3> color1{0, 0, 0};
    std::array<uint16_t, 3> color2{0, 0, 0xffff};
    bool hideGuests = false;
    std::vector<DisplayParameters> plots;  // the main plot first, then the insets
    uint8_t insetMode = 0;                 // not saved
};

// The client area a document has before (or without) a window, in pixels.
inline constexpr int kDefaultClientWidth = 800;
inline constexpr int kDefaultClientHeight = 500;

// The vertical extent of a 1-D plot in intensity units: bottom and top edges of the box.
struct VerticalRange {
    double bottom = 0.0;
    double top = 0.0;
};
VerticalRange verticalRange(const DisplayParameters& plot);

}  // namespace zolt
