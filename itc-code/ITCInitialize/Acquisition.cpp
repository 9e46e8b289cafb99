// Setting the length and sampling interval of the coming epoch, and arming the device.
#include <optional>

#include "Corvantis.h"
#include "ITC18.h"
#include "ITCInitialize/State.h"
#include "ITCUtilities/Diagnostics.h"
#include "ITCUtilities/WrappingArithmetic.h"

namespace corvantis {
namespace {

constexpr uint32_t kShortestInterval = 4;
constexpr uint32_t kLongestInterval = 65535;
constexpr int kIntervalRefusedLine = 436;

// The interval of one sequence entry; nothing for an empty sequence, which has none.
std::optional<int32_t> EntryInterval(int32_t samplingInterval) {
    const int32_t entries = CurrentEpochHeader().sequenceLength;
    if (entries == 0) return std::nullopt;
    return WrapToInt32(static_cast<uint64_t>(int64_t{samplingInterval} / entries));
}

bool IsDeviceInterval(int32_t interval) {
    const uint32_t aboveShortest = static_cast<uint32_t>(interval) - kShortestInterval;
    return aboveShortest <= kLongestInterval - kShortestInterval;
}

}  // namespace
}  // namespace corvantis

// The capacity is compared with the points of one entry, deliberately: an epoch of several entries
// that exceeds the buffers passes here and is refused by whoever fills or saves them.
int32_t ITCSetAcqParams(int32_t samplingInterval, int32_t epochPoints, int8_t acqSettingA,
                        int8_t acqSettingB) {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    if (BufferCapacity() < epochPoints) return ITC_BAD_ARGUMENT;
    const std::optional<int32_t> interval = EntryInterval(samplingInterval);
    if (!interval || !IsDeviceInterval(*interval)) return ITC_BAD_ARGUMENT;
    ITCEpochHeader& header = CurrentEpochHeader();
    header.samplingInterval = samplingInterval;
    header.acqSettingA = acqSettingA;
    header.acqSettingB = acqSettingB;
    header.epochPoints = epochPoints;
    return ITC_SUCCESS;
}

int32_t ITCInitAcq() {
    using namespace corvantis;
    if (!IsStarted() || itc == nullptr) return ITC_NOT_STARTED;
    if (ITC18_InitializeAcquisition(itc) != 0) return ITC_NOT_STARTED;
    const std::optional<int32_t> interval = EntryInterval(CurrentEpochHeader().samplingInterval);
    if (interval && ITC18_SetSamplingInterval(itc, *interval, 0) == 0) return ITC_SUCCESS;
    PrintFailPoint(kInitializeModule, kIntervalRefusedLine);
    return ITC_TOO_LARGE;
}
