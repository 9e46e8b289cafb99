// Working the latency out of the other fields, as the programs of that age did.
#include "ITCFileIO/Latency.h"

#include "ITCFileIO/RecordCodec.h"
#include "ITCFileIO/StimulusTypes.h"

namespace corvantis {
namespace {

constexpr int32_t kNewestVersionWithoutLatency = 6;

// The first dynamic-clamp entry of the sequence, or its length. For a length above 4 the scan goes
// on, deliberately, through the text behind the type bytes, as files of that age were read; it
// works on the file's bytes, so every host finds the same, and ends at the latency's own place.
uint32_t FirstDynamicClampEntry(const ITCEpochHeader& header) {
    const int32_t length = header.sequenceLength;
    if (length <= 0) return 0;
    const EncodedRecord<ITCEpochHeader> bytes = Encode(header);
    const size_t first = offsetof(ITCEpochHeader, stimType);
    const size_t end = offsetof(ITCEpochHeader, pointsLatency);
    for (size_t k = 0; k < static_cast<size_t>(length) && first + k < end; ++k) {
        if (bytes[first + k] == ITC_STIMULUS_DYNAMIC_CLAMP) return static_cast<uint32_t>(k);
    }
    return static_cast<uint32_t>(length);
}

uint16_t LatencyOf(const ITCEpochHeader& header) {
    const uint32_t entries = static_cast<uint32_t>(header.sequenceLength);
    return static_cast<uint16_t>(FirstDynamicClampEntry(header) + 2 * entries + kPipelineLength);
}

}  // namespace

void RestoreLatency(ITCEpochHeader& header, int32_t version) {
    if (version <= kNewestVersionWithoutLatency) header.pointsLatency = LatencyOf(header);
}

}  // namespace corvantis
