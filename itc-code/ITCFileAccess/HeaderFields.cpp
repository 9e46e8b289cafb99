// The accessors of the current headers' fields.
#include <cstring>

#include "Corvantis.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"

namespace corvantis {
namespace {

// A text that fits is stored whole; a longer one is cut rather than written over what follows.
char* StoreComment(char (&comment)[ITC_COMMENT_LENGTH], const char* text) {
    if (text == nullptr) return comment;
    const size_t length = strnlen(text, ITC_COMMENT_LENGTH - 1);
    std::memmove(comment, text, length);
    comment[length] = '\0';
    return comment;
}

// An index outside its array belongs to a field of another channel at best: nothing is stored.
template <class T, size_t Count>
void Store(T (&values)[Count], int32_t index, T value) {
    if (static_cast<uint32_t>(index) < Count) values[index] = value;
}

template <class T, size_t Count>
T Element(const T (&values)[Count], int32_t index) {
    return static_cast<uint32_t>(index) < Count ? values[index] : T{};
}

using Units = char[ITC_UNITS_LENGTH];

// Those of no channel are empty, and so is what was stored into them.
Units& UnitsOf(Units (&units)[ITC_CHANNELS], int32_t channel) {
    static Units none;
    std::memset(none, 0, sizeof none);
    return static_cast<uint32_t>(channel) < ITC_CHANNELS ? units[channel] : none;
}

// Padded with zeros; a name of 16 characters has no terminator, as in every recorded file.
char* StoreUnits(Units (&all)[ITC_CHANNELS], int32_t channel, const char* text) {
    Units& units = UnitsOf(all, channel);
    if (text == nullptr || static_cast<uint32_t>(channel) >= ITC_CHANNELS) return units;
    const size_t length = strnlen(text, ITC_UNITS_LENGTH);
    std::memmove(units, text, length);
    std::memset(units + length, 0, ITC_UNITS_LENGTH - length);
    return units;
}

}  // namespace
}  // namespace corvantis

using corvantis::CurrentEpochHeader;
using corvantis::CurrentFileHeader;
using corvantis::Element;
using corvantis::Store;

int32_t ITCGetNumEpochs() { return CurrentFileHeader().numEpochs; }
char* ITCWriteFileCom(const char* text) {
    return corvantis::StoreComment(CurrentFileHeader().fileComment, text);
}
char* ITCGetFileCom() { return CurrentFileHeader().fileComment; }
void ITCWriteOffset(float value) { CurrentFileHeader().offset = value; }
double ITCGetOffset() { return CurrentFileHeader().offset; }

double ITCGetEpochTime() { return CurrentEpochHeader().epochTime; }
char* ITCWriteEpochCom(const char* text) {
    return corvantis::StoreComment(CurrentEpochHeader().epochComment, text);
}
char* ITCGetEpochCom() { return CurrentEpochHeader().epochComment; }
char* ITCWriteInputUnits(const char* text, int32_t channel) {
    return corvantis::StoreUnits(CurrentEpochHeader().inputUnits, channel, text);
}
char* ITCWriteOutputUnits(const char* text, int32_t channel) {
    return corvantis::StoreUnits(CurrentEpochHeader().outputUnits, channel, text);
}
char* ITCGetInputUnits(int32_t channel) {
    return corvantis::UnitsOf(CurrentEpochHeader().inputUnits, channel);
}
char* ITCGetOutputUnits(int32_t channel) {
    return corvantis::UnitsOf(CurrentEpochHeader().outputUnits, channel);
}

int32_t ITCGetSegments() { return CurrentEpochHeader().sequenceLength; }
int32_t ITCGetDataPts() { return CurrentEpochHeader().epochPoints; }
int32_t ITCGetSampInterval() { return CurrentEpochHeader().samplingInterval; }

void ITCWriteAmpGain(float gain, float value, int8_t code, int32_t channel) {
    ITCEpochHeader& header = CurrentEpochHeader();
    Store(header.ampGain, channel, gain);
    Store(header.ampValue, channel, value);
    Store(header.ampCode, channel, code);
}
void ITCGetAmpSettings(float* gain, float* value, int8_t* code, int32_t channel) {
    const ITCEpochHeader& header = CurrentEpochHeader();
    *gain = Element(header.ampGain, channel);
    *value = Element(header.ampValue, channel);
    *code = Element(header.ampCode, channel);
}
void ITCWriteConvFactor(float factor, int32_t channel) {
    Store(CurrentEpochHeader().convFactor, channel, factor);
}
double ITCGetConvFactor(int32_t channel) {
    return Element(CurrentEpochHeader().convFactor, channel);
}
void ITCWriteAmpMode(int8_t mode, int32_t channel) {
    Store(CurrentEpochHeader().ampMode, channel, mode);
}

void ITCWriteMeanOutput(int32_t value, int32_t channel) {
    Store(CurrentEpochHeader().meanOutput, channel, value);
}
void ITCWriteNDF(float value, int32_t channel) { Store(CurrentEpochHeader().ndf, channel, value); }
void ITCWriteLEDSetting(uint16_t value, int32_t channel) {
    Store(CurrentEpochHeader().ledSetting, channel, value);
}
void ITCWriteUserValue(float value, int32_t index) {
    Store(CurrentEpochHeader().userValue, index, value);
}

void ITCWriteTemperature(float value) { CurrentEpochHeader().temperature = value; }
void ITCWriteDigitalOutput(uint16_t value) { CurrentEpochHeader().digitalOutput = value; }
void ITCWriteWavelength(uint16_t value) { CurrentEpochHeader().wavelength = value; }
int32_t ITCGetStimType(int32_t channel) { return Element(CurrentEpochHeader().stimType, channel); }

void* ITCGetStimParams(int32_t channel, void* destination, uint32_t byteCount) {
    const uint32_t slot = static_cast<uint32_t>(channel);
    const size_t known =
        corvantis::IsChannel(slot) ? corvantis::SlotRecordSize(slot, byteCount) : 0;
    if (known > 0) std::memcpy(destination, StmParameters[slot], known);
    return destination;
}
