// The one open data file: where it stands, and what of it may still be used.
#pragma once

#include <cstdint>
#include <cstdio>

#include "ITCFileAccess/PlatformFile.h"

namespace corvantis {

// The open stream, or null if none was opened or it has been closed.
FILE* OpenStream();

// Positions with 64 bits on every host; false or -1 on failure.
bool SeekTo(FILE* stream, int64_t position);
bool SkipForward(FILE* stream, int64_t count);
int64_t CurrentPosition(FILE* stream);
// Bytes from the current position to the end of the file, which may be none; -1 on failure.
int64_t RemainingBytes(FILE* stream);

// Where the next epoch belongs, from creating the file or saving an epoch. Reading and failed
// writes move the stream away from there; saving asks for the way back, which a file opened for
// reading does not have. An application's own stream is taken to stand there.
void RememberAppendPosition(FILE* stream, int64_t position);
void RememberMove();
bool ReturnToAppendPosition(FILE* stream);
// Whether the file has lost its last name since it was opened: what is saved now would be gone.
bool IsUnlinked(FILE* stream);

// What was written has reached the file; and the disk, if the environment asks for that.
bool Flush(FILE* stream);

// The count in the file's header: that of epochs that were saved, failed saves count in memory
// only.
int32_t StoredEpochs(FILE* stream);
// Write the current file header, so that it has reached the file.
bool StoreFileHeader(FILE* stream);
// After that has failed: the count that was stored last again, with the current table position.
void RestoreFileHeader(FILE* stream);

bool CutTo(FILE* stream, int64_t size);

}  // namespace corvantis
