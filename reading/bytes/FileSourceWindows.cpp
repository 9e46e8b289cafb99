// Reading at offsets through a handle, which any number of threads can share, on Windows.
#include <algorithm>
#include <string>

#include "ITCUtilities/WidePath.h"
#include "ITCUtilities/WindowsMessage.h"
#include "bytes/FileSource.h"

namespace corvantis::reading {
namespace {

constexpr int64_t kMostAtOnce = 1 << 30;

int64_t SizeOf(void* context) {
    LARGE_INTEGER size = {};
    return GetFileSizeEx(context, &size) ? size.QuadPart : -1;
}

int64_t ReadAt(void* context, int64_t offset, void* bytes, int64_t count) {
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    DWORD read = 0;
    const auto size = static_cast<DWORD>(std::min(count, kMostAtOnce));
    if (ReadFile(context, bytes, size, &read, &place)) return read;
    return GetLastError() == ERROR_HANDLE_EOF ? 0 : -1;
}

void Close(void* context) { CloseHandle(context); }

}  // namespace

OpenedFile OpenFile(const char* path) {
    OpenedFile opened;
    const std::wstring wide = WidePath(path);
    const DWORD attributes = GetFileAttributesW(wide.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        opened.refusal = "is a directory";
        return opened;
    }
    const HANDLE file = CreateFileW(wide.c_str(), GENERIC_READ,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        opened.refusal = WindowsMessage(GetLastError());
    } else if (GetFileType(file) != FILE_TYPE_DISK) {
        opened.refusal = "is not a regular file";
        CloseHandle(file);
    } else {
        opened.isOpen = true;
        opened.source = {{file, SizeOf, ReadAt, Close}, nullptr};
    }
    return opened;
}

}  // namespace corvantis::reading
