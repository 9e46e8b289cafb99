// Writing under a temporary name and renaming.
#include "files/NewFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <memory>

#include "files/Failure.h"

namespace corvantis::tool {
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

// The name that a signal removes: of the one new file at a time, in the process that made it.
std::atomic<const char*> unfinished = nullptr;
std::atomic<pid_t> owner = 0;
static_assert(std::atomic<const char*>::is_always_lock_free);

// A second signal waits until this is done: reset by the system before it blocks the signal, as
// SA_RESETHAND has it, the default action would come first.
extern "C" void RemoveUnfinished(int signal) {
    const char* name = unfinished.load();
    if (name != nullptr && owner == getpid()) unlink(name);
    std::signal(signal, SIG_DFL);
    raise(signal);  // comes once this has returned
}

bool EndsProgram(int signal) {
    constexpr int others[] = {SIGKILL, SIGSTOP, SIGTSTP, SIGTTIN, SIGTTOU,
                              SIGCONT, SIGCHLD, SIGURG,  SIGWINCH};
    return std::find(std::begin(others), std::end(others), signal) == std::end(others);
}

// A signal that is ignored, as nohup has it, or handled, stays so.
void CatchInterruptions() {
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        struct sigaction action = {};
        if (!EndsProgram(signal) || sigaction(signal, nullptr, &action) != 0) continue;
        if (action.sa_handler != SIG_DFL) continue;
        action = {};
        action.sa_handler = RemoveUnfinished;
        sigfillset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}

// A file of that name, of which signals know from its first moment.
int MakeTemporary(std::string& name) {
    sigset_t all, before;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, &before);
    const int descriptor = mkstemp(name.data());
    const int error = errno;
    if (descriptor >= 0) {
        owner = getpid();
        unfinished = name.c_str();
        CatchInterruptions();
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return descriptor;
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
    const int descriptor = MakeTemporary(temporary_);
    if (descriptor < 0) throw SystemFailure(path_);
    GiveUsualRights(descriptor);
    stream_.reset(fdopen(descriptor, "w+b"));
}

void NewFile::TakeRights(const struct stat& other) {
    const int descriptor = fileno(stream_.get());
    // Rights of another group would be another group's.
    const bool isSameGroup = fchown(descriptor, static_cast<uid_t>(-1), other.st_gid) == 0;
    const mode_t mode = other.st_mode & (isSameGroup ? 0777U : 0707U);
    if (fchmod(descriptor, mode) != 0) throw SystemFailure(path_);
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

}  // namespace corvantis::tool
