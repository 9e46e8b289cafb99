// No lock for the file that is recorded: WASI has none.
#include "ITCFileAccess/RecordingLock.h"

namespace corvantis {

bool LockForRecording(int /*descriptor*/) { return true; }

void ReleaseRecordingLock() {}

}  // namespace corvantis
