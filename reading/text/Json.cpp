// Numbers and texts as JSON has them.
#include "text/Json.h"

#include <charconv>
#include <cmath>

namespace corvantis::reading {
namespace {

template <class Real>
std::string Number(Real value) {
    if (!std::isfinite(value)) return "null";
    char room[64] = {};
    const std::to_chars_result result = std::to_chars(room, room + sizeof room, value);
    std::string text(room, result.ptr);
    if (text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

}  // namespace

std::string JsonNumber(float value) { return Number(value); }
std::string JsonNumber(double value) { return Number(value); }

std::string JsonText(std::string_view text) {
    std::string quoted = "\"";
    for (const char each : text) {
        if (each == '"' || each == '\\') quoted += '\\';
        quoted += each;
    }
    return quoted + '"';
}

}  // namespace corvantis::reading
