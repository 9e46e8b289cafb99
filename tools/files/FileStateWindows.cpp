// Files by their volume and number, and locks of recording programs, on Windows.
#include "ITCUtilities/LockPlace.h"
#include "files/FileState.h"
#include "files/WindowsFailure.h"

namespace corvantis::tool {
namespace {

HANDLE HandleOf(const FileState& file) { return reinterpret_cast<HANDLE>(file.Handle()); }

// Access 0 asks for what is known of the file alone, which nobody can forbid.
HANDLE Open(const std::string& path, DWORD access) {
    return CreateFileW(WidePath(path).c_str(), access,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
}

}  // namespace

FileState::FileState(const std::string& path)
    : handle_(reinterpret_cast<intptr_t>(Open(path, GENERIC_READ))) {
    if (HandleOf(*this) == INVALID_HANDLE_VALUE) throw WindowsFailure(path);
}

FileState::~FileState() { CloseHandle(HandleOf(*this)); }

bool FileState::IsSame(const std::string& path) const {
    const HANDLE file = Open(path, 0);
    if (file == INVALID_HANDLE_VALUE) return false;
    BY_HANDLE_FILE_INFORMATION own = {}, other = {};
    const bool isKnown = GetFileInformationByHandle(HandleOf(*this), &own) &&
                         GetFileInformationByHandle(file, &other);
    CloseHandle(file);
    if (!isKnown) throw WindowsFailure(path);
    return own.dwVolumeSerialNumber == other.dwVolumeSerialNumber &&
           own.nFileIndexHigh == other.nFileIndexHigh && own.nFileIndexLow == other.nFileIndexLow;
}

bool FileState::IsBeingRecorded() const {
    OVERLAPPED place = LockPlace();
    if (!LockFileEx(HandleOf(*this), LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place)) {
        return GetLastError() == ERROR_LOCK_VIOLATION;
    }
    UnlockFileEx(HandleOf(*this), 0, 1, 0, &place);
    return false;
}

// Files of which a cloud service keeps the bytes are no links, but of the same family.
bool IsLink(const std::string& path) {
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW(WidePath(path).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return false;
    FindClose(search);
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           IsReparseTagNameSurrogate(found.dwReserved0);
}

std::string ReasonOf(const std::error_code& error) {
    const bool isOfWindows = error.category() == std::system_category();
    return isOfWindows ? WindowsMessage(static_cast<DWORD>(error.value())) : error.message();
}

}  // namespace corvantis::tool
