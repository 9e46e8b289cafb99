// Finding, creating, opening and closing the data file.
#include "ITCFileAccess/DataFile.h"

#include <fcntl.h>
#include <glob.h>
#if defined(__linux__)
#include <stdio_ext.h>
#endif
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Corvantis.h"
#include "ITCFileAccess/RecordingLock.h"
#include "ITCFileIO/ArrayCodec.h"
#include "ITCInitialize/PositionTable.h"
#include "ITCInitialize/State.h"

namespace corvantis {
namespace {

static_assert(sizeof(off_t) == 8, "files reach 4 GiB: build with 64-bit file offsets");

struct AppendPlace {
    const FILE* stream = nullptr;
    int64_t position = 0;
    bool mayHaveMoved = false;
};

// Closing leaves the exported pointer's value, so which stream it was is remembered here.
const FILE* closedStream = nullptr;
const FILE* openedStream = nullptr;
bool openedWithName = false;
AppendPlace appendPlace;
int32_t storedEpochs = 0;

// The first match of a pattern, or the pattern itself. A "~" is thus expanded only for a file that
// exists: creating a new file through one fails, as callers know.
class PathLookup {
  public:
    explicit PathLookup(const char* pattern)
        : pattern_(pattern), found_(glob(pattern, GLOB_TILDE, nullptr, &matches_) == 0) {}
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

struct Access {
    const char* mode;
    int flags;
};
constexpr Access kReading = {"rb", O_RDONLY};
constexpr Access kReplacing = {"w+b", O_RDWR | O_CREAT};
// Of two programs that start in the same moment, one gets the file.
constexpr Access kCreating = {"w+b", O_RDWR | O_CREAT | O_EXCL};

// Emptied only when it is known that no other program records it.
bool Prepare(int descriptor, const Access& access) {
    if (access.flags == O_RDONLY) return true;
    return LockForRecording(descriptor) && ftruncate(descriptor, 0) == 0;
}

// A program that the application starts does not get the descriptor.
FILE* OpenStreamOn(const char* path, const Access& access) {
    if (!MayHoldData(path)) return nullptr;
    const int descriptor = open(path, access.flags | O_CLOEXEC, 0666);
    if (descriptor < 0) return nullptr;
    FILE* const stream = Prepare(descriptor, access) ? fdopen(descriptor, access.mode) : nullptr;
    if (stream == nullptr) close(descriptor);
    return stream;
}

int64_t Names(FILE* stream) {
    struct stat status = {};
    return fstat(fileno(stream), &status) == 0 ? static_cast<int64_t>(status.st_nlink) : 0;
}

bool OpenPath(const char* path, const Access& access) {
    ReleaseRecordingLock();
    ITCOpenFilePtr = OpenStreamOn(path, access);
    closedStream = nullptr;
    openedStream = ITCOpenFilePtr;
    storedEpochs = 0;
    openedWithName = ITCOpenFilePtr != nullptr && Names(ITCOpenFilePtr) > 0;
    appendPlace = {};
    return ITCOpenFilePtr != nullptr;
}

// Of a table that the file ends inside of, the whole entries stay: their epochs can be read. A
// count from a damaged header thus asks for no memory either.
int32_t ReadPositionTable(FILE* stream, int32_t numEpochs, int64_t position) {
    ReleasePositionTable();
    EpochPosition = nullptr;
    if (numEpochs < 0 || !SeekTo(stream, position)) return ITC_FILE_ERROR;
    const int64_t present = std::max<int64_t>(RemainingBytes(stream) / int64_t{4}, 0);
    const int64_t entries = std::min<int64_t>(numEpochs, present);
    if (!AllocatePositionTable(entries)) return ITC_OUT_OF_MEMORY;
    const bool read = ReadArray<uint32_t>(stream, EpochPosition, static_cast<size_t>(entries));
    return read && entries == numEpochs ? ITC_SUCCESS : ITC_FILE_ERROR;
}

bool OpenPattern(const char* pattern, const Access& access) {
    return pattern != nullptr && HasFileHeader() && OpenPath(PathLookup(pattern).Path(), access);
}

int32_t ReadHeaderAndTable() {
    ITCFileHeader& header = CurrentFileHeader();
    if (!Read_ITCFileHeader(ITCOpenFilePtr, &header)) return ITC_FILE_ERROR;
    const uint32_t position = static_cast<uint32_t>(header.epochTablePosition);
    const int32_t result = ReadPositionTable(ITCOpenFilePtr, header.numEpochs, position);
    if (result != ITC_SUCCESS) return result;
    return header.version > ITC_FILE_VERSION ? ITC_VERSION_TOO_NEW : ITC_SUCCESS;
}

}  // namespace

FILE* OpenStream() { return ITCOpenFilePtr == closedStream ? nullptr : ITCOpenFilePtr; }

bool SeekTo(FILE* stream, int64_t position) { return fseeko(stream, position, SEEK_SET) == 0; }
bool SkipForward(FILE* stream, int64_t count) { return fseeko(stream, count, SEEK_CUR) == 0; }
int64_t CurrentPosition(FILE* stream) { return ftello(stream); }

int64_t FileSize(FILE* stream) {
    struct stat status = {};
    return stream != nullptr && fstat(fileno(stream), &status) == 0 ? int64_t{status.st_size} : -1;
}

int64_t RemainingBytes(FILE* stream) {
    const int64_t position = CurrentPosition(stream);
    return position < 0 ? -1 : FileSize(stream) - position;
}

void RememberAppendPosition(FILE* stream, int64_t position) { appendPlace = {stream, position}; }

void RememberMove() { appendPlace.mayHaveMoved = true; }

bool ReturnToAppendPosition(FILE* stream) {
    if (stream != appendPlace.stream) return stream != openedStream;
    if (!appendPlace.mayHaveMoved) return true;
    appendPlace.mayHaveMoved = !SeekTo(stream, appendPlace.position);
    return !appendPlace.mayHaveMoved;
}

bool IsUnlinked(FILE* stream) {
    return stream == openedStream && openedWithName && Names(stream) == 0;
}

int32_t StoredEpochs(FILE* stream) {
    return stream == openedStream ? storedEpochs : CurrentFileHeader().numEpochs;
}

bool Flush(FILE* stream) {
    const char* wanted = std::getenv("CORVANTIS_SYNC");
    const bool isWanted =
        wanted != nullptr && std::strcmp(wanted, "") != 0 && std::strcmp(wanted, "0") != 0;
    return std::fflush(stream) == 0 && (!isWanted || fdatasync(fileno(stream)) == 0);
}

bool StoreFileHeader(FILE* stream) {
    const bool stored =
        SeekTo(stream, 0) && Write_ITCFileHeader(stream, &CurrentFileHeader()) && Flush(stream);
    if (stored) storedEpochs = CurrentFileHeader().numEpochs;
    return stored;
}

void RestoreFileHeader(FILE* stream) {
    ITCFileHeader header = CurrentFileHeader();
    header.numEpochs = StoredEpochs(stream);
    if (SeekTo(stream, 0)) Write_ITCFileHeader(stream, &header);
    std::fflush(stream);
}

bool CutTo(FILE* stream, int64_t size) {
    return FileSize(stream) <= size || ftruncate(fileno(stream), size) == 0;
}

void DiscardUnwritten(FILE* stream) {
#if defined(__linux__)
    __fpurge(stream);
#else
    fpurge(stream);
#endif
}

}  // namespace corvantis

int32_t ITCCreateFile(const char* pattern, int32_t overwrite) {
    using namespace corvantis;
    if (!OpenPattern(pattern, overwrite == 0 ? kCreating : kReplacing)) return ITC_FILE_ERROR;
    FillBlankFileHeader();
    // Flushed at once: a disk without room is known before the first epoch, not after it.
    if (!StoreFileHeader(ITCOpenFilePtr)) {
        ITCCloseFile();
        return ITC_FILE_ERROR;
    }
    RememberAppendPosition(ITCOpenFilePtr, kFirstEpochPosition);
    return ITC_SUCCESS;
}

int32_t ITCOpenFile(const char* pattern) {
    using namespace corvantis;
    return OpenPattern(pattern, kReading) ? ReadHeaderAndTable() : ITC_FILE_ERROR;
}

// The file is emptied, deliberately: whoever relies on its failing finds an empty file. It stays
// open, and an epoch that is saved into it leaves the header its room.
int32_t ITCOpenFileForEdit(const char* pattern) {
    using namespace corvantis;
    if (!OpenPattern(pattern, kReplacing)) return ITC_FILE_ERROR;
    RememberAppendPosition(ITCOpenFilePtr, kFirstEpochPosition);
    RememberMove();
    return ReadHeaderAndTable();
}

int32_t ITCCloseFile() {
    using namespace corvantis;
    FILE* stream = OpenStream();
    if (stream == nullptr) return EOF;
    closedStream = stream;
    ReleaseRecordingLock();
    return std::fclose(stream);
}
