// Writing under a temporary name and renaming.
#include "NewFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <memory>

#include "Failure.h"

namespace corvantis {
namespace {

constexpr char kExists[] = "exists already (--force replaces it)";

bool Exists(const std::string& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0;
}

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

// A short name in the same folder, since the file's own may be as long as names can be.
std::string TemporaryName(const std::string& path) {
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    return folder + ".corvantis-XXXXXX";
}

// Devices and pipes would be replaced by a file, for every program that uses them.
void RefuseUnlessFile(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return;
    if (S_ISDIR(status.st_mode)) throw Failure(path, "is a directory");
    if (!S_ISREG(status.st_mode)) throw Failure(path, "is not a regular file");
}

// The name that an interruption removes: of the one new file at a time.
std::atomic<const char*> unfinished = nullptr;
static_assert(std::atomic<const char*>::is_always_lock_free);

extern "C" void RemoveUnfinished(int signal) {
    if (const char* name = unfinished.load()) unlink(name);
    raise(signal);  // whose action is the default one again
}

// A signal that is ignored, as nohup has it, stays so.
void CatchInterruptions() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN) continue;
        action.sa_handler = RemoveUnfinished;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, &action, nullptr);
    }
}

// mkstemp makes files for their owner alone.
void GiveUsualRights(int descriptor) {
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, static_cast<mode_t>(0666) & ~mask);
}

}  // namespace

NewFile::NewFile(const std::string& path, bool replace)
    : path_(TargetOf(path)), temporary_(TemporaryName(path_)), replace_(replace) {
    RefuseUnlessFile(path_);
    if (!replace_ && Exists(path_)) throw Failure(path_, kExists);
    const int descriptor = mkstemp(temporary_.data());
    if (descriptor < 0) throw SystemFailure(path_);
    unfinished = temporary_.c_str();
    CatchInterruptions();
    GiveUsualRights(descriptor);
    stream_.reset(fdopen(descriptor, "w+b"));
}

NewFile::~NewFile() {
    if (!temporary_.empty()) unlink(temporary_.c_str());
    unfinished = nullptr;
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
    unfinished = nullptr;
    temporary_.clear();
}

}  // namespace corvantis
