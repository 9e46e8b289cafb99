// The advisory lock that keeps a second program from the file that this one records.
#pragma once

namespace corvantis {

// False if another program holds the lock. Where the system has no locks, nobody does. It ends with
// the process at the latest.
bool LockForRecording(int descriptor);
// Also of a file that was left behind open: the program itself may create it anew.
void ReleaseRecordingLock();

}  // namespace corvantis
