// The data file on Windows: names in UTF-8, streams without a buffer of their own, so that nothing
// is ever left in one that could not be written.
#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "ITCFileAccess/PathPattern.h"
#include "ITCFileAccess/PlatformFile.h"
#include "ITCFileAccess/RecordingLock.h"
#include "ITCUtilities/WidePath.h"

namespace corvantis {
namespace {

namespace fs = std::filesystem;

using Paths = std::vector<fs::path>;

fs::path ExpandHome(const std::wstring& pattern) {
    const bool isHome =
        pattern[0] == L'~' && (pattern.size() == 1 || pattern[1] == L'/' || pattern[1] == L'\\');
    const wchar_t* home = isHome ? _wgetenv(L"USERPROFILE") : nullptr;
    return home == nullptr ? fs::path(pattern) : fs::path(home + pattern.substr(1));
}

// Names that begin with a dot are matched only by patterns that do.
void AddMatches(const fs::path& folder, const std::wstring& pattern, Paths& found) {
    std::error_code error;
    fs::directory_iterator entry(folder.empty() ? fs::path(L".") : folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const std::wstring name = entry->path().filename().wstring();
        if (name[0] == L'.' && pattern[0] != L'.') continue;
        if (MatchesPattern(name, pattern)) found.push_back(folder / name);
    }
}

// The first match in the order of the names, or the pattern itself.
fs::path FirstMatch(const std::wstring& pattern) {
    const fs::path whole = ExpandHome(pattern);
    Paths matches = {whole.root_path()};
    for (const fs::path& part : whole.relative_path()) {
        Paths next;
        for (const fs::path& match : matches) {
            if (HasWildcards(part.wstring())) {
                AddMatches(match, part.wstring(), next);
            } else {
                next.push_back(match / part);
            }
        }
        matches = std::move(next);
    }
    std::error_code error;
    std::sort(matches.begin(), matches.end());
    const auto there = std::find_if(matches.begin(), matches.end(),
                                    [&](const fs::path& path) { return fs::exists(path, error); });
    return there == matches.end() ? fs::path(pattern) : *there;
}

DWORD DispositionOf(Access access) {
    if (access == Access::kReading) return OPEN_EXISTING;
    return access == Access::kCreating ? CREATE_NEW : OPEN_ALWAYS;
}

HANDLE HandleOf(FILE* stream) { return reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))); }

bool IsEmptied(HANDLE file) {
    const LARGE_INTEGER begin = {};
    return SetFilePointerEx(file, begin, nullptr, FILE_BEGIN) && SetEndOfFile(file);
}

// The stream owns the handle; another program may read, rename or delete the file meanwhile.
FILE* OpenPath(const fs::path& path, Access access) {
    const bool writes = access != Access::kReading;
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ | (writes ? GENERIC_WRITE : 0),
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    DispositionOf(access), FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return nullptr;
    if (GetFileType(file) != FILE_TYPE_DISK) {
        CloseHandle(file);
        return nullptr;
    }
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(file),
                                           _O_BINARY | (writes ? _O_RDWR : _O_RDONLY));
    if (descriptor < 0) {
        CloseHandle(file);
        return nullptr;
    }
    const bool isReady = !writes || (LockForRecording(descriptor) && IsEmptied(file));
    FILE* const stream = isReady ? _fdopen(descriptor, writes ? "r+b" : "rb") : nullptr;
    if (stream == nullptr) _close(descriptor);
    if (stream != nullptr && writes) std::setvbuf(stream, nullptr, _IONBF, 0);
    return stream;
}

}  // namespace

FILE* OpenFirstMatch(const char* pattern, Access access) {
    const std::wstring wide = WidePath(pattern);
    return wide.empty() ? nullptr : OpenPath(FirstMatch(wide), access);
}

int64_t FileSize(FILE* stream) {
    LARGE_INTEGER size = {};
    return stream != nullptr && GetFileSizeEx(HandleOf(stream), &size) ? size.QuadPart : -1;
}

int64_t FileNames(FILE* stream) {
    FILE_STANDARD_INFO info = {};
    const bool isKnown =
        GetFileInformationByHandleEx(HandleOf(stream), FileStandardInfo, &info, sizeof info);
    return isKnown && !info.DeletePending ? int64_t{info.NumberOfLinks} : 0;
}

bool CutFile(FILE* stream, int64_t size) { return _chsize_s(_fileno(stream), size) == 0; }

bool ForceToDisk(FILE* stream) { return FlushFileBuffers(HandleOf(stream)); }

void DiscardUnwritten(FILE* /*stream*/) {}

}  // namespace corvantis
