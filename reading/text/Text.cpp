// Texts by their own rules of UTF-8, and by the table of Mac OS Roman.
#include "text/Text.h"

#include <cstdint>
#include <optional>

namespace corvantis::reading {
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

// Of the bytes from 0x80 on, as Apple's table ROMAN.TXT has them.
constexpr uint16_t kMacRoman[128] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3,
    0x00E5, 0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3,
    0x00A7, 0x2022, 0x00B6, 0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA,
    0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D,
    0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, 0x00CB, 0x00C8, 0x00CD, 0x00CE,
    0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

// All of them are written in two bytes or three.
void AppendCharacter(std::string& text, uint32_t code) {
    const auto append = [&](uint32_t bits) { text += static_cast<char>(bits); };
    if (code < 0x800) {
        append(0xC0 | code >> 6);
    } else {
        append(0xE0 | code >> 12);
        append(0x80 | (code >> 6 & 0x3F));
    }
    append(0x80 | (code & 0x3F));
}

std::string FromMacRoman(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<uint8_t>(c);
        if (byte >= 0x80) {
            AppendCharacter(text, kMacRoman[byte - 0x80]);
        } else {
            text += c;
        }
    }
    return text;
}

}  // namespace

std::string DisplayText(std::string_view bytes) {
    const std::string_view text = bytes.substr(0, bytes.find('\0'));
    if (const auto clean = WithoutControls(text)) return *clean;
    return WithoutControls(FromMacRoman(text)).value_or("");
}

}  // namespace corvantis::reading
