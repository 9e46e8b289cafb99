// Appending the current epoch to the data file.
#include <optional>

#include "Corvantis.h"
#include "ITCFileAccess/DataFile.h"
#include "ITCFileIO/ArrayCodec.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/EpochTable.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"

namespace corvantis {
namespace {

constexpr uint32_t kEpochHeaderSize = 912;

// What one sequence entry's parameters can add to the epoch at most.
int64_t ParametersSize(uint32_t entry) {
    const int64_t conductances = int64_t{8} * CurrentEpochHeader().epochPoints;
    const ITCSummedParameters* summed = SummedSlotRecord(entry);
    if (summed == nullptr) {
        const uint32_t type = static_cast<uint32_t>(SlotType(entry));
        const bool dynamicClamp = type == ITC_STIMULUS_DYNAMIC_CLAMP;
        return TypeRow(type).countedSize + (dynamicClamp ? conductances : 0);
    }
    int64_t size = kSummedCountedSize;
    for (int32_t k = 0; k < summed->count && k < ITC_COMPONENTS; ++k) {
        size += TypeRow(static_cast<uint32_t>(summed->componentType[k])).countedSize;
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
std::optional<uint32_t> PlaceForEpoch(FILE* stream, int64_t samples) {
    const int32_t epochs = CurrentFileHeader().numEpochs;
    const int64_t size = EpochSize(samples);
    const int64_t start = CurrentPosition(stream);
    if (epochs == INT32_MAX || start < 0 || start + size > UINT32_MAX) return std::nullopt;
    const auto recorded = NextEpochPosition(epochs, static_cast<uint32_t>(start));
    return recorded && *recorded + size <= UINT32_MAX ? recorded : std::nullopt;
}

// The counted size of the epoch, or nothing if a part of it could not be written.
std::optional<uint32_t> WriteEpoch(FILE* stream, int64_t samples) {
    if (!Write_ITCEpochHeader(stream, &CurrentEpochHeader())) return std::nullopt;
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

bool WriteTable(FILE* stream, int32_t epochs) {
    return WriteArray<uint32_t>(stream, EpochPosition, static_cast<size_t>(epochs));
}

// The epoch and, behind it, the table; returns the table's position, or nothing on failure.
std::optional<int64_t> WriteEpochAndTable(FILE* stream, int64_t samples, int32_t epochs) {
    const std::optional<uint32_t> size = WriteEpoch(stream, samples);
    if (!size) return std::nullopt;
    EpochPosition[epochs] = EpochPosition[epochs - 1] + *size;
    const int64_t tablePosition = CurrentPosition(stream);
    if (tablePosition < 0 || !WriteTable(stream, epochs)) return std::nullopt;
    return std::fflush(stream) == 0 ? std::optional(tablePosition) : std::nullopt;
}

bool WriteHeader(FILE* stream) {
    return SeekTo(stream, 0) && Write_ITCFileHeader(stream, &CurrentFileHeader()) &&
           std::fflush(stream) == 0;
}

// The place of a failed epoch goes to the next one, and the table it overwrote is put back, so that
// what was saved before stays readable. Both epochs then have the same position.
void TakeBack(FILE* stream, int64_t start, int32_t epochs) {
    EpochPosition[epochs] = EpochPosition[epochs - 1];
    RememberAppendPosition(stream, start);
    RememberMove();
    DiscardUnwritten(stream);
    if (!SeekTo(stream, start)) return;
    WriteTable(stream, epochs - 1);
    std::fflush(stream);
}

int32_t Append(FILE* stream, int64_t samples, int32_t epochs) {
    const int64_t start = CurrentPosition(stream);
    const std::optional<int64_t> tablePosition = WriteEpochAndTable(stream, samples, epochs);
    if (!tablePosition) {
        TakeBack(stream, start, epochs);
        return ITC_FILE_ERROR;
    }
    RememberAppendPosition(stream, *tablePosition);
    const uint32_t position = static_cast<uint32_t>(*tablePosition);
    CurrentFileHeader().epochTablePosition = static_cast<int32_t>(position);
    RememberMove();
    if (!WriteHeader(stream)) return ITC_FILE_ERROR;
    return ReturnToAppendPosition(stream) ? ITC_SUCCESS : ITC_FILE_ERROR;
}

}  // namespace
}  // namespace corvantis

int32_t ITCSaveToFile() {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    FILE* stream = OpenStream();
    const std::optional<int64_t> samples = SavableSamples();
    if (stream == nullptr || !samples || !ReturnToAppendPosition(stream)) return ITC_FILE_ERROR;
    const std::optional<uint32_t> place = PlaceForEpoch(stream, *samples);
    if (!place) return ITC_FILE_ERROR;
    // Counted before anything is written, and never taken back: numbers of later epochs stay right.
    const int32_t epochs = ++CurrentFileHeader().numEpochs;
    if (!GrowEpochTable(epochs, *place)) return ITC_OUT_OF_MEMORY;
    return Append(stream, *samples, epochs);
}
