// Classic Mac paths, volume first and colon-separated, as POSIX paths.
#include <cstring>

#include "Corvantis.h"

#if defined(__APPLE__)

#include <CoreFoundation/CoreFoundation.h>

// The three objects stay behind when the result does not fit, deliberately: callers give up then.
int32_t ConvertMacPathToUnix(const char* macPath, char* unixPath, int32_t size) {
    const CFStringRef text =
        CFStringCreateWithCString(kCFAllocatorDefault, macPath, kCFStringEncodingMacRoman);
    if (text == nullptr) return -1;
    const CFURLRef url =
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, text, kCFURLHFSPathStyle, false);
    if (url == nullptr) return -1;
    const CFStringRef path = CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle);
    if (path == nullptr) return -1;
    if (!CFStringGetCString(path, unixPath, size, kCFStringEncodingMacRoman)) return -1;
    CFRelease(path);
    CFRelease(url);
    CFRelease(text);
    return 0;
}

#else

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace corvantis {
namespace {

constexpr std::string_view kVolumes = "/Volumes/";
constexpr size_t kLongestVolumeName = 255;

// A path that grows in the caller's buffer, always terminated, and knows when it did not fit.
class BoundedPath {
  public:
    BoundedPath(char* buffer, size_t room) : buffer_(buffer), room_(room) {}
    std::string_view Text() const { return {buffer_, length_}; }
    bool Fits() const { return fits_; }
    void Append(std::string_view text) {
        fits_ = fits_ && text.size() < room_ - length_;
        if (!fits_) return;
        std::memcpy(buffer_ + length_, text.data(), text.size());
        length_ += text.size();
        buffer_[length_] = '\0';
    }
    // A '/' within a name is written ':' here, as the other system's ':' separates.
    void AppendName(std::string_view name) {
        if (length_ > 0 && buffer_[length_ - 1] != '/') Append("/");
        const size_t start = length_;
        Append(name);
        std::replace(buffer_ + start, buffer_ + length_, '/', ':');
    }

  private:
    char* buffer_;
    size_t room_;
    size_t length_ = 0;
    bool fits_ = true;
};

bool IsDirectory(const char* path) {
    struct stat status = {};
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

// A volume that is mounted under its name is found there; any other is taken as the boot volume.
void AppendVolume(BoundedPath& path, std::string_view volume) {
    std::array<char, kVolumes.size() + kLongestVolumeName + 1> mountPoint;
    BoundedPath mounted(mountPoint.data(), mountPoint.size());
    mounted.Append(kVolumes);
    mounted.AppendName(volume);
    path.Append(mounted.Fits() && IsDirectory(mountPoint.data()) ? mounted.Text() : "/");
}

std::string_view TakeComponent(std::string_view& rest) {
    const size_t colon = std::min(rest.find(':'), rest.size());
    const std::string_view component = rest.substr(0, colon);
    rest.remove_prefix(std::min(colon + 1, rest.size()));
    return component;
}

// Whether a name stays in the path, or a later climb leads out of it again.
bool IsClimbedOut(std::string_view rest) {
    int depth = 1;
    while (!rest.empty() && depth > 0) depth += TakeComponent(rest).empty() ? -1 : 1;
    return depth == 0;
}

// An empty component climbs one level, but not above the volume.
void ConvertPath(std::string_view rest, BoundedPath& path) {
    // A leading ':' makes the path relative; without one the first component is the volume.
    const std::string_view volume = TakeComponent(rest);
    if (!volume.empty()) AppendVolume(path, volume);
    int level = 0;
    while (!rest.empty()) {
        const std::string_view name = TakeComponent(rest);
        if (!name.empty() && !IsClimbedOut(rest)) path.AppendName(name);
        if (name.empty() && level == 0 && volume.empty()) path.AppendName("..");
        level = std::max(0, level + (name.empty() ? -1 : 1));
    }
    if (path.Text().empty()) path.Append(".");
}

}  // namespace
}  // namespace corvantis

int32_t ConvertMacPathToUnix(const char* macPath, char* unixPath, int32_t size) {
    if (macPath == nullptr || *macPath == '\0' || unixPath == nullptr || size < 1) return -1;
    corvantis::BoundedPath path(unixPath, static_cast<size_t>(size));
    corvantis::ConvertPath(macPath, path);
    return path.Fits() ? 0 : -1;
}

#endif
