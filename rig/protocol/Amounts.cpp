// Taking texts of numbers and units apart, and into what is stored.
#include "protocol/Amounts.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <optional>
#include <vector>

#include "ITCFileIO/RecordLayouts.h"

namespace corvantis::rig {
namespace {

struct UnitOfTime {
    std::string_view name;
    double microseconds;
};

constexpr UnitOfTime kTimes[] = {{"us", 1},    {"\xC2\xB5s", 1}, {"\xCE\xBCs", 1},
                                 {"ms", 1000}, {"s", 1e6},       {"min", 60e6}};
constexpr std::string_view kMicroseconds = "\xC2\xB5s";

std::optional<double> Microseconds(std::string_view unit) {
    for (const UnitOfTime& time : kTimes) {
        if (time.name == unit) return time.microseconds;
    }
    return std::nullopt;
}

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

[[noreturn]] void FailAmount(const Node& node, std::string_view text) {
    node.Fail(fmt::format("\"{}\" is no amount; one is such as 12, \"120 pA\" or \"20 ms + 5 ms\"",
                          text));
}

// From the front of the text: a sign, a number and a unit, up to the next sign that stands alone.
Term TakeTerm(const Node& node, std::string_view& rest, std::string_view whole) {
    rest = Trimmed(rest);
    const bool isSigned = !rest.empty() && (rest.front() == '+' || rest.front() == '-');
    const double sign = isSigned && rest.front() == '-' ? -1 : 1;
    if (isSigned) rest = Trimmed(rest.substr(1));
    double number = 0;
    const bool hasOwnSign = !rest.empty() && rest.front() == '-';
    const std::string_view digits = hasOwnSign ? rest.substr(1) : rest;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (end.ec != std::errc() || !std::isfinite(number)) FailAmount(node, whole);
    rest = Trimmed(rest.substr(static_cast<size_t>(end.ptr - rest.data())));
    const size_t next = std::min(rest.find_first_of("+-"), rest.size());
    const std::string unit(Trimmed(rest.substr(0, next)));
    rest = rest.substr(next);
    return {(hasOwnSign ? -sign : sign) * number, unit};
}

std::vector<Term> TermsOf(const Node& node, const Names& names) {
    if (node.GetKind() == Kind::kNumber) return {{node.value->number, ""}};
    const std::string text = Filled(node, names);
    std::vector<Term> terms;
    std::string_view rest = text;
    do {
        terms.push_back(TakeTerm(node, rest, text));
    } while (!rest.empty());
    return terms;
}

// How many of `to` one of `from` is; nothing if they measure different things.
std::optional<double> Ratio(std::string_view from, std::string_view to) {
    if (from == to) return 1.0;
    const reading::UnitMeaning a = reading::MeaningOf(from), b = reading::MeaningOf(to);
    if (a.quantity == CORVANTIS_OTHER || a.quantity != b.quantity) return std::nullopt;
    // Of two prefixes the quotient is a power of ten, which division may just miss.
    const double quotient = a.si / b.si;
    return quotient < 1 ? 1 / std::round(1 / quotient) : std::round(quotient);
}

[[noreturn]] void FailUnit(const Node& node, const Term& term, const std::string& allowed) {
    node.Fail(fmt::format("\"{}\" cannot be taken here; allowed {}", term.unit, allowed));
}

double Level(const Node& node, const Term& term, const reading::Scale& scale) {
    if (term.unit.empty()) return term.number;
    const std::optional<double> ratio = Ratio(term.unit, scale.unit);
    if (scale.isWord) FailUnit(node, term, "is a number, the digital word");
    if (!ratio) FailUnit(node, term, "are " + scale.unit + ", or a number of DAC codes");
    return term.number * *ratio / scale.factor * scale.countsPerVolt;
}

double Length(const Node& node, const Term& term, int32_t interval) {
    if (term.unit.empty() || term.unit == "points") return term.number;
    const std::optional<double> time = Microseconds(term.unit);
    if (!time) FailUnit(node, term, "are s, ms and \xC2\xB5s, or a number of points");
    return term.number * *time / interval;
}

double Time(const Node& node, const Term& term) {
    if (term.unit.empty()) return term.number;
    const std::optional<double> time = Microseconds(term.unit);
    if (!time) FailUnit(node, term, "are s, ms and \xC2\xB5s, or a number of \xC2\xB5s");
    return term.number * *time;
}

double OwnUnit(const Node& node, const Term& term, const std::string& unit) {
    if (term.unit.empty()) return term.number;
    const std::optional<double> ratio = Ratio(term.unit, unit);
    if (!ratio) FailUnit(node, term, unit.empty() ? "is a number alone" : "is " + unit);
    return term.number * *ratio;
}

double Converted(const Node& node, const Term& term, const Measure& measure) {
    if (measure.unit == kCodes && measure.scale != nullptr) {
        return Level(node, term, *measure.scale);
    }
    if (measure.unit == kSamples) return Length(node, term, measure.interval);
    if (measure.unit == kMicroseconds) return Time(node, term);
    return OwnUnit(node, term, measure.unit);
}

}  // namespace

std::string Filled(const Node& node, const Names& names) {
    const std::string& text = node.value->text;
    std::string filled;
    for (size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if ((c == '{' || c == '}') && at + 1 < text.size() && text[at + 1] == c) {
            filled += text[at++];
        } else if (c == '{') {
            const size_t end = text.find('}', at);
            if (end == std::string::npos) node.Fail("a brace is not closed; {{ is a brace alone");
            const std::string_view name = std::string_view(text).substr(at + 1, end - at - 1);
            const auto found = names.find(name);
            if (found == names.end()) node.Fail(fmt::format("no family is called {}", name));
            filled += found->second;
            at = end;
        } else {
            filled += c;
        }
    }
    return filled;
}

std::string WithoutPlaceholders(std::string_view text) {
    std::string escaped;
    for (const char c : text) escaped.append(c == '{' || c == '}' ? 2 : 1, c);
    return escaped;
}

double AmountOf(const Node& node, const Names& names, const Measure& measure) {
    double sum = 0;
    for (const Term& term : TermsOf(node, names)) sum += Converted(node, term, measure);
    return sum;
}

int64_t Rounded(const Node& node, double amount, double least, double most) {
    const double whole = std::round(amount);
    if (!(whole >= least && whole <= most)) {
        node.Fail(fmt::format("{:.12g} is not within {:.12g} and {:.12g}", amount, least, most));
    }
    return static_cast<int64_t>(whole);
}

std::string ValueText(double number, std::string_view unit) {
    return fmt::format("{:.12g}{}{}", number, unit.empty() ? "" : " ", unit);
}

Term OnlyTerm(const Node& node, const Names& names) {
    std::vector<Term> terms = TermsOf(node, names);
    for (size_t k = 1; k < terms.size(); ++k) {
        if (terms[k].unit != terms[0].unit) node.Fail("its parts have different units");
        terms[0].number += terms[k].number;
    }
    return terms[0];
}

}  // namespace corvantis::rig
