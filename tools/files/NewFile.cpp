// Writing under a temporary name and renaming.
#include "files/NewFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "files/Failure.h"

namespace corvantis::tool {
namespace {

constexpr char kExists[] = "exists already (--force replaces it)";

bool IsLink(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

// What a link leads to is replaced, and not the link.
std::string TargetOf(const std::string& path) {
    if (!IsLink(path)) return path;
    const std::unique_ptr<char, decltype(&std::free)> target(realpath(path.c_str(), nullptr),
                                                             &std::free);
    if (target == nullptr) throw SystemFailure(path);
    return target.get();
}

// Devices and pipes would be replaced by a file, for every program that uses them.
void RefuseUnlessFile(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return;
    if (S_ISDIR(status.st_mode)) throw Failure(path, "is a directory");
    if (!S_ISREG(status.st_mode)) throw Failure(path, "is not a regular file");
}

}  // namespace

bool Exists(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0;
}

NewFile::NewFile(const std::string& path, bool replace, mode_t mode)
    : path_(TargetOf(path)), replace_(replace) {
    RefuseUnlessFile(path_);
    if (!replace_ && Exists(path_)) throw Failure(path_, kExists);
    temporary_ = std::make_unique<TemporaryFile>(path_, mode);
    stream_.reset(fdopen(temporary_->Descriptor(), "w+b"));
}

void NewFile::TakeRights(const struct stat& other) {
    const int descriptor = fileno(stream_.get());
    // Rights of another group would be another group's.
    const bool isSameGroup = fchown(descriptor, static_cast<uid_t>(-1), other.st_gid) == 0;
    const mode_t mode = other.st_mode & (isSameGroup ? 0777U : 0707U);
    if (fchmod(descriptor, mode) != 0) throw SystemFailure(path_);
}

void NewFile::CheckWritten() const {
    if (std::fflush(stream_.get()) != 0 || std::ferror(stream_.get()) != 0) {
        throw SystemFailure(path_);
    }
}

void NewFile::Commit() {
    CheckWritten();
    if (fsync(fileno(stream_.get())) != 0) throw SystemFailure(path_);
    const std::string& temporary = temporary_->Name();
    if (!replace_) {
        // A link, unlike a rename, never replaces a file that has come up meanwhile.
        if (link(temporary.c_str(), path_.c_str()) == 0) return;
        if (errno == EEXIST || Exists(path_)) throw Failure(path_, kExists);
    }
    if (rename(temporary.c_str(), path_.c_str()) != 0) throw SystemFailure(path_);
    temporary_->GiveUp();
}

}  // namespace corvantis::tool
