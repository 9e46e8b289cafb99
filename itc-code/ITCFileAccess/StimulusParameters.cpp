// The stimulus records of a slot between memory and the data file.
#include <algorithm>

#include "Corvantis.h"
#include "ITCFileAccess/DataFile.h"
#include "ITCFileIO/ArrayCodec.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"
#include "ITCUtilities/Memory.h"

namespace corvantis {
namespace {

// Whether an epoch's size has a count for records of that type, be it that nothing is written.
bool IsCounted(uint32_t type) {
    return type == ITC_STIMULUS_SUMMED || TypeRow(type).record->countedSize != 0;
}

int32_t FileResult(bool transferred) { return transferred ? ITC_SUCCESS : ITC_FILE_ERROR; }

bool WriteConductances(FILE* stream, size_t points) {
    const bool excitatory = WriteArray<float>(stream, ExcitatoryG, points);
    const bool inhibitory = WriteArray<float>(stream, InhibitoryG, points);
    return excitatory && inhibitory;
}

int32_t WriteDynamicClamp(FILE* stream, const void* record, uint32_t& size) {
    const int32_t points = CurrentEpochHeader().epochPoints;
    if (points > 0 && (ExcitatoryG == nullptr || InhibitoryG == nullptr)) return ITC_STIMULUS_ERROR;
    if (points < 0) return ITC_FILE_ERROR;
    if (!Write_ITCStimulusParameters(stream, record, ITC_STIMULUS_DYNAMIC_CLAMP)) {
        return ITC_FILE_ERROR;
    }
    size +=
        TypeRow(ITC_STIMULUS_DYNAMIC_CLAMP).record->countedSize + 8 * static_cast<uint32_t>(points);
    return FileResult(WriteConductances(stream, static_cast<size_t>(points)));
}

int32_t WriteRecord(FILE* stream, const void* record, uint32_t type, uint32_t& size) {
    const uint32_t countedSize = TypeRow(type).record->countedSize;
    if (record == nullptr || countedSize == 0) return ITC_STIMULUS_ERROR;
    if (!Write_ITCStimulusParameters(stream, record, type)) return ITC_FILE_ERROR;
    size += countedSize;
    return ITC_SUCCESS;
}

int32_t WriteSum(FILE* stream, const ITCSummedParameters& summed, uint32_t& size) {
    if (!Write_ITCSummedParameters(stream, &summed)) return ITC_FILE_ERROR;
    size += kSummedCountedSize;
    for (int32_t k = 0; k < summed.count; ++k) {
        const void* component = ComponentRecord(summed, k);
        if (component == nullptr) return ITC_STIMULUS_ERROR;
        const uint32_t type = static_cast<uint32_t>(summed.componentType[k]);
        const int32_t result = WriteRecord(stream, component, type, size);
        if (result != ITC_SUCCESS) return result;
    }
    return ITC_SUCCESS;
}

// Cleared: a type that has no bytes on file comes back as nothing to play.
void* AllocateRecord(uint32_t type) {
    return AllocateZeroed<uint8_t>(static_cast<int64_t>(TypeRow(type).record->memorySize))
        .release();
}

int32_t ReadComponent(FILE* stream, ITCSummedParameters& summed, int32_t k) {
    const uint32_t type = static_cast<uint32_t>(summed.componentType[k]);
    if (TypeRow(type).record->countedSize == 0) return ITC_STIMULUS_ERROR;
    summed.components[k] = AllocateRecord(type);
    if (summed.components[k] == nullptr) return ITC_OUT_OF_MEMORY;
    return FileResult(Read_ITCStimulusParameters(stream, summed.components[k], type));
}

int32_t ReadSum(FILE* stream, ITCSummedParameters& summed) {
    if (!Read_ITCSummedParameters(stream, &summed)) return ITC_FILE_ERROR;
    if (summed.count > ITC_COMPONENTS) {
        summed.count = 0;
        return ITC_FILE_ERROR;
    }
    for (int32_t k = 0; k < summed.count; ++k) {
        const int32_t result = ReadComponent(stream, summed, k);
        if (result != ITC_SUCCESS) return result;
    }
    return ITC_SUCCESS;
}

bool SkipConductances(FILE* stream) {
    const int32_t points = CurrentEpochHeader().epochPoints;
    return points >= 0 && SkipForward(stream, int64_t{8} * points);
}

int32_t ReadRecord(FILE* stream, void* record, uint32_t type) {
    if (type == ITC_STIMULUS_SUMMED) {
        return ReadSum(stream, *static_cast<ITCSummedParameters*>(record));
    }
    if (!Read_ITCStimulusParameters(stream, record, type)) return ITC_FILE_ERROR;
    return FileResult(type != ITC_STIMULUS_DYNAMIC_CLAMP || SkipConductances(stream));
}

}  // namespace
}  // namespace corvantis

int32_t ITCWriteStmParams(uint32_t channel, uint32_t* size) {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    if (!IsChannel(channel)) return ITC_STIMULUS_ERROR;
    const void* record = SlotRecord(channel);
    if (record == nullptr) return ITC_STIMULUS_ERROR;
    const uint32_t type = static_cast<uint32_t>(SlotType(channel));
    if (!IsCounted(type)) return ITC_STIMULUS_ERROR;
    FILE* stream = OpenStream();
    if (stream == nullptr) return ITC_FILE_ERROR;
    if (type == ITC_STIMULUS_SUMMED) {
        return WriteSum(stream, *static_cast<const ITCSummedParameters*>(record), *size);
    }
    if (type == ITC_STIMULUS_DYNAMIC_CLAMP) return WriteDynamicClamp(stream, record, *size);
    return WriteRecord(stream, record, type, *size);
}

// The components of a sum that the slot held before are not freed: callers may still show them.
int32_t ITCReadStmParams(uint32_t channel) {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    if (!IsChannel(channel)) return ITC_STIMULUS_ERROR;
    const uint32_t type = static_cast<uint32_t>(SlotType(channel));
    FILE* stream = OpenStream();
    if (stream == nullptr && IsCounted(type)) return ITC_FILE_ERROR;
    ReleaseSlotRecord(channel);
    if (!IsCounted(type)) return ITC_STIMULUS_ERROR;
    RememberMove();
    void* record = AllocateRecord(type);
    if (record == nullptr) return ITC_OUT_OF_MEMORY;
    InstallSlotRecord(channel, record, type);
    return ReadRecord(stream, record, type);
}
