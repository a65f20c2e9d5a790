#include "document/display_records.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "display/vertical_scale.h"
#include "document/tree_reading.h"

namespace zolt {

namespace {

using plist::Value;
namespace df = display_flags;

struct FlagKey {
    uint32_t bit;
    const char* key;
};
// In the order they are written; "always" keys are written as true or false, the others only
// when set.
constexpr FlagKey kAlwaysFirst[] = {{df::kXAxis, "x axis"},
                                    {df::kYAxis, "y axis"},
                                    {df::kGrid, "grid"},
                                    {df::kSameMmPerPpm, "same mm per ppm"}};
constexpr FlagKey kIfSetFirst[] = {{df::kScaleOnTop, "scale on top"},
                                   {df::kScaleOnLeft, "scale on left"},
                                   {df::kClip, "clip"},
                                   {df::kHideScaleUnit, "hide scale unit"},
                                   {df::kCleanOverlays, "clean overlays"},
                                   {df::kFlatIntegrals, "flat integrals"}};
constexpr FlagKey kAlwaysThen[] = {{df::kIntegralsAsValues, "integrals as values"},
                                   {df::kIntegralsAsCurves, "integrals as curves"},
                                   {df::kFrequencies, "frequencies"},
                                   {df::kLabels, "labels"},
                                   {df::kNotes, "notes"}};
constexpr FlagKey kIfSetThen[] = {{df::kHzLabels, "Hz Labels"},
                                  {df::kShowWidths, "show widths"},
                                  {df::kMoreScaleLabels, "more scale labels"}};

constexpr const char* kPlotModes[] = {"fast plot",    "contour map",  "gradient contours",
                                      "stacked plot", "white-washed", "arrayed plot",
                                      "mosaic"};
constexpr const char* kScaleUnits[] = {"points", "Hz", "ppm"};

constexpr const char* kBox = "box origin xy size wh";
constexpr const char* kInsets = "the insets";
// One main plot and at most 255 insets: the count of insets is 8-bit.
constexpr size_t kMaxPlots = 256;
constexpr size_t kMaxSegments = 255;
// No window is larger; a saved value beyond it is damage.
constexpr float kMaxPixels = 1e6f;

template <size_t N>
void writeFlags(Value* d, uint32_t flags, const FlagKey (&keys)[N], bool always) {
    for (const FlagKey& k : keys)
        if (always || (flags & k.bit)) plist::setBoolean(d, k.key, (flags & k.bit) != 0);
}

template <size_t N>
void readFlags(const Value* d, uint32_t& flags, const FlagKey (&keys)[N]) {
    for (const FlagKey& k : keys)
        if (plist::booleanOf(plist::lookUp(d, k.key)).value_or(false)) flags |= k.bit;
}

Value* limitsToTree(const AxisSegments& axis) {
    Value* d = plist::createDictionary();
    plist::setInteger(d, "f-index", axis.fIndex);
    Value* ppm = plist::setArray(d, "ppm");
    for (float v : axis.ppm) plist::appendReal(ppm, v);
    return d;
}

float finiteOr(double v, float fallback, float limit) {
    if (!std::isfinite(v)) return fallback;
    return static_cast<float>(std::clamp<double>(v, -limit, limit));
}

void readReal(const Value* d, const char* key, float& out, float limit = 3.0e38f) {
    if (const auto v = tree::number(d, key)) out = finiteOr(*v, out, limit);
}

// An even number of finite values, at most kMaxSegments pairs; nothing when unusable.
AxisSegments limitsFromTree(const Value* d) {
    AxisSegments axis;
    axis.fIndex = static_cast<uint8_t>(std::clamp<int64_t>(tree::integerOr(d, "f-index", 1), 1, 3));
    const Value* ppm = tree::child(d, "ppm", plist::Kind::Array);
    if (!ppm) return axis;
    for (const Value* item : ppm->items) {
        const auto v = plist::numberOf(item);
        if (!v || !std::isfinite(*v) || axis.ppm.size() == 2 * kMaxSegments) break;
        axis.ppm.push_back(finiteOr(*v, 0.0f, 3.0e38f));
    }
    if (axis.ppm.size() % 2) axis.ppm.pop_back();
    return axis;
}

}  // namespace

Value* displayParametersToTree(const DisplayParameters& p) {
    Value* d = plist::createDictionary();
    Value* box = plist::setArray(d, kBox);
    for (float v : p.box) plist::appendReal(box, v);
    plist::setReal(d, "main scale", p.mainScale);
    plist::setReal(d, "auxiliary scale", p.auxiliaryScale);
    plist::setReal(d, "threshold", p.threshold);
    plist::setReal(d, "ratio", p.ratio);
    plist::setReal(d, "hor. proj. ampl.", p.horizontalProjection);
    plist::setReal(d, "vert. proj. ampl.", p.verticalProjection);
    plist::setReal(d, "zeta", p.zeta);
    const unsigned mode = p.flags & df::kPlotModeMask;
    plist::setString(d, "plot mode", kPlotModes[mode < std::size(kPlotModes) ? mode : 0]);
    writeFlags(d, p.flags, kAlwaysFirst, true);
    writeFlags(d, p.flags, kIfSetFirst, false);
    writeFlags(d, p.flags, kAlwaysThen, true);
    writeFlags(d, p.flags, kIfSetThen, false);
    plist::setInteger(d, "positive levels", p.positiveLevels);
    plist::setInteger(d, "negative levels", p.negativeLevels);
    Value* limits = plist::setArray(d, "limits");
    plist::appendToArray(limits, limitsToTree(p.horizontal));
    if (p.hasVertical) plist::appendToArray(limits, limitsToTree(p.vertical));
    return d;
}

DisplayParameters displayParametersFromTree(const Value* d) {
    DisplayParameters p;
    if (!d) return p;
    if (const Value* box = tree::child(d, kBox, plist::Kind::Array))
        for (size_t i = 0; i < 4 && i < box->items.size(); ++i)
            if (const auto v = plist::numberOf(box->items[i]))
                p.box[i] = finiteOr(*v, p.box[i], kMaxPixels);
    readReal(d, "main scale", p.mainScale);
    readReal(d, "auxiliary scale", p.auxiliaryScale);
    readReal(d, "threshold", p.threshold);
    readReal(d, "ratio", p.ratio);
    readReal(d, "hor. proj. ampl.", p.horizontalProjection);
    readReal(d, "vert. proj. ampl.", p.verticalProjection);
    readReal(d, "zeta", p.zeta);
    // The bounds amplification and the level dialog keep.
    p.threshold = std::clamp(p.threshold, kMinThreshold, kMaxThreshold);
    p.ratio = std::clamp(p.ratio, 0.01f, 3.0f);
    p.flags = 0;
    const std::string mode = tree::stringOr(d, "plot mode");
    for (uint32_t m = 0; m < std::size(kPlotModes); ++m)
        if (mode == kPlotModes[m]) p.flags = m;
    readFlags(d, p.flags, kAlwaysFirst);
    readFlags(d, p.flags, kIfSetFirst);
    readFlags(d, p.flags, kAlwaysThen);
    readFlags(d, p.flags, kIfSetThen);
    const auto levels = [d](const char* key, int8_t fallback) {
        return static_cast<int8_t>(std::clamp<int64_t>(tree::integerOr(d, key, fallback), 0, 127));
    };
    p.positiveLevels = levels("positive levels", p.positiveLevels);
    p.negativeLevels = levels("negative levels", p.negativeLevels);
    const Value* limits = tree::child(d, "limits", plist::Kind::Array);
    const size_t n = limits ? limits->items.size() : 0;
    const auto axisAt = [limits](size_t i) {
        const Value* v = limits->items[i];
        return limitsFromTree(v && v->kind == plist::Kind::Dictionary ? v : nullptr);
    };
    if (n >= 1) p.horizontal = axisAt(0);
    p.hasVertical = n >= 2;
    if (p.hasVertical) p.vertical = axisAt(1);
    return p;
}

void addPageRecordKeys(Value* d, const PageRecord& page) {
    plist::setInteger(d, "page height", page.pageHeight);
    plist::setInteger(d, "page width", page.pageWidth);
    plist::setString(d, "font name", page.fontName);
    plist::setInteger(d, "font size", page.fontSize);
    const auto unit = static_cast<size_t>(page.scaleUnit);
    plist::setString(d, "scale unit", kScaleUnits[unit < std::size(kScaleUnits) ? unit : 2]);
    plist::setInteger(d, "integral digits", page.integralDigits);
    plist::setReal(d, "integral normalization", page.integralNormalization);
    for (const auto& [key, rgb] :
         {std::pair{"color 1st rgb", &page.color1}, std::pair{"color 2nd rgb", &page.color2}}) {
        Value* color = plist::setArray(d, key);
        for (uint16_t c : *rgb) plist::appendInteger(color, c);
    }
    if (page.hideGuests) plist::setBoolean(d, "hide guests", true);
    Value* plots = plist::setArray(d, kInsets);
    for (const DisplayParameters& p : page.plots)
        plist::appendToArray(plots, displayParametersToTree(p));
}

PageRecord pageRecordFromTree(const Value* d) {
    PageRecord page;
    if (!d) return page;
    const auto bounded = [d](const char* key, int64_t fallback, int64_t lo, int64_t hi) {
        return std::clamp<int64_t>(tree::integerOr(d, key, fallback), lo, hi);
    };
    page.pageHeight = static_cast<uint16_t>(bounded("page height", page.pageHeight, 0, 65535));
    page.pageWidth = static_cast<uint16_t>(bounded("page width", page.pageWidth, 0, 65535));
    page.fontName = tree::stringOr(d, "font name", page.fontName);
    page.fontSize = static_cast<uint8_t>(bounded("font size", page.fontSize, 0, 255));
    const std::string unit = tree::stringOr(d, "scale unit", "ppm");
    for (size_t u = 0; u < std::size(kScaleUnits); ++u)
        if (unit == kScaleUnits[u]) page.scaleUnit = static_cast<ScaleUnit>(u);
    page.integralDigits =
        static_cast<int8_t>(bounded("integral digits", page.integralDigits, -128, 127));
    // A divisor of zero or no number would make every integral unreadable.
    readReal(d, "integral normalization", page.integralNormalization);
    if (page.integralNormalization == 0.0f) page.integralNormalization = 1.0f;
    for (const auto& [key, rgb] :
         {std::pair{"color 1st rgb", &page.color1}, std::pair{"color 2nd rgb", &page.color2}})
        if (const Value* color = tree::child(d, key, plist::Kind::Array))
            for (size_t i = 0; i < 3 && i < color->items.size(); ++i)
                if (const auto c = plist::integerOf(color->items[i]))
                    (*rgb)[i] = static_cast<uint16_t>(std::clamp(*c, 0, 65535));
    page.hideGuests = plist::booleanOf(plist::lookUp(d, "hide guests")).value_or(false);
    if (const Value* plots = tree::child(d, kInsets, plist::Kind::Array))
        for (const Value* p : plots->items) {
            if (page.plots.size() == kMaxPlots) break;
            if (p && p->kind == plist::Kind::Dictionary)
                page.plots.push_back(displayParametersFromTree(p));
        }
    return page;
}

bool isPageRecordKey(std::string_view key) {
    static constexpr std::string_view kKeys[] = {"page height",
                                                 "page width",
                                                 "font name",
                                                 "font size",
                                                 "scale unit",
                                                 "integral digits",
                                                 "integral normalization",
                                                 "color 1st rgb",
                                                 "color 2nd rgb",
                                                 "hide guests",
                                                 kInsets};
    return std::find(std::begin(kKeys), std::end(kKeys), key) != std::end(kKeys);
}

}  // namespace zolt
