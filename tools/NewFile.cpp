// Writing under a temporary name and renaming.
#include "NewFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

#include "Failure.h"

namespace corvantis {
namespace {

constexpr char kExists[] = "exists already (--force replaces it)";

bool Exists(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0;
}

bool IsDirectory(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// mkstemp makes files for their owner alone.
void GiveUsualRights(int descriptor) {
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, static_cast<mode_t>(0666) & ~mask);
}

}  // namespace

NewFile::NewFile(std::string path, bool replace)
    : path_(std::move(path)), temporary_(path_ + ".XXXXXX"), replace_(replace) {
    if (IsDirectory(path_)) throw Failure(path_, "is a directory");
    if (!replace_ && Exists(path_)) throw Failure(path_, kExists);
    const int descriptor = mkstemp(temporary_.data());
    if (descriptor < 0) throw SystemFailure(path_);
    GiveUsualRights(descriptor);
    stream_.reset(fdopen(descriptor, "w+b"));
}

NewFile::~NewFile() {
    if (!temporary_.empty()) unlink(temporary_.c_str());
}

void NewFile::CheckWritten() const {
    if (std::fflush(stream_.get()) != 0 || std::ferror(stream_.get()) != 0) {
        throw SystemFailure(path_);
    }
}

void NewFile::Commit() {
    CheckWritten();
    if (fsync(fileno(stream_.get())) != 0) throw SystemFailure(path_);
    if (!replace_) {
        // A link, unlike a rename, never replaces a file that has come up meanwhile.
        if (link(temporary_.c_str(), path_.c_str()) == 0) return;
        if (errno == EEXIST || Exists(path_)) throw Failure(path_, kExists);
    }
    if (rename(temporary_.c_str(), path_.c_str()) != 0) throw SystemFailure(path_);
    temporary_.clear();
}

}  // namespace corvantis
