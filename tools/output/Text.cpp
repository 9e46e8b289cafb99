// Texts by their own rules of UTF-8, and Mac OS Roman by the C library's iconv.
#include "output/Text.h"

#include <iconv.h>

#include <cstdint>
#include <optional>

namespace corvantis::tool {
namespace {

struct Character {
    uint32_t code = 0;
    size_t size = 1;  // [bytes]
};

bool IsContinuation(char byte) { return (byte & 0xC0) == 0x80; }

// The first character, if it is one: none is written longer than need be, half of a pair, or
// beyond the last.
std::optional<Character> FirstOf(std::string_view text) {
    constexpr uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<uint8_t>(text.front());
    if (lead < 0x80) return Character{lead, 1};
    const size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC0 || lead >= 0xF8 || text.size() < size) return std::nullopt;
    uint32_t code = lead & (0x7FU >> size);
    for (size_t i = 1; i < size; ++i) {
        if (!IsContinuation(text[i])) return std::nullopt;
        code = code << 6 | (static_cast<uint8_t>(text[i]) & 0x3FU);
    }
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    if (code < least[size] || isSurrogate || code > 0x10FFFF) return std::nullopt;
    return Character{code, size};
}

bool IsControl(uint32_t code) {
    const bool separatesOrTurnsLines = code >= 0x2028 && code <= 0x202E;
    const bool isolates = code >= 0x2066 && code <= 0x2069;
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || separatesOrTurnsLines || isolates;
}

// Nothing if the text is no UTF-8.
std::optional<std::string> WithoutControls(std::string_view text) {
    std::string clean;
    while (!text.empty()) {
        const std::optional<Character> character = FirstOf(text);
        if (!character) return std::nullopt;
        clean += IsControl(character->code) ? " " : text.substr(0, character->size);
        text.remove_prefix(character->size);
    }
    return clean;
}

std::string FromMacRoman(std::string_view bytes) {
    iconv_t converter = iconv_open("UTF-8", "MACINTOSH");
    if (converter == reinterpret_cast<iconv_t>(-1)) return {};
    std::string from(bytes), to(3 * bytes.size(), '\0');
    char* in = from.data();
    char* out = to.data();
    size_t inLeft = from.size(), outLeft = to.size();
    const bool done = iconv(converter, &in, &inLeft, &out, &outLeft) != static_cast<size_t>(-1);
    iconv_close(converter);
    to.resize(done ? to.size() - outLeft : 0);
    return to;
}

std::string ToAscii(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) text += (c & 0x80) != 0 ? '?' : IsControl(uint32_t(c)) ? ' ' : c;
    return text;
}

}  // namespace

std::string DisplayText(std::string_view bytes) {
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    if (const auto clean = WithoutControls(text)) return *clean;
    const auto clean = WithoutControls(FromMacRoman(text));
    return clean && !clean->empty() ? *clean : ToAscii(text);
}

}  // namespace corvantis::tool
