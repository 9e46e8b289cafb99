// Finding, creating, opening and closing the data file.
#include "ITCFileAccess/DataFile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "Corvantis.h"
#include "ITCFileAccess/PlatformFile.h"
#include "ITCFileAccess/RecordingLock.h"
#include "ITCFileIO/ArrayCodec.h"
#include "ITCInitialize/PositionTable.h"
#include "ITCInitialize/State.h"

namespace corvantis {
namespace {

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

bool Open(const char* pattern, Access access) {
    ReleaseRecordingLock();
    ITCOpenFilePtr = OpenFirstMatch(pattern, access);
    closedStream = nullptr;
    openedStream = ITCOpenFilePtr;
    storedEpochs = 0;
    openedWithName = ITCOpenFilePtr != nullptr && FileNames(ITCOpenFilePtr) > 0;
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

bool OpenPattern(const char* pattern, Access access) {
    return pattern != nullptr && HasFileHeader() && Open(pattern, access);
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
    return stream == openedStream && openedWithName && FileNames(stream) == 0;
}

int32_t StoredEpochs(FILE* stream) {
    return stream == openedStream ? storedEpochs : CurrentFileHeader().numEpochs;
}

bool Flush(FILE* stream) {
    const char* wanted = std::getenv("CORVANTIS_SYNC");
    const bool isWanted =
        wanted != nullptr && std::strcmp(wanted, "") != 0 && std::strcmp(wanted, "0") != 0;
    return std::fflush(stream) == 0 && (!isWanted || ForceToDisk(stream));
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

bool CutTo(FILE* stream, int64_t size) { return FileSize(stream) <= size || CutFile(stream, size); }

}  // namespace corvantis

int32_t ITCCreateFile(const char* pattern, int32_t overwrite) {
    using namespace corvantis;
    if (!OpenPattern(pattern, overwrite == 0 ? Access::kCreating : Access::kReplacing))
        return ITC_FILE_ERROR;
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
    return OpenPattern(pattern, Access::kReading) ? ReadHeaderAndTable() : ITC_FILE_ERROR;
}

// The file is emptied, deliberately: whoever relies on its failing finds an empty file. It stays
// open, and an epoch that is saved into it leaves the header its room.
int32_t ITCOpenFileForEdit(const char* pattern) {
    using namespace corvantis;
    if (!OpenPattern(pattern, Access::kReplacing)) return ITC_FILE_ERROR;
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
