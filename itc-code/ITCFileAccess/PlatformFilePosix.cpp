// The data file on systems with POSIX calls.
#include <fcntl.h>
#include <glob.h>
#if __has_include(<stdio_ext.h>)
#include <stdio_ext.h>
#endif
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include "ITCFileAccess/PlatformFile.h"
#include "ITCFileAccess/RecordingLock.h"

namespace corvantis {
namespace {

static_assert(sizeof(off_t) == 8, "files reach 4 GiB: build with 64-bit file offsets");

#if defined(GLOB_TILDE)
constexpr int kLookupFlags = GLOB_TILDE;
#else
constexpr int kLookupFlags = 0;
#endif

// The first match of a pattern, or the pattern itself. A "~" is thus expanded only for a file that
// exists: creating a new file through one fails, as callers know.
class PathLookup {
  public:
    explicit PathLookup(const char* pattern)
        : pattern_(pattern), found_(glob(pattern, kLookupFlags, nullptr, &matches_) == 0) {}
    PathLookup(const PathLookup&) = delete;
    PathLookup& operator=(const PathLookup&) = delete;
    ~PathLookup() { globfree(&matches_); }
    const char* Path() const { return found_ ? matches_.gl_pathv[0] : pattern_; }

  private:
    const char* pattern_;
    glob_t matches_ = {};
    bool found_;
};

// A pipe would block the caller for ever, a directory or device holds no recording.
bool MayHoldData(const char* path) {
    struct stat status = {};
    return stat(path, &status) != 0 || S_ISREG(status.st_mode);
}

// Of two programs that start in the same moment, one gets the file.
int FlagsOf(Access access) {
    if (access == Access::kReading) return O_RDONLY;
    return O_RDWR | O_CREAT | (access == Access::kCreating ? O_EXCL : 0);
}

// Emptied only when it is known that no other program records it.
bool Prepare(int descriptor, Access access) {
    if (access == Access::kReading) return true;
    return LockForRecording(descriptor) && ftruncate(descriptor, 0) == 0;
}

FILE* OpenPath(const char* path, Access access) {
    if (!MayHoldData(path)) return nullptr;
    const int descriptor = open(path, FlagsOf(access) | O_CLOEXEC, 0666);
    if (descriptor < 0) return nullptr;
    const char* mode = access == Access::kReading ? "rb" : "w+b";
    FILE* const stream = Prepare(descriptor, access) ? fdopen(descriptor, mode) : nullptr;
    if (stream == nullptr) close(descriptor);
    return stream;
}

}  // namespace

FILE* OpenFirstMatch(const char* pattern, Access access) {
    return OpenPath(PathLookup(pattern).Path(), access);
}

int64_t FileSize(FILE* stream) {
    struct stat status = {};
    return stream != nullptr && fstat(fileno(stream), &status) == 0 ? int64_t{status.st_size} : -1;
}

int64_t FileNames(FILE* stream) {
    struct stat status = {};
    return fstat(fileno(stream), &status) == 0 ? static_cast<int64_t>(status.st_nlink) : 0;
}

bool CutFile(FILE* stream, int64_t size) { return ftruncate(fileno(stream), size) == 0; }

bool ForceToDisk(FILE* stream) {
#if defined(F_FULLFSYNC)
    // macOS: all else ends at the drive's own memory; file systems that cannot do it say so.
    return fcntl(fileno(stream), F_FULLFSYNC) == 0 || fsync(fileno(stream)) == 0;
#else
    return fdatasync(fileno(stream)) == 0;
#endif
}

void DiscardUnwritten(FILE* stream) {
#if __has_include(<stdio_ext.h>)
    __fpurge(stream);
#else
    fpurge(stream);
#endif
}

}  // namespace corvantis
