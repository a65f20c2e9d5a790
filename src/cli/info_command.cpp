#include "cli/info_command.h"

#include <algorithm>
#include <charconv>
#include <ostream>
#include <sstream>
#include <utility>

#include "app/document_opening.h"
#include "cli/json_text.h"

namespace zolt {
namespace {

std::vector<const char*> flagWords(uint32_t flags) {
    std::vector<const char*> words;
    for (const auto& f : sourceFlagNames())
        if (flags & f.bit) words.push_back(f.key);
    return words;
}

std::string atomOf(const DimensionRecord& d) {
    char buffer[3];
    return atomText(d, buffer);
}

size_t shownPoints(const SpectrumDocument& doc, size_t wanted) {
    const SpectrumMatrix& m = doc.matrix;
    return std::min<size_t>(wanted, std::min<size_t>(m.dims[m.contiguous].points, m.re.size()));
}

float imaginaryAt(const SpectrumMatrix& m, size_t i) {
    return m.realOnly() ? 0.0f : m.im[i];
}

}  // namespace

std::optional<InfoOptions> parseInfoArguments(const std::vector<std::string>& args) {
    InfoOptions o;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--json") {
            o.json = true;
        } else if (a == "--processed") {
            o.processed = true;
        } else if (a == "--points") {
            if (++i == args.size()) return std::nullopt;
            const std::string& n = args[i];
            const auto r = std::from_chars(n.data(), n.data() + n.size(), o.points);
            if (r.ec != std::errc() || r.ptr != n.data() + n.size()) return std::nullopt;
        } else if (a.starts_with("--")) {
            return std::nullopt;
        } else {
            o.paths.push_back(a);
        }
    }
    if (o.paths.empty()) return std::nullopt;
    return o;
}

Preferences infoPreferences(bool processed) {
    Preferences prefs;
    // A saved processing plan is only shown, never run: info reports the data as stored.
    prefs.flags |= pref_flags::kShowPlan;
    if (processed)
        prefs.flags |= pref_flags::kReadProcessedData;
    else
        prefs.flags &= ~pref_flags::kReadProcessedData;
    return prefs;
}

std::string infoJson(const std::string& path, const SpectrumDocument& doc, size_t points) {
    const SpectrumSource& s = doc.source;
    std::string j = "{\"path\":" + jsonString(path);
    j += ",\"format\":" + jsonString(s.provenance);
    j += ",\"dimensions\":" + std::to_string(countDimensions(s));
    j += ",\"time_domain_dimensions\":" + std::to_string(s.highestTIndex);
    j += ",\"number_type\":" + jsonString(numberTypeName(s.numberType));
    j += ",\"flags\":[";
    const char* comma = "";
    for (const char* w : flagWords(s.flags)) j += std::exchange(comma, ",") + jsonString(w);
    j += "],\"axes\":[";
    comma = "";
    for (int f = 1; f <= 3; ++f) {
        const DimensionRecord& d = s.dims[f];
        if (d.points <= 1) continue;
        j += std::exchange(comma, ",");
        j += "{\"f_index\":" + std::to_string(f);
        j += ",\"points\":" + std::to_string(d.points);
        j += ",\"points_after_nus\":" + std::to_string(d.pointsAfterNus);
        j += ",\"spectral_width_ppm\":" + jsonNumber(d.spectralWidth);
        j += ",\"spectral_width_hz\":" + jsonNumber(spectralWidthHz(d));
        j += ",\"carrier_mhz\":" + jsonNumber(d.carrier);
        j += ",\"lowest_ppm\":" + jsonNumber(d.lowestPpm);
        j += ",\"isotope\":" + std::to_string(d.isotope);
        j += ",\"atom\":" + jsonString(atomOf(d));
        j += ",\"time_shift\":" + jsonNumber(d.timeShift);
        j += ",\"ft_preferences\":" + std::to_string(s.ftPreferences[f]);
        j += ",\"phase0\":" + jsonNumber(d.phase0);
        j += ",\"phase1\":" + jsonNumber(d.phase1) + "}";
    }
    j += "],\"title\":" + jsonString(doc.metadata.title);
    j += ",\"solvent\":" + jsonString(doc.metadata.solvent);
    j += ",\"pulse_program\":" + jsonString(doc.metadata.pulseSequence);
    if (points) {
        j += ",\"points\":[";
        comma = "";
        for (size_t i = 0; i < shownPoints(doc, points); ++i)
            j += std::exchange(comma, ",") + ("[" + jsonNumber(doc.matrix.re[i]) + "," +
                                              jsonNumber(imaginaryAt(doc.matrix, i)) + "]");
        j += "]";
    }
    return j + "}";
}

std::string infoText(const std::string& path, const SpectrumDocument& doc, size_t points) {
    const SpectrumSource& s = doc.source;
    std::ostringstream o;
    o << path << "\n";
    o << "  format: " << s.provenance << "\n";
    o << "  dimensions: " << countDimensions(s) << ", highest t-index " << int{s.highestTIndex}
      << "\n";
    o << "  numbers: " << numberTypeName(s.numberType) << "; flags:";
    const auto words = flagWords(s.flags);
    if (words.empty()) o << " none";
    for (size_t i = 0; i < words.size(); ++i) o << (i ? ", " : " ") << words[i];
    o << "\n";
    for (int f = 1; f <= 3; ++f) {
        const DimensionRecord& d = s.dims[f];
        if (d.points <= 1) continue;
        o << "  f" << f << ": " << d.points << " points";
        if (d.pointsAfterNus) o << " (" << d.pointsAfterNus << " after NUS)";
        o << ", width " << d.spectralWidth << " ppm (" << spectralWidthHz(d) << " Hz), carrier "
          << d.carrier << " MHz, lowest " << d.lowestPpm << " ppm\n";
        o << "      " << int{d.isotope} << atomOf(d) << ", time shift " << d.timeShift
          << " pts, FT preferences " << int{s.ftPreferences[f]} << ", phases " << d.phase0 << " / "
          << d.phase1 << " rad\n";
    }
    std::string title = doc.metadata.title;
    while (!title.empty() && (title.back() == '\n' || title.back() == '\r')) title.pop_back();
    o << "  title: ";
    for (char c : title)
        o << (c == '\n' ? std::string("\n         ") : std::string(c == '\r' ? 0 : 1, c));
    o << "\n  solvent: " << doc.metadata.solvent << "\n";
    o << "  pulse program: " << doc.metadata.pulseSequence << "\n";
    for (size_t i = 0; i < shownPoints(doc, points); ++i)
        o << "  point " << i << ": " << doc.matrix.re[i] << " " << imaginaryAt(doc.matrix, i)
          << "\n";
    return o.str();
}

int runInfoCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    for (const auto& a : args)
        if (a == "--help" || a == "-h") {
            out << kInfoUsage;
            return 0;
        }
    const auto options = parseInfoArguments(args);
    if (!options) {
        err << kInfoUsage;
        return 2;
    }
    const Preferences prefs = infoPreferences(options->processed);
    int status = 0;
    for (const auto& path : options->paths) {
        Message failure;
        const auto doc = readDocument(path, prefs, failure);
        if (!doc) {
            err << failure.caption << ": " << failure.text << "\n";
            status = 1;
            continue;
        }
        out << (options->json ? infoJson(path, *doc, options->points) + "\n"
                              : infoText(path, *doc, options->points));
        out.flush();
    }
    return status;
}

}  // namespace zolt
