// Locking the file that is recorded, on Windows.
#include <io.h>

#include "ITCFileAccess/RecordingLock.h"
#include "ITCUtilities/LockPlace.h"

namespace corvantis {
namespace {

HANDLE lockedFile = INVALID_HANDLE_VALUE;

}  // namespace

// Closing the file also ends the lock.
bool LockForRecording(int descriptor) {
    const auto file = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
    OVERLAPPED place = LockPlace();
    const DWORD flags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    if (!LockFileEx(file, flags, 0, 1, 0, &place)) return GetLastError() != ERROR_LOCK_VIOLATION;
    lockedFile = file;
    return true;
}

void ReleaseRecordingLock() {
    OVERLAPPED place = LockPlace();
    if (lockedFile != INVALID_HANDLE_VALUE) UnlockFileEx(lockedFile, 0, 1, 0, &place);
    lockedFile = INVALID_HANDLE_VALUE;
}

}  // namespace corvantis
