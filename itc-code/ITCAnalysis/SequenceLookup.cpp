// Which input and output a recorded sequence entry used, and which entry used an input or output.
#include <algorithm>
#include <iterator>

#include "Corvantis.h"
#include "ITCInitialize/State.h"

namespace corvantis {
namespace {

constexpr uint32_t kInputBits = 0x780;
constexpr uint32_t kOutputBits = 0x3800;
constexpr uint32_t kDigitalInput = 0x400;
constexpr uint32_t kDigitalOutput = 0x2000;
// These masks miss the bits of this interface's channel codes, and stay so: entry 0 is found for
// channel 0, and nothing for the others. Applications of old have come to expect it.
constexpr uint32_t kOutputLookupMask = 0x58;
constexpr uint32_t kInputLookupMask = 0x27;

template <size_t Count>
int32_t IndexOf(uint32_t code, const uint32_t (&codes)[Count]) {
    return static_cast<int32_t>(std::find(codes, codes + Count, code) - codes);
}

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
    if (read != ITC_SUCCESS) return read;
    const int32_t channel = IndexOf(word & kInputBits, itcInputs18);
    // A word that names no input at all succeeds and delivers nothing.
    const bool named = channel < static_cast<int32_t>(std::size(itcInputs18));
    if (named || (word & kDigitalInput) != 0) *result = channel;
    return ITC_SUCCESS;
}

int32_t ITCGetOutputChan(int32_t epoch, int32_t entry, int32_t* result) {
    using namespace corvantis;
    uint32_t word = 0;
    const int32_t read = ReadSequenceWord(epoch, entry, word);
    if (read != ITC_SUCCESS) return read;
    const int32_t channel = IndexOf(word & kOutputBits, itcOutputs18);
    const bool named = channel < static_cast<int32_t>(std::size(itcOutputs18));
    if (!named && (word & kDigitalOutput) == 0) return ITC_BAD_ARGUMENT;
    *result = channel;
    return ITC_SUCCESS;
}

int32_t ITCGetSegmentForOutputChan(int32_t epoch, int32_t channel, int32_t* result) {
    return corvantis::FindEntry(epoch, channel, itcOutputs18, corvantis::kOutputLookupMask, result);
}

int32_t ITCGetSegmentForInputChan(int32_t epoch, int32_t channel, int32_t* result) {
    return corvantis::FindEntry(epoch, channel, itcInputs18, corvantis::kInputLookupMask, result);
}
