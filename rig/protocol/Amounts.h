// Amounts of a protocol: numbers as they are stored, or texts such as "120 pA + {step}".
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "document/Document.h"
#include "units/Scale.h"

namespace corvantis::rig {

// What {NAME} stands for, as written.
using Names = std::map<std::string, std::string, std::less<>>;

// A text with its placeholders filled; {{ and }} are braces. Throws a Failure for an unknown name.
std::string Filled(const Node& node, const Names& names);
// The opposite for a text without placeholders.
std::string WithoutPlaceholders(std::string_view text);

// What an amount becomes.
struct Measure {
    std::string unit;                       // as in the table of records
    const reading::Scale* scale = nullptr;  // of levels
    int32_t interval = 0;                   // of lengths [µs]
};

// In what is stored, not rounded: DAC codes, points, or the field's own unit. Throws a Failure.
double AmountOf(const Node& node, const Names& names, const Measure& measure);

// The one place where amounts become whole: the nearest, of two the one further from zero. Throws a
// Failure beyond these limits.
int64_t Rounded(const Node& node, double amount, double least, double most);

// The text of number and unit that a family's value is; also of a bare number.
std::string ValueText(double number, std::string_view unit);
// A number with its unit out of such a text. Throws a Failure.
struct Term {
    double number;
    std::string unit;
};
Term OnlyTerm(const Node& node, const Names& names);

}  // namespace corvantis::rig
