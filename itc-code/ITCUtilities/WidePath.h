// File names of Windows, which has 16-bit characters, from the interface's UTF-8 and back.
#pragma once

#if defined(_WIN32)

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string>
#include <string_view>

namespace corvantis {

// Empty for what is no UTF-8.
inline std::wstring WidePath(std::string_view path) {
    const int size = static_cast<int>(path.size());
    const auto convert = [&](wchar_t* to, int room) {
        return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path.data(), size, to, room);
    };
    std::wstring wide(static_cast<size_t>(convert(nullptr, 0)), L'\0');
    convert(wide.data(), static_cast<int>(wide.size()));
    return wide;
}

// A half of a pair alone, which file names may hold, becomes the character that stands for none.
inline std::string NarrowText(std::wstring_view wide) {
    const int size = static_cast<int>(wide.size());
    const auto convert = [&](char* to, int room) {
        return WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, to, room, nullptr, nullptr);
    };
    std::string text(static_cast<size_t>(convert(nullptr, 0)), '\0');
    convert(text.data(), static_cast<int>(text.size()));
    return text;
}

}  // namespace corvantis

#endif
