// The dynamic loader of Windows.
#include <algorithm>

#include "ITCUtilities/WidePath.h"
#include "ITCUtilities/WindowsMessage.h"
#include "player/SharedLibrary.h"

namespace corvantis::rig {
namespace {

constexpr DWORD kLongestPath = 32768;

// The loader takes other slashes for part of a name.
std::wstring Native(const std::string& path) {
    std::wstring wide = WidePath(path);
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    return wide;
}

}  // namespace

// What the player itself needs is looked for beside it too.
SharedLibrary::SharedLibrary(const std::string& path)
    : library(LoadLibraryExW(Native(path).c_str(), nullptr,
                             IsPath(path) ? LOAD_WITH_ALTERED_SEARCH_PATH : 0)) {
    if (library == nullptr) problem = path + ": " + WindowsMessage(GetLastError());
}

void SharedLibrary::Unload::operator()(void* loaded) const {
    FreeLibrary(static_cast<HMODULE>(loaded));
}

void* SharedLibrary::Function(const char* name) const {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library.get()), name));
}

std::string LibraryFileName(const std::string& name) { return name + ".dll"; }

bool IsPath(const std::string& text) { return text.find_first_of("/\\:") != std::string::npos; }

std::string ProgramFolder() {
    std::wstring path(kLongestPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
    const std::string narrow = NarrowText(path);
    return narrow.substr(0, narrow.find_last_of('\\') + 1);
}

bool FileExists(const std::string& path) {
    return GetFileAttributesW(WidePath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace corvantis::rig
