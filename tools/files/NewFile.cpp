// Writing under a temporary name and renaming.
#include "files/NewFile.h"

#include <filesystem>

#include "files/Failure.h"
#include "files/Path.h"

namespace corvantis::tool {
namespace {

namespace fs = std::filesystem;

constexpr char kExists[] = "exists already (--force replaces it)";

// What a link leads to is replaced, and not the link.
std::string TargetOf(const std::string& path) {
    if (!IsLink(path)) return path;
    std::error_code error;
    const fs::path target = fs::canonical(PathOf(path), error);
    if (error) throw Failure(path, ReasonOf(error));
    if (IsLink(TextOf(target))) throw Failure(path, "is a link; name what it leads to");
    return TextOf(target);
}

// Devices and pipes would be replaced by a file, for every program that uses them.
void RefuseUnlessFile(const std::string& path) {
    std::error_code none;
    const fs::file_status status = fs::status(PathOf(path), none);
    if (!fs::exists(status)) return;
    if (fs::is_directory(status)) throw Failure(path, "is a directory");
    if (!fs::is_regular_file(status)) throw Failure(path, "is not a regular file");
}

}  // namespace

bool Exists(const std::string& path) {
    std::error_code none;
    return fs::exists(fs::symlink_status(PathOf(path), none));
}

NewFile::NewFile(const std::string& path, bool replace, Readers readers)
    : path_(TargetOf(path)), replace_(replace) {
    RefuseUnlessFile(path_);
    if (!replace_ && Exists(path_)) throw Failure(path_, kExists);
    temporary_ = std::make_unique<TemporaryFile>(path_, readers);
    stream_.reset(fdopen(temporary_->Descriptor(), "w+b"));
}

void NewFile::CheckWritten() const {
    if (std::fflush(stream_.get()) != 0 || std::ferror(stream_.get()) != 0) {
        throw SystemFailure(path_);
    }
}

void NewFile::Commit() {
    CheckWritten();
    if (!temporary_->TakePath(replace_)) throw Failure(path_, kExists);
}

}  // namespace corvantis::tool
