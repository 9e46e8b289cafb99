// The dynamic loader of Unix systems.
#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <filesystem>
#include <string>

#include "player/SharedLibrary.h"

#if defined(__APPLE__)
#include <mach-o/dyld.h>

#include <vector>
#endif

namespace corvantis::rig {
namespace {

#if defined(__APPLE__)
constexpr const char* kSuffix = ".dylib";

std::filesystem::path ProgramPath() {
    uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::vector<char> path(size);
    return _NSGetExecutablePath(path.data(), &size) == 0 ? path.data() : "";
}
#else
constexpr const char* kSuffix = ".so";

// Not by the C++ library, which asks for the link's status first: its number may not fit 32 bits.
std::filesystem::path ProgramPath() {
    std::array<char, PATH_MAX> path;
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    return length < 0 ? std::string() : std::string(path.data(), static_cast<size_t>(length));
}
#endif

}  // namespace

// Every name is looked up at once: a player that lacks one must not be found out in mid-epoch.
SharedLibrary::SharedLibrary(const std::string& path)
    : library(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (library != nullptr) return;
    const char* const reason = dlerror();
    problem = reason != nullptr ? reason : path + ": cannot be loaded";
}

void SharedLibrary::Unload::operator()(void* loaded) const { dlclose(loaded); }

void* SharedLibrary::Function(const char* name) const { return dlsym(library.get(), name); }

std::string LibraryFileName(const std::string& name) { return "lib" + name + kSuffix; }

bool IsPath(const std::string& text) { return text.find('/') != std::string::npos; }

std::string ProgramFolder() {
    const std::string folder = ProgramPath().parent_path().string();
    return folder.empty() ? folder : folder + '/';
}

bool FileExists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

}  // namespace corvantis::rig
