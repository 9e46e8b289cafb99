// Paths of the file system out of the tool's texts, which are UTF-8 on every system, and back.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>

namespace corvantis::tool {

// Where names are bytes, these are any bytes.
inline std::filesystem::path PathOf(std::string_view text) {
    return std::u8string(text.begin(), text.end());
}

// With slashes on every system.
inline std::string TextOf(const std::filesystem::path& path) {
    const std::u8string native = path.u8string();
    std::string text(native.begin(), native.end());
    constexpr auto separator = static_cast<char>(std::filesystem::path::preferred_separator);
    std::replace(text.begin(), text.end(), separator, '/');
    return text;
}

}  // namespace corvantis::tool
