#include "io/jcamp/jcamp_asdf.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "io/jcamp/jcamp_labels.h"

namespace zolt {

namespace {

// Longer runs of digits are no number a table holds.
constexpr size_t kMaxTokenChars = 40;

enum class Kind { Value, Difference, Repeat };

struct Token {
    Kind kind = Kind::Value;
    double number = 0.0;
};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isSeparator(char c) {
    return c == ' ' || c == '\t' || c == ',' || c == ';' || c == '\r';
}

// The leading digit a form letter stands for, with its sign; false for other characters.
bool formLetter(char c, Kind& kind, int& digit) {
    if (c == '@' || c == '%') {
        kind = c == '@' ? Kind::Value : Kind::Difference;
        digit = 0;
    } else if (c >= 'A' && c <= 'I') {
        kind = Kind::Value, digit = c - 'A' + 1;
    } else if (c >= 'a' && c <= 'i') {
        kind = Kind::Value, digit = -(c - 'a' + 1);
    } else if (c >= 'J' && c <= 'R') {
        kind = Kind::Difference, digit = c - 'J' + 1;
    } else if (c >= 'j' && c <= 'r') {
        kind = Kind::Difference, digit = -(c - 'j' + 1);
    } else if (c >= 'S' && c <= 'Z') {
        kind = Kind::Repeat, digit = c - 'S' + 1;
    } else if (c == 's') {
        kind = Kind::Repeat, digit = 9;
    } else {
        return false;
    }
    return true;
}

// One number of a line from `pos`: plain (with sign, decimals and exponent) or led by a form
// letter; false for a character no form uses.
bool nextToken(std::string_view line, size_t& pos, Token& t) {
    char text[kMaxTokenChars + 8];
    size_t n = 0;
    const auto copyDigits = [&](bool decimals) {
        while (pos < line.size() && (isDigit(line[pos]) || (decimals && line[pos] == '.'))) {
            if (n >= kMaxTokenChars) return false;
            text[n++] = line[pos++];
        }
        return true;
    };
    const char c = line[pos];
    int digit = 0;
    if (isDigit(c) || c == '.' || c == '+' || c == '-') {
        t.kind = Kind::Value;
        if (c == '-') text[n++] = '-';
        if (c == '+' || c == '-') ++pos;
        if (!copyDigits(true)) return false;
        // An exponent is told from a squeezed E by the sign after it.
        if (pos + 2 < line.size() && (line[pos] == 'E' || line[pos] == 'e') &&
            (line[pos + 1] == '+' || line[pos + 1] == '-') && isDigit(line[pos + 2])) {
            text[n++] = 'e';
            text[n++] = line[pos + 1];
            pos += 2;
            if (!copyDigits(false)) return false;
        }
    } else if (c == '?') {  // a value the instrument did not record
        ++pos;
        t = {Kind::Value, 0.0};
        return true;
    } else if (formLetter(c, t.kind, digit)) {
        ++pos;
        if (digit < 0) text[n++] = '-';
        text[n++] = static_cast<char>('0' + std::abs(digit));
        if (!copyDigits(t.kind != Kind::Repeat)) return false;
    } else {
        return false;
    }
    const auto [end, ec] = std::from_chars(text, text + n, t.number);
    return ec == std::errc() && end == text + n && std::isfinite(t.number);
}

float narrow(double v) {
    constexpr double kMax = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(v, -kMax, kMax));
}

// Fills the pages in order; values beyond a full page are dropped.
class PageWriter {
public:
    explicit PageWriter(std::span<const JcampPage> pages) : pages_(pages) {}

    bool pageFull() const { return page_ >= pages_.size() || filled_ == pages_[page_].count; }
    bool allFull() const {
        return page_ >= pages_.size() || (page_ + 1 == pages_.size() && pageFull());
    }
    size_t room() const { return pageFull() ? 0 : pages_[page_].count - filled_; }
    bool started() const { return filled_ > 0; }
    void nextPage() {
        ++page_;
        filled_ = 0;
    }
    void put(double v) {
        if (pageFull()) return;
        const JcampPage& p = pages_[page_];
        const size_t i = p.reverse ? p.count - 1 - filled_ : filled_;
        p.first[i * p.stride] = narrow(v * p.factor);
        ++filled_;
    }

private:
    std::span<const JcampPage> pages_;
    size_t page_ = 0;
    size_t filled_ = 0;
};

// What the lines of one table carry over from each other.
struct LineState {
    bool haveLast = false;  // a value to which differences and repeats refer
    double last = 0.0;
    bool lastWasDifference = false;
    double lastDifference = 0.0;
    bool checkPending = false;  // the previous line ended in the difference form
};

bool sameValue(double a, double b) {
    return std::abs(a - b) <= 1e-9 * std::max(1.0, std::abs(a));
}

bool decodeLine(std::string_view line, bool yDataOnly, LineState& s, PageWriter& w) {
    bool expectX = !yDataOnly;
    bool firstY = true;
    bool anyY = false;
    for (size_t pos = 0; pos < line.size();) {
        const char c = line[pos];
        if (isSeparator(c)) {
            ++pos;
            continue;
        }
        if (c == '$' && pos + 1 < line.size() && line[pos + 1] == '$') break;
        Token t;
        if (!nextToken(line, pos, t)) return false;
        if (expectX) {
            if (t.kind != Kind::Value) return false;
            expectX = false;
            continue;
        }
        const bool check = firstY && s.checkPending;
        firstY = false;
        anyY = true;
        switch (t.kind) {
            case Kind::Value:
                if (check) {
                    if (!s.haveLast || !sameValue(t.number, s.last)) return false;
                } else {
                    w.put(t.number);
                }
                s.last = t.number;
                s.haveLast = true;
                s.lastWasDifference = false;
                break;
            case Kind::Difference:
                if (!s.haveLast) return false;
                s.last += t.number;
                s.lastDifference = t.number;
                s.lastWasDifference = true;
                w.put(s.last);
                break;
            case Kind::Repeat: {
                if (!s.haveLast || t.number < 1.0) return false;
                // The repeats past a full page are dropped unread.
                const double times = std::min(t.number - 1.0, static_cast<double>(w.room()) + 1.0);
                for (double k = 0; k < times; ++k) {
                    if (s.lastWasDifference) s.last += s.lastDifference;
                    w.put(s.last);
                }
                break;
            }
        }
    }
    if (anyY) s.checkPending = s.lastWasDifference;
    return true;
}

}  // namespace

bool decodeJcampTable(std::string_view text, std::span<const JcampPage> pages,
                      const JcampTableOptions& options) {
    PageWriter w(pages);
    LineState s;
    bool skipping = false;  // the page is full: waiting for the next table
    size_t pos = 0;
    while (!w.allFull()) {
        if (pos >= text.size()) return false;
        size_t end = text.find('\n', pos);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(pos, end - pos);
        pos = end + 1;
        const size_t lead = line.find_first_not_of(" \t");
        if (lead != std::string_view::npos && line.substr(lead).starts_with("##")) {
            const std::string label = normalisedLabel(line.substr(lead + 2));
            if (label.starts_with("END")) return false;
            if (label == "DATATABLE") {
                if (options.onePagePerTable && (w.started() || skipping)) {
                    if (!w.pageFull()) return false;
                    w.nextPage();
                }
                skipping = false;
                s = LineState{};
            }
            s.checkPending = false;
            continue;
        }
        if (skipping) continue;
        if (!decodeLine(line, options.yDataOnly, s, w)) return false;
        if (options.onePagePerTable && w.pageFull()) skipping = true;
    }
    return true;
}

}  // namespace zolt
