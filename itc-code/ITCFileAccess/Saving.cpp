// Appending the current epoch to the data file.
#include <algorithm>
#include <optional>

#include "Corvantis.h"
#include "ITCFileAccess/DataFile.h"
#include "ITCFileIO/ArrayCodec.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/PositionTable.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"

namespace corvantis {
namespace {

constexpr uint32_t kEpochHeaderSize = sizeof(ITCEpochHeader);

// What one sequence entry's parameters can add to the epoch at most.
int64_t ParametersSize(uint32_t entry) {
    const int64_t conductances = int64_t{8} * CurrentEpochHeader().epochPoints;
    const ITCSummedParameters* summed = SummedSlotRecord(entry);
    if (summed == nullptr) {
        const uint32_t type = static_cast<uint32_t>(SlotType(entry));
        const bool dynamicClamp = type == ITC_STIMULUS_DYNAMIC_CLAMP;
        return TypeRow(type).record->countedSize + (dynamicClamp ? conductances : 0);
    }
    int64_t size = kSummedCountedSize;
    for (int32_t k = 0; k < summed->count && k < ITC_COMPONENTS; ++k) {
        size += TypeRow(static_cast<uint32_t>(summed->componentType[k])).record->countedSize;
    }
    return size;
}

int64_t EpochSize(int64_t samples) {
    int64_t size = kEpochHeaderSize + 2 * samples;
    const int32_t entries = CurrentEpochHeader().sequenceLength;
    for (int32_t entry = 0; entry < entries; ++entry) {
        size += ParametersSize(static_cast<uint32_t>(entry));
    }
    return size;
}

// The samples of an epoch that can be saved at all; nothing if it can not, and must change nothing.
std::optional<int64_t> SavableSamples() {
    const std::optional<int64_t> samples = CurrentSampleCount();
    if (!samples || CurrentEpochHeader().sequenceLength > ITC_CHANNELS) return std::nullopt;
    if (InputSamples() == nullptr || *samples > BufferCapacity()) return std::nullopt;
    return samples;
}

// The position that the next epoch is recorded at, or nothing without room for it: its recorded and
// its real start must both leave it within 32 bits.
std::optional<uint32_t> RecordedPosition(FILE* stream, int64_t samples) {
    const int32_t epochs = CurrentFileHeader().numEpochs;
    const int64_t size = EpochSize(samples);
    const int64_t start = CurrentPosition(stream);
    if (epochs == INT32_MAX || start < 0 || start + size > UINT32_MAX) return std::nullopt;
    const auto recorded = NextEpochPosition(epochs, static_cast<uint32_t>(start));
    return recorded && *recorded + size <= UINT32_MAX ? recorded : std::nullopt;
}

constexpr ITCEpochHeader kNoEpoch = {};

// What a save finds: where its epoch goes, and where the file ends.
struct Place {
    int64_t start;
    int64_t end;
    // Bytes of a failed save that could not be cut off. An epoch that ends among them would pass
    // for a whole one when it is only half there, so its header is written last.
    bool hasRemains;
};

// The counted size of the epoch, or nothing if a part of it could not be written.
std::optional<uint32_t> WriteEpoch(FILE* stream, int64_t samples, bool isHidden) {
    if (!Write_ITCEpochHeader(stream, isHidden ? &kNoEpoch : &CurrentEpochHeader())) {
        return std::nullopt;
    }
    uint32_t size = kEpochHeaderSize;
    const int32_t entries = CurrentEpochHeader().sequenceLength;
    for (int32_t entry = 0; entry < entries; ++entry) {
        const int32_t result = ITCWriteStmParams(static_cast<uint32_t>(entry), &size);
        if (result != ITC_SUCCESS) return std::nullopt;
    }
    if (!WriteArray<uint16_t>(stream, InputSamples(), static_cast<size_t>(samples))) {
        return std::nullopt;
    }
    return size + static_cast<uint32_t>(2 * samples);
}

bool WriteTable(FILE* stream, int64_t epochs) {
    return WriteArray<uint32_t>(stream, EpochPosition, static_cast<size_t>(epochs));
}

bool WriteEpochHeaderAt(FILE* stream, int64_t start, const ITCEpochHeader& header) {
    return SeekTo(stream, start) && Write_ITCEpochHeader(stream, &header) && Flush(stream);
}

// The epoch and, behind it, the table; returns the table's position, or nothing on failure.
std::optional<int64_t> WriteEpochAndTable(FILE* stream, int64_t samples, int32_t epochs,
                                          const Place& place) {
    const std::optional<uint32_t> size = WriteEpoch(stream, samples, place.hasRemains);
    if (!size) return std::nullopt;
    EpochPosition[epochs] = EpochPosition[epochs - 1] + *size;
    const int64_t tablePosition = CurrentPosition(stream);
    if (tablePosition < 0 || !WriteTable(stream, epochs)) return std::nullopt;
    // Before the header says where they are: a machine that loses power keeps them or the old
    // count.
    if (!Flush(stream)) return std::nullopt;
    const bool isShown =
        !place.hasRemains || WriteEpochHeaderAt(stream, place.start, CurrentEpochHeader());
    return isShown ? std::optional(tablePosition) : std::nullopt;
}

// A failed epoch must not be found in the file: it may be saved again, and the next one's beginning
// must not pass for a whole epoch with its end. The table that it overwrote is put back.
void RestoreFile(FILE* stream, const Place& place, int32_t epochs) {
    DiscardUnwritten(stream);
    if (!CutTo(stream, place.end)) WriteEpochHeaderAt(stream, place.start, kNoEpoch);
    const int64_t entries = std::min<int64_t>((place.end - place.start) / 4, epochs - 1);
    if (entries > 0 && SeekTo(stream, place.start)) WriteTable(stream, entries);
    std::fflush(stream);
}

// The place of a failed epoch goes to the next one: both have the same position.
void TakeBack(FILE* stream, const Place& place, int32_t epochs) {
    EpochPosition[epochs] = EpochPosition[epochs - 1];
    RememberAppendPosition(stream, place.start);
    RememberMove();
    RestoreFile(stream, place, epochs);
}

bool StoreTablePosition(FILE* stream, int64_t tablePosition) {
    int32_t& position = CurrentFileHeader().epochTablePosition;
    const int32_t before = position;
    position = static_cast<int32_t>(static_cast<uint32_t>(tablePosition));
    if (StoreFileHeader(stream)) return true;
    position = before;
    DiscardUnwritten(stream);
    RestoreFileHeader(stream);
    return false;
}

int32_t Append(FILE* stream, int64_t samples, int32_t epochs) {
    const int64_t start = CurrentPosition(stream), end = FileSize(stream);
    const Place place = {start, end, end > start + int64_t{4} * StoredEpochs(stream)};
    const std::optional<int64_t> tablePosition = WriteEpochAndTable(stream, samples, epochs, place);
    if (!tablePosition || !StoreTablePosition(stream, *tablePosition)) {
        TakeBack(stream, place, epochs);
        return ITC_FILE_ERROR;
    }
    RememberAppendPosition(stream, *tablePosition);
    RememberMove();
    return ReturnToAppendPosition(stream) ? ITC_SUCCESS : ITC_FILE_ERROR;
}

}  // namespace
}  // namespace corvantis

int32_t ITCSaveToFile() {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    FILE* stream = OpenStream();
    const std::optional<int64_t> samples = SavableSamples();
    if (stream == nullptr || !samples || IsUnlinked(stream)) return ITC_FILE_ERROR;
    if (!ReturnToAppendPosition(stream)) return ITC_FILE_ERROR;
    const std::optional<uint32_t> position = RecordedPosition(stream, *samples);
    if (!position) return ITC_FILE_ERROR;
    // Counted before anything is written, and never taken back: numbers of later epochs stay right.
    const int32_t epochs = ++CurrentFileHeader().numEpochs;
    if (!GrowPositionTable(epochs, *position)) return ITC_OUT_OF_MEMORY;
    return Append(stream, *samples, epochs);
}
