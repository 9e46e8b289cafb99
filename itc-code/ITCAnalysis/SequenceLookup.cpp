// Which input and output a recorded sequence entry used, and which entry used an input or output.
#include <algorithm>

#include "Corvantis.h"
#include "ITCFileIO/SequenceWords.h"
#include "ITCInitialize/State.h"

namespace corvantis {
namespace {

// These masks miss the bits of this interface's channel codes, and stay so: entry 0 is found for
// channel 0, and nothing for the others. Applications of old have come to expect it.
constexpr uint32_t kOutputLookupMask = 0x58;
constexpr uint32_t kInputLookupMask = 0x27;

int32_t ReadSequenceWord(int32_t epoch, int32_t entry, uint32_t& word) {
    if (static_cast<uint32_t>(entry) >= ITC_CHANNELS) {
        return IsStarted() ? ITC_BAD_ARGUMENT : ITC_NOT_STARTED;
    }
    const int32_t read = ITCEpochParameters(epoch);
    if (read == ITC_SUCCESS) word = CurrentEpochHeader().channelSequence[entry];
    return read;
}

template <size_t Count>
int32_t FindEntry(int32_t epoch, int32_t channel, const uint32_t (&codes)[Count], uint32_t mask,
                  int32_t* result) {
    if (static_cast<uint32_t>(channel) >= Count) return ITC_BAD_ARGUMENT;
    const int32_t read = ITCEpochParameters(epoch);
    if (read != ITC_SUCCESS) return read;
    const ITCEpochHeader& header = CurrentEpochHeader();
    // A negative length counts as found at once, deliberately.
    int32_t entry = 0;
    const int32_t length = std::min<int32_t>(header.sequenceLength, ITC_CHANNELS);
    while (entry < length && (header.channelSequence[entry] & mask) != codes[channel]) ++entry;
    if (entry == length) return ITC_BAD_ARGUMENT;
    *result = entry;
    return ITC_SUCCESS;
}

}  // namespace
}  // namespace corvantis

int32_t ITCGetInputChan(int32_t epoch, int32_t entry, int32_t* result) {
    using namespace corvantis;
    uint32_t word = 0;
    const int32_t read = ReadSequenceWord(epoch, entry, word);
    if (read == ITC_SUCCESS) *result = InputOf(word);
    return read;
}

int32_t ITCGetOutputChan(int32_t epoch, int32_t entry, int32_t* result) {
    using namespace corvantis;
    uint32_t word = 0;
    const int32_t read = ReadSequenceWord(epoch, entry, word);
    if (read == ITC_SUCCESS) *result = OutputOf(word);
    return read;
}

int32_t ITCGetSegmentForOutputChan(int32_t epoch, int32_t channel, int32_t* result) {
    return corvantis::FindEntry(epoch, channel, itcOutputs18, corvantis::kOutputLookupMask, result);
}

int32_t ITCGetSegmentForInputChan(int32_t epoch, int32_t channel, int32_t* result) {
    return corvantis::FindEntry(epoch, channel, itcInputs18, corvantis::kInputLookupMask, result);
}
