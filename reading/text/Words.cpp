// Numbers as short texts, and texts in fixed rooms.
#include "text/Words.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace corvantis::reading {

std::string NumberText(float value) {
    char digits[64];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
    return {digits, error == std::errc() ? end : digits};
}

void StoreText(std::string_view text, char* room, size_t capacity) {
    if (capacity == 0) return;
    size_t size = std::min(text.size(), capacity - 1);
    const auto continues = [&](size_t i) { return (static_cast<uint8_t>(text[i]) & 0xC0) == 0x80; };
    while (size > 0 && size < text.size() && continues(size)) --size;
    std::memcpy(room, text.data(), size);
    room[size] = '\0';
}

}  // namespace corvantis::reading
