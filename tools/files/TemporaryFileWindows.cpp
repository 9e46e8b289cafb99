// Temporary files on Windows, which deletes them itself when their handle closes, however the
// program ends, until they are complete.
#include <fcntl.h>
#include <io.h>

#include <mutex>
#include <vector>

#include "files/TemporaryFile.h"
#include "files/TemporaryName.h"
#include "files/WindowsFailure.h"

namespace corvantis::tool {
namespace {

HANDLE HandleOf(int descriptor) { return reinterpret_cast<HANDLE>(_get_osfhandle(descriptor)); }

// Where the file system cannot do that, the destructor deletes.
void DeleteWhenClosed(HANDLE file, bool isDeleted) {
    FILE_DISPOSITION_INFO disposition = {};
    disposition.DeleteFile = isDeleted;
    SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition);
}

// Opened for nobody else, it can be had only if no program has it.
void RemoveIfLeft(const std::string& name) {
    const HANDLE file = CreateFileW(WidePath(name).c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}

// What is done before the first file of a folder.
void Prepare(const std::string& path) {
    static std::mutex mutex;
    const std::scoped_lock lock(mutex);
    for (const std::string& name : TemporaryFilesBeside(path)) RemoveIfLeft(name);
}

// Others may rename it, as this program does, and read it as soon as it has its name.
HANDLE Create(const std::string& name, DWORD more) {
    return CreateFileW(WidePath(name).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE | more,
                       FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

// Of shared folders some let nobody set rights.
HANDLE CreateFor(Readers readers, const std::string& name) {
    if (readers == Readers::kUsual) return Create(name, 0);
    const HANDLE file = Create(name, WRITE_DAC);
    const bool isRefused = file == INVALID_HANDLE_VALUE && GetLastError() == ERROR_ACCESS_DENIED;
    return isRefused ? Create(name, 0) : file;
}

}  // namespace

// Until it takes over the rights of another, nobody can open it at all.
TemporaryFile::TemporaryFile(const std::string& path, Readers readers) : path_(path) {
    Prepare(path);
    HANDLE file = INVALID_HANDLE_VALUE;
    while (file == INVALID_HANDLE_VALUE) {
        name_ = TemporaryName(path);
        file = CreateFor(readers, name_);
        if (file == INVALID_HANDLE_VALUE && GetLastError() != ERROR_FILE_EXISTS) {
            throw WindowsFailure(path);
        }
    }
    DeleteWhenClosed(file, true);
    descriptor_ = _open_osfhandle(reinterpret_cast<intptr_t>(file), _O_BINARY | _O_RDWR);
    if (descriptor_ >= 0) return;
    CloseHandle(file);
    throw Failure(path, "too many files at once");
}

TemporaryFile::~TemporaryFile() {
    if (!name_.empty()) DeleteFileW(WidePath(name_).c_str());
}

// Where there are no rights, or none can be set, the folder's hold.
void TemporaryFile::TakeRights(const FileState& other) {
    constexpr SECURITY_INFORMATION kRights = DACL_SECURITY_INFORMATION;
    const auto from = reinterpret_cast<HANDLE>(other.Handle());
    DWORD size = 0;
    GetKernelObjectSecurity(from, kRights, nullptr, 0, &size);
    std::vector<uint8_t> rights(size);
    if (GetKernelObjectSecurity(from, kRights, rights.data(), size, &size)) {
        SetKernelObjectSecurity(HandleOf(descriptor_), kRights, rights.data());
    }
}

bool TemporaryFile::TakePath(bool replace) {
    const HANDLE file = HandleOf(descriptor_);
    if (!FlushFileBuffers(file)) throw WindowsFailure(path_);
    DeleteWhenClosed(file, false);
    const DWORD flags = MOVEFILE_WRITE_THROUGH | (replace ? MOVEFILE_REPLACE_EXISTING : 0);
    if (MoveFileExW(WidePath(name_).c_str(), WidePath(path_).c_str(), flags)) {
        name_.clear();
        return true;
    }
    const DWORD error = GetLastError();
    DeleteWhenClosed(file, true);
    if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS) return false;
    SetLastError(error);
    throw WindowsFailure(path_);
}

}  // namespace corvantis::tool
