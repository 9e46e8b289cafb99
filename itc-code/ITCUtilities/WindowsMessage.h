// Why a call of Windows failed, in UTF-8.
#pragma once

#if defined(_WIN32)

#include <string>

#include "ITCUtilities/WidePath.h"

namespace corvantis {

// Of the codes that users meet most often, in the same words on every machine.
inline const char* CommonMessage(DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
            return "No such file or directory";
        case ERROR_ACCESS_DENIED:
            return "Permission denied";
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return "another program has it open for itself alone";
        default:
            return nullptr;
    }
}

inline std::string WindowsMessage(DWORD error) {
    if (const char* common = CommonMessage(error)) return common;
    wchar_t text[512] = {};
    const DWORD size = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                      nullptr, error, 0, text, 512, nullptr);
    const std::wstring_view message(text, size);
    const size_t end = message.find_last_not_of(L"\r\n. ");
    if (end == message.npos) return "error " + std::to_string(error) + " of Windows";
    return NarrowText(message.substr(0, end + 1));
}

}  // namespace corvantis

#endif
