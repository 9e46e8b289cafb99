// Making temporary files, known to signal handlers before they are there, and removing left ones.
//
// A lock tells a file in use from one that a killed program has left: it ends with the program.
#include "files/TemporaryFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <iterator>
#include <mutex>
#include <utility>

#include "files/Failure.h"
#include "files/TemporaryName.h"

namespace corvantis::tool {
namespace {

// The names that a signal removes, of the process that made them.
std::array<std::atomic<const char*>, kMostTemporaryFiles> unfinished;
std::atomic<pid_t> owner = 0;
std::atomic<int> making = 0;  // threads that are at it
std::atomic<bool> isEnding = false;
static_assert(std::atomic<const char*>::is_always_lock_free);

// A second signal waits until this is done: reset by the system before it blocks the signal, as
// SA_RESETHAND has it, the default action would come first. Threads that are making a file hold
// signals back, so that this never waits for itself.
extern "C" void RemoveUnfinished(int signal) {
    isEnding = true;
    while (owner == getpid() && making > 0) continue;
    for (const auto& each : unfinished) {
        const char* name = each.load();
        if (name != nullptr && owner == getpid()) unlink(name);
    }
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
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction action = {};
        if (!EndsProgram(signal) || sigaction(signal, nullptr, &action) != 0) continue;
        if (action.sa_handler != SIG_DFL) continue;
        action = {};
        action.sa_handler = RemoveUnfinished;
        sigfillset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
}

// Holds signals back from this thread, and the program's end until the file and its name agree.
class Making {
  public:
    Making() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, &before_);
        ++making;
        while (isEnding) {
            --making;
            for (;;) pause();
        }
    }
    Making(const Making&) = delete;
    Making& operator=(const Making&) = delete;
    ~Making() {
        --making;
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

  private:
    sigset_t before_ = {};
};

size_t TakeSlot(const char* name) {
    for (size_t slot = 0; slot < unfinished.size(); ++slot) {
        const char* none = nullptr;
        if (unfinished[slot].compare_exchange_strong(none, name)) return slot;
    }
    throw Failure("too many files at once");
}

bool HasName(int descriptor, const std::string& name) {
    struct stat own = {}, named = {};
    return fstat(descriptor, &own) == 0 && lstat(name.c_str(), &named) == 0 &&
           own.st_dev == named.st_dev && own.st_ino == named.st_ino;
}

// A file system without locks is no obstacle: nobody removes anything there.
bool IsLockedByOthers(int descriptor) {
    return flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

void RemoveIfLeft(const std::string& name) {
    const int descriptor = open(name.c_str(), O_RDWR | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) return;
    const bool isLeft = flock(descriptor, LOCK_EX | LOCK_NB) == 0 && HasName(descriptor, name);
    if (isLeft) unlink(name.c_str());
    close(descriptor);
}

// What is done before the first file of a process, which a fork may have made, or of a folder.
void Prepare(const std::string& path) {
    static std::mutex mutex;
    const std::scoped_lock lock(mutex);
    if (owner.exchange(getpid()) != getpid()) CatchInterruptions();
    for (const std::string& name : TemporaryFilesBeside(path)) RemoveIfLeft(name);
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& path, Readers readers) : path_(path) {
    const mode_t mode = readers == Readers::kOwner ? 0600 : 0666;
    Prepare(path);
    while (descriptor_ < 0) {
        const Making making;
        name_ = TemporaryName(path);
        slot_ = TakeSlot(name_.c_str());
        descriptor_ = open(name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (descriptor_ >= 0 && !IsLockedByOthers(descriptor_) && HasName(descriptor_, name_)) {
            return;
        }
        const int error = descriptor_ < 0 ? errno : EEXIST;
        unfinished[slot_] = nullptr;
        if (descriptor_ >= 0) close(std::exchange(descriptor_, -1));
        errno = error;
        if (error != EEXIST) throw SystemFailure(path);
    }
}

TemporaryFile::~TemporaryFile() {
    if (name_.empty()) return;
    unlink(name_.c_str());
    unfinished[slot_] = nullptr;
}

void TemporaryFile::TakeRights(const FileState& other) {
    struct stat status = {};
    if (fstat(static_cast<int>(other.Handle()), &status) != 0) throw SystemFailure(path_);
    // Rights of another group would be another group's.
    const bool isSameGroup = fchown(descriptor_, static_cast<uid_t>(-1), status.st_gid) == 0;
    const mode_t mode = status.st_mode & (isSameGroup ? 0777U : 0707U);
    if (fchmod(descriptor_, mode) != 0) throw SystemFailure(path_);
}

bool TemporaryFile::TakePath(bool replace) {
    if (fsync(descriptor_) != 0) throw SystemFailure(path_);
    if (!replace) {
        // A link, unlike a rename, never replaces a file that has come up meanwhile.
        if (link(name_.c_str(), path_.c_str()) == 0) return true;
        struct stat status = {};
        if (errno == EEXIST || lstat(path_.c_str(), &status) == 0) return false;
    }
    if (rename(name_.c_str(), path_.c_str()) != 0) throw SystemFailure(path_);
    unfinished[slot_] = nullptr;
    name_.clear();
    return true;
}

}  // namespace corvantis::tool
