#include "io/varian/varian_parameters.h"

#include <array>
#include <cctype>
#include <charconv>

namespace zolt {

namespace {

constexpr size_t kValueChars = 64;   // a value line is read this far
constexpr size_t kStringChars = 32;  // a string value is at most this long

enum class Kind { Integer, String, Real };

struct Field {
    const char* key;
    Kind kind;
    int VarianParameters::*integer = nullptr;
    std::string VarianParameters::*text = nullptr;
    double VarianParameters::*real = nullptr;
};

constexpr Field integer(const char* key, int VarianParameters::*m) {
    return {key, Kind::Integer, m, nullptr, nullptr};
}
constexpr Field text(const char* key, std::string VarianParameters::*m) {
    return {key, Kind::String, nullptr, m, nullptr};
}
constexpr Field real(const char* key, double VarianParameters::*m) {
    return {key, Kind::Real, nullptr, nullptr, m};
}

using P = VarianParameters;
constexpr Field kFields[] = {
    integer("phase", &P::phase), integer("lsfid", &P::lsfid),  integer("ni", &P::ni),
    integer("ni2", &P::ni2),     text("array", &P::array),     text("axis", &P::axis),
    text("f1coef", &P::f1coef),  text("tn", &P::tn),           text("dn", &P::dn),
    text("dn2", &P::dn2),        text("solvent", &P::solvent), text("seqfil", &P::seqfil),
    real("sfrq", &P::sfrq),      real("dfrq", &P::dfrq),       real("dfrq2", &P::dfrq2),
    real("sw", &P::sw),          real("sw1", &P::sw1),         real("lp", &P::lp),
    real("rp", &P::rp),          real("sw2", &P::sw2),         real("rfl", &P::rfl),
    real("rfl1", &P::rfl1),      real("rfl2", &P::rfl2),       real("rfp", &P::rfp),
    real("rfp1", &P::rfp1),      real("rfp2", &P::rfp2),       real("temp", &P::temp),
};

constexpr std::array<std::string_view, 7> kCoefficientTables = {
    "1 0 -1 0 0 -1 0 -1", "1 0 1 0 0 1 0 1",  "1 0 1 0 0 -1 0 1", "1 0 0 1 0 -1 -1 0",
    "1 0 1 0 0 1 0 -1",   "1 0 0 1 0 -1 1 0", "1 0 -1 0 0 1 0 1",
};

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

void skipBlanks(std::string_view& s) {
    while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
}

// Skips the count that starts a value line; false when there is none.
bool skipCount(std::string_view& s) {
    skipBlanks(s);
    long count = 0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), count);
    if (ec != std::errc()) return false;
    s.remove_prefix(static_cast<size_t>(end - s.data()));
    skipBlanks(s);
    return true;
}

template <class T>
bool parseNumber(std::string_view s, T& out) {
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    return std::from_chars(s.data(), s.data() + s.size(), out).ec == std::errc();
}

void parseValue(const Field& f, std::string_view line, VarianParameters& p) {
    if (!skipCount(line)) return;
    switch (f.kind) {
        case Kind::Integer: {
            int v = 0;
            if (parseNumber(line, v)) p.*f.integer = v;
            break;
        }
        case Kind::Real: {
            double v = 0;
            if (parseNumber(line, v)) {
                p.*f.real = v;
                if (f.real == &VarianParameters::temp) p.tempFound = true;
            }
            break;
        }
        case Kind::String: {
            if (line.empty() || line.front() != '"') return;
            line = line.substr(1, kStringChars);
            p.*f.text = std::string(line.substr(0, line.find('"')));
            break;
        }
    }
}

// The line that follows the one starting at `at`, cut to the characters a value is read from.
std::string_view valueLineAfter(std::string_view text, size_t at) {
    const size_t eol = text.find('\n', at);
    if (eol == std::string_view::npos) return {};
    std::string_view next = text.substr(eol + 1, kValueChars);
    return next.substr(0, next.find('\n'));
}

// The first line that begins with the key and a blank.
size_t findKeyLine(std::string_view text, std::string_view key) {
    for (size_t at = 0; at < text.size();) {
        if (text.substr(at, key.size()) == key && at + key.size() < text.size() &&
            (text[at + key.size()] == ' ' || text[at + key.size()] == '\t'))
            return at;
        const size_t eol = text.find('\n', at);
        if (eol == std::string_view::npos) break;
        at = eol + 1;
    }
    return std::string_view::npos;
}

}  // namespace

VarianParameters parseVarianParameters(std::string_view procpar) {
    VarianParameters p;
    for (const Field& f : kFields) {
        const size_t at = findKeyLine(procpar, f.key);
        if (at != std::string_view::npos) parseValue(f, valueLineAfter(procpar, at), p);
    }
    return p;
}

bool parseVarianNucleus(std::string_view text, char (&atom)[3], int& massNumber) {
    atom[0] = atom[1] = atom[2] = 0;
    if (text.empty() || !std::isupper(static_cast<unsigned char>(text[0]))) return false;
    size_t i = 1;
    atom[0] = text[0];
    if (i < text.size() && std::islower(static_cast<unsigned char>(text[i]))) atom[1] = text[i++];
    int mass = 0;
    const auto result = std::from_chars(text.data() + i, text.data() + text.size(), mass);
    if (result.ec != std::errc() || mass <= 0 || mass > 255) return false;
    massNumber = mass;
    return true;
}

int coefficientTable(std::string_view f1coef) {
    for (size_t i = 0; i < kCoefficientTables.size(); ++i)
        if (f1coef.starts_with(kCoefficientTables[i])) return static_cast<int>(i) + 1;
    return 0;
}

uint8_t firstIndirectQuadrature(const VarianParameters& p) {
    if (p.array.find("phase") == std::string::npos) return 1;
    const int table = coefficientTable(p.f1coef);
    if (table == 0) return 0x21;
    return table <= 4 ? 0x22 : 6;
}

}  // namespace zolt
