// Locking the file that is recorded.
#include "ITCFileAccess/RecordingLock.h"

#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace corvantis {
namespace {

int lockedDescriptor = -1;
pid_t lockingProcess = 0;
struct stat lockedFile = {};

// The application may have closed the stream itself, and the descriptor be another file's. A forked
// child has the lock in common with its parent, who goes on recording.
bool IsStillLocked() {
    struct stat status = {};
    return getpid() == lockingProcess && lockedDescriptor >= 0 &&
           fstat(lockedDescriptor, &status) == 0 && status.st_dev == lockedFile.st_dev &&
           status.st_ino == lockedFile.st_ino;
}

}  // namespace

bool LockForRecording(int descriptor) {
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
    lockedDescriptor = fstat(descriptor, &lockedFile) == 0 ? descriptor : -1;
    lockingProcess = getpid();
    return true;
}

void ReleaseRecordingLock() {
    if (IsStillLocked()) flock(lockedDescriptor, LOCK_UN);
    lockedDescriptor = -1;
}

}  // namespace corvantis
