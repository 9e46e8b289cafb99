// Making temporary files, known to signal handlers before they are there, and removing left ones.
//
// A lock tells a file in use from one that a killed program has left: it ends with the program.
#include "files/TemporaryFile.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <mutex>
#include <random>
#include <set>
#include <utility>

#include "files/Failure.h"

namespace corvantis::tool {
namespace {

constexpr char kPrefix[] = ".corvantis-";

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

std::filesystem::path FolderOf(const std::string& path) {
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    return folder.empty() ? "." : folder;
}

// In each folder once.
void RemoveLeftFiles(const std::filesystem::path& folder) {
    static std::set<std::pair<dev_t, ino_t>> done;
    struct stat status = {};
    if (stat(folder.c_str(), &status) != 0) return;
    if (!done.emplace(status.st_dev, status.st_ino).second) return;
    std::error_code none;
    for (std::filesystem::directory_iterator entry(folder, none), end; entry != end;
         entry.increment(none)) {
        if (!entry->is_regular_file(none) || entry->is_symlink(none)) continue;
        if (entry->path().filename().string().starts_with(kPrefix)) RemoveIfLeft(entry->path());
    }
}

// What is done before the first file of a process, which a fork may have made, or of a folder.
void Prepare(const std::string& path) {
    static std::mutex mutex;
    const std::scoped_lock lock(mutex);
    if (owner.exchange(getpid()) != getpid()) CatchInterruptions();
    RemoveLeftFiles(FolderOf(path));
}

// Short, since the file's own name may be as long as names can be.
std::string RandomName(const std::string& path) {
    static thread_local std::mt19937_64 random{std::random_device{}()};
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    return fmt::format("{}{}{:012x}", folder, kPrefix, random() >> 16);
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& path, mode_t mode) {
    Prepare(path);
    while (descriptor_ < 0) {
        const Making making;
        name_ = RandomName(path);
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
    if (!name_.empty()) unlink(name_.c_str());
    GiveUp();
}

void TemporaryFile::GiveUp() {
    if (!name_.empty()) unfinished[slot_] = nullptr;
    name_.clear();
}

}  // namespace corvantis::tool
