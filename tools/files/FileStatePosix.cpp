// Files by their device and number, and locks of recording programs.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/Failure.h"
#include "files/FileState.h"

namespace corvantis::tool {
namespace {

int DescriptorOf(const FileState& file) { return static_cast<int>(file.Handle()); }

}  // namespace

FileState::FileState(const std::string& path)
    : handle_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    if (handle_ < 0) throw SystemFailure(path);
}

FileState::~FileState() { close(DescriptorOf(*this)); }

bool FileState::IsSame(const std::string& path) const {
    struct stat own = {}, other = {};
    if (stat(path.c_str(), &other) != 0) return false;
    if (fstat(DescriptorOf(*this), &own) != 0) throw SystemFailure(path);
    return own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}

// A recording program holds an exclusive lock from creating the file until it closes it.
bool FileState::IsBeingRecorded() const {
    if (flock(DescriptorOf(*this), LOCK_SH | LOCK_NB) != 0) return errno == EWOULDBLOCK;
    flock(DescriptorOf(*this), LOCK_UN);
    return false;
}

bool IsLink(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

std::string ReasonOf(const std::error_code& error) { return error.message(); }

}  // namespace corvantis::tool
