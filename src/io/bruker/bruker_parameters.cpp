#include "io/bruker/bruker_parameters.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

#include "base/files.h"
#include "io/data_set_read.h"

namespace zolt {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

bool isLineBreak(char c) {
    return c == '\n' || c == '\r';
}

// The start of the next line beginning with "#" after the line at p, or npos.
size_t nextHashLine(std::string_view text, size_t p) {
    for (size_t q = p + 1; q < text.size(); ++q)
        if (text[q] == '#' && isLineBreak(text[q - 1])) return q;
    return std::string_view::npos;
}

int clampToInt(int64_t v) {
    return static_cast<int>(
        std::clamp<int64_t>(v, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

}  // namespace

std::optional<std::string> readParameterFile(const std::string& path, uintmax_t maxBytes) {
    return readWholeFile(path, maxBytes);
}

ParameterValue parseParameterValue(std::string_view text, size_t offset, const ParameterKey& key) {
    ParameterValue v;
    if (offset > text.size()) return v;
    // The window ends early at a NUL, as a C string copy of it would.
    std::string_view w = text.substr(offset, kParameterValueWindow);
    w = w.substr(0, w.find('\0'));
    size_t i = 0;
    while (i < w.size() && isBlank(w[i])) ++i;
    switch (key.kind) {
        case ParameterKind::Integer: {
            bool negative = false;
            if (i < w.size() && (w[i] == '+' || w[i] == '-')) negative = w[i++] == '-';
            const size_t digits = i;
            int64_t n = 0;
            for (; i < w.size() && w[i] >= '0' && w[i] <= '9'; ++i)
                n = std::min<int64_t>(n * 10 + (w[i] - '0'), int64_t{1} << 40);
            if (i == digits) return v;
            v.integer = negative ? -n : n;
            v.found = true;
            break;
        }
        case ParameterKind::Real: {
            if (i < w.size() && w[i] == '+' && i + 1 < w.size() && w[i + 1] != '-') ++i;
            float f = 0.0f;
            const auto r = std::from_chars(w.data() + i, w.data() + w.size(), f);
            if (r.ec != std::errc() || !std::isfinite(f)) return v;
            v.real = f;
            v.found = true;
            break;
        }
        case ParameterKind::Text: {
            const size_t start = i;
            while (i < w.size() && !isBlank(w[i]) && i - start < static_cast<size_t>(key.maxLength))
                ++i;
            if (i == start) return v;
            v.text.assign(w.substr(start, i - start));
            v.found = true;
            break;
        }
    }
    return v;
}

std::vector<ParameterValue> mergeWalkParameters(std::string_view text,
                                                std::span<const ParameterKey> keys) {
    std::vector<ParameterValue> values(keys.size());
    if (keys.empty()) return values;
    size_t p = text.find(keys.front().key);
    if (p == std::string_view::npos) p = text.find("##$");
    for (size_t k = 0; k < keys.size() && p != std::string_view::npos; ++k) {
        const std::string_view key = keys[k].key;
        while (p != std::string_view::npos) {
            const int order = text.substr(p, key.size()).compare(key);
            if (order == 0) {
                values[k] = parseParameterValue(text, p + key.size(), keys[k]);
                break;
            }
            if (order > 0) break;  // this key is absent; the next one sorts later
            p = nextHashLine(text, p);
        }
    }
    return values;
}

ParameterValue findParameter(std::string_view text, const ParameterKey& key) {
    const size_t p = text.find(key.key);
    if (p == std::string_view::npos) return {};
    return parseParameterValue(text, p + key.key.size(), key);
}

std::string withoutAngleBrackets(std::string_view value) {
    if (!value.empty() && value.front() == '<') value.remove_prefix(1);
    if (!value.empty() && value.back() == '>') value.remove_suffix(1);
    return std::string(value);
}

AcquisitionParameters parseAcquisitionParameters(std::string_view text) {
    using K = ParameterKind;
    // Sorted as the files are, byte by byte.
    static constexpr std::array<ParameterKey, 15> keys = {{
        {"##$AQ_mod=", K::Integer},
        {"##$DECIM=", K::Integer},
        {"##$DSPFVS=", K::Integer},
        {"##$DTYPA=", K::Integer},
        {"##$FnMODE=", K::Integer},
        {"##$GRPDLY=", K::Real},
        {"##$NUC1=", K::Text, 15},
        {"##$NUCLEUS=", K::Text, 15},
        {"##$NusTD=", K::Integer},
        {"##$O1=", K::Real},
        {"##$PULPROG=", K::Text, 31},
        {"##$SFO1=", K::Real},
        {"##$SOLVENT=", K::Text, 15},
        {"##$SW=", K::Real},
        {"##$TD=", K::Integer},
    }};
    const auto v = mergeWalkParameters(text, keys);
    AcquisitionParameters a;
    a.aqMod = clampToInt(v[0].integer);
    a.decim = clampToInt(v[1].integer);
    a.dspfvs = clampToInt(v[2].integer);
    a.dtypa = clampToInt(v[3].integer);
    a.fnMode = clampToInt(v[4].integer);
    a.grpdly = v[5].real;
    a.nuc1 = v[6].text;
    a.nucleus = v[7].text;
    a.nusTd = clampToInt(v[8].integer);
    a.o1 = v[9].real;
    a.pulseProgram = v[10].text;
    a.sfo1 = v[11].real;
    a.solvent = v[12].text;
    a.sw = v[13].real;
    ParameterValue td = v[14];
    if (!td.found) td = findParameter(text, keys[14]);
    a.td = clampToInt(td.integer);
    a.tdFound = td.found;
    return a;
}

ProcessingParameters parseProcessingParameters(std::string_view text) {
    using K = ParameterKind;
    static constexpr std::array<ParameterKey, 8> keys = {{
        {"##$OFFSET=", K::Real},
        {"##$PHC0=", K::Real},
        {"##$PHC1=", K::Real},
        {"##$SI=", K::Integer},
        {"##$STSI=", K::Integer},
        {"##$STSR=", K::Integer},
        {"##$SW_p=", K::Real},
        {"##$XDIM=", K::Integer},
    }};
    const auto v = mergeWalkParameters(text, keys);
    ProcessingParameters p;
    p.offsetFound = v[0].found;
    p.offset = v[0].real;
    p.phc0 = v[1].real;
    p.phc1 = v[2].real;
    p.si = clampToInt(v[3].integer);
    p.stsi = clampToInt(v[4].integer);
    p.stsr = clampToInt(v[5].integer);
    p.swP = v[6].real;
    p.xdim = clampToInt(v[7].integer);
    const ParameterValue wdw = findParameter(text, {"##$WDW=", K::Integer});
    p.windowFound = wdw.found;
    p.wdw = clampToInt(wdw.integer);
    p.lb = findParameter(text, {"##$LB=", K::Real}).real;
    p.gb = findParameter(text, {"##$GB=", K::Real}).real;
    p.ssb = findParameter(text, {"##$SSB=", K::Real}).real;
    return p;
}

AcquisitionInfo parseAcquisitionInfo(std::string_view text) {
    AcquisitionInfo info;
    // The stamp line: at most 28 characters, a longer one cut at a blank so no word is split.
    size_t p = text.starts_with("$$ ") ? 0 : text.find("\n$$ ");
    if (p != std::string_view::npos) {
        p += text[p] == '\n' ? 4 : 3;
        std::string_view stamp = text.substr(p, 28);
        const size_t eol = stamp.find_first_of("\r\n");
        if (eol != std::string_view::npos) stamp = stamp.substr(0, eol);
        if (stamp.size() > 26) {
            const size_t blank = stamp.substr(0, 26).find_last_of(' ');
            if (blank != std::string_view::npos) stamp = stamp.substr(0, blank);
        }
        info.dateStamp.assign(stamp);
    }
    size_t d = text.find("##$D= (0..");
    if (d != std::string_view::npos) d = text.find_first_of("\r\n", d);
    if (d != std::string_view::npos) {
        // The values follow on the next lines; the second one is D1.
        std::string_view rest = text.substr(d, 256);
        for (int index = 0; index < 2 && !rest.empty(); ++index) {
            while (!rest.empty() && isBlank(rest.front())) rest.remove_prefix(1);
            double value = 0.0;
            const auto r = std::from_chars(rest.data(), rest.data() + rest.size(), value);
            if (r.ec != std::errc()) break;
            rest.remove_prefix(static_cast<size_t>(r.ptr - rest.data()));
            if (index == 1 && std::isfinite(value)) info.relaxationDelay = value;
        }
    }
    const ParameterValue ns = findParameter(text, {"##$NS=", ParameterKind::Integer});
    info.scans = clampToInt(ns.integer);
    return info;
}

}  // namespace zolt
