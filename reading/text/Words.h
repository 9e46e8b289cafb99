// Sentences put together from texts and numbers.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace corvantis::reading {

// As few digits as give the number back.
std::string NumberText(float value);

inline void AppendPart(std::string& text, std::string_view part) { text += part; }
void AppendPart(std::string& text, std::integral auto number) { text += std::to_string(number); }
inline void AppendPart(std::string& text, float number) { text += NumberText(number); }

template <class... Parts>
std::string Say(const Parts&... parts) {
    std::string text;
    (AppendPart(text, parts), ...);
    return text;
}

// Into a fixed room, cut behind the last whole character that fits.
void StoreText(std::string_view text, char* room, size_t capacity);
template <size_t Capacity>
void StoreText(std::string_view text, char (&room)[Capacity]) {
    StoreText(text, room, Capacity);
}

}  // namespace corvantis::reading
