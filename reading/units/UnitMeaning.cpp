// Prefixes and symbols of the SI.
#include "units/UnitMeaning.h"

namespace corvantis::reading {
namespace {

struct Prefix {
    std::string_view text;
    double factor;
};

// The micro sign and the Greek letter look alike; many keyboards have neither.
constexpr Prefix kPrefixes[] = {{"", 1.0},          {"f", 1e-15},       {"p", 1e-12}, {"n", 1e-9},
                                {"\xC2\xB5", 1e-6}, {"\xCE\xBC", 1e-6}, {"u", 1e-6},  {"m", 1e-3},
                                {"k", 1e3},         {"M", 1e6}};

int32_t QuantityOf(char symbol) {
    switch (symbol) {
        case 'V':
            return CORVANTIS_POTENTIAL;
        case 'A':
            return CORVANTIS_CURRENT;
        case 'S':
            return CORVANTIS_ADMITTANCE;
        default:
            return CORVANTIS_OTHER;
    }
}

}  // namespace

UnitMeaning MeaningOf(std::string_view unit) {
    if (unit.empty() || QuantityOf(unit.back()) == CORVANTIS_OTHER) return {};
    for (const Prefix& prefix : kPrefixes) {
        if (unit.substr(0, unit.size() - 1) != prefix.text) continue;
        return {QuantityOf(unit.back()), prefix.factor};
    }
    return {};
}

}  // namespace corvantis::reading
