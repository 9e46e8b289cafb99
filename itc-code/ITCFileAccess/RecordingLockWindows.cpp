// Locking the file that is recorded, on Windows: a byte far behind all data, since what is locked
// there cannot be read by others.
#include <io.h>

#include "ITCFileAccess/RecordingLock.h"
#include "ITCUtilities/WidePath.h"

namespace corvantis {
namespace {

constexpr DWORD kFarBehind = 0x40000000;  // the upper half of the offset

HANDLE lockedFile = INVALID_HANDLE_VALUE;

OVERLAPPED LockPlace() {
    OVERLAPPED place = {};
    place.OffsetHigh = kFarBehind;
    return place;
}

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
