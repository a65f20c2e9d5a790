// The tools of a plot view: their command identifiers (Tools menu) and the single keys that
// select them in a document window.
#pragma once

namespace zolt::tools {

inline constexpr int kPointer = 850;
inline constexpr int kZoom = 851;
inline constexpr int kCutter = 852;
inline constexpr int kMonitor = 853;
inline constexpr int kPeakPicker = 854;
inline constexpr int kInterpolator = 855;
inline constexpr int kIntegrator = 856;
inline constexpr int kDragger = 857;
inline constexpr int kFrameBracket = 858;
inline constexpr int kQuiver = 859;
inline constexpr int kWriter = 860;
inline constexpr int kCrossHair = 861;

inline constexpr bool isTool(int id) {
    return id >= kPointer && id <= kCrossHair;
}

// The tool a key selects (Esc is 27); 0 for any other key.
constexpr int toolForKey(char32_t key) {
    switch (key) {
        case 27:
            return kPointer;
        case 'z':
            return kZoom;
        case 'c':
            return kCutter;
        case 'x':
            return kCrossHair;
        case 'i':
            return kIntegrator;
        case 'v':
            return kPeakPicker;
        case 'j':
            return kInterpolator;
        case 'm':
            return kMonitor;
        case 'w':
            return kWriter;
        case 'a':
            return kQuiver;
        case 'f':
            return kFrameBracket;
        case 'd':
            return kDragger;
        default:
            return 0;
    }
}

}  // namespace zolt::tools
