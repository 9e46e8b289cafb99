// The device's channel sequence: the channel codes and the words built from them.
#include <cstring>

#include "Corvantis.h"
#include "ITC18.h"
#include "ITCFileIO/SequenceWords.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/State.h"

const uint32_t itcInputs18[8] = {0x000, 0x080, 0x100, 0x180, 0x200, 0x280, 0x300, 0x380};
const uint32_t itcOutputs18[4] = {0x0000, 0x0800, 0x1000, 0x1800};
const uint32_t itcInputs16[8] = {7, 6, 5, 4, 3, 2, 1, 0};
const uint32_t itcOutputs16[4] = {0x18, 0x10, 0x08, 0x00};
const uint32_t pipelineLength = corvantis::kPipelineLength;

namespace corvantis {
namespace {

constexpr uint32_t kEndOfSequence = 0xC000;

// The select bits that a character stands for, or false for a character that stands for nothing.
template <size_t Count>
bool SelectBits(char character, const uint32_t (&codes)[Count], uint32_t digital, uint32_t& bits) {
    const uint32_t number = static_cast<uint32_t>(character) - static_cast<uint32_t>('0');
    if (character != 'D' && number >= Count) return false;
    bits = character == 'D' ? digital : codes[number];
    return true;
}

int32_t BuildSequenceWords(const char* inputs, const char* outputs, ITCEpochHeader& header) {
    const int32_t length = header.sequenceLength;
    for (int32_t k = 0; k < length; ++k) {
        uint32_t bits = 0;
        if (!SelectBits(inputs[k], itcInputs18, kDigitalInput, bits)) return ITC_BAD_ARGUMENT;
        header.channelSequence[k] = bits;
    }
    for (int32_t k = 0; k < length; ++k) {
        uint32_t bits = 0;
        if (!SelectBits(outputs[k], itcOutputs18, kDigitalOutput, bits)) return ITC_BAD_ARGUMENT;
        header.channelSequence[k] |= bits;
    }
    return ITC_SUCCESS;
}

// The mark goes on the last word. Without any it falls on the field before the words, the length
// itself: empty texts make a length of 49152, which the driver is left to refuse.
void MarkEndOfSequence(ITCEpochHeader& header) {
    const int32_t length = header.sequenceLength;
    if (length == 0) {
        header.sequenceLength = kEndOfSequence;
    } else {
        header.channelSequence[length - 1] |= kEndOfSequence;
    }
}

}  // namespace
}  // namespace corvantis

int32_t ITCSetSeq(const char* inputs, const char* outputs) {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    if (inputs == nullptr || outputs == nullptr) return ITC_BAD_ARGUMENT;
    const size_t length = std::strlen(inputs);
    if (length != std::strlen(outputs) || length > ITC_CHANNELS) return ITC_BAD_ARGUMENT;
    ITCEpochHeader& header = CurrentEpochHeader();
    header.sequenceLength = static_cast<int32_t>(length);
    const int32_t result = BuildSequenceWords(inputs, outputs, header);
    if (result != ITC_SUCCESS) return result;
    MarkEndOfSequence(header);
    if (itc == nullptr) return ITC_NOT_STARTED;
    const int32_t driver = ITC18_SetSequence(itc, header.sequenceLength, header.channelSequence);
    return driver == 0 ? ITC_SUCCESS : ITC_NOT_STARTED;
}
