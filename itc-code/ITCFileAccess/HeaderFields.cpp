// The accessors of the current headers' fields.
#include <cstring>

#include "Corvantis.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"

namespace corvantis {
namespace {

// A text that fits is stored whole; a longer one is cut rather than written over what follows.
char* StoreComment(char (&comment)[ITC_COMMENT_LENGTH], const char* text) {
    const size_t length = strnlen(text, ITC_COMMENT_LENGTH - 1);
    std::memmove(comment, text, length);
    comment[length] = '\0';
    return comment;
}

// Padded with zeros; a name of 16 characters has no terminator, as in every recorded file.
char* StoreUnits(char (&units)[ITC_UNITS_LENGTH], const char* text) {
    const size_t length = strnlen(text, ITC_UNITS_LENGTH);
    std::memmove(units, text, length);
    std::memset(units + length, 0, ITC_UNITS_LENGTH - length);
    return units;
}

// These four writers alone test their index, and only from above: callers rely on both.
template <class T, size_t Count>
void StoreUpTo(T (&values)[Count], int32_t index, T value) {
    if (index < static_cast<int32_t>(Count)) values[index] = value;
}

}  // namespace
}  // namespace corvantis

using corvantis::CurrentEpochHeader;
using corvantis::CurrentFileHeader;

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
    return corvantis::StoreUnits(CurrentEpochHeader().inputUnits[channel], text);
}
char* ITCWriteOutputUnits(const char* text, int32_t channel) {
    return corvantis::StoreUnits(CurrentEpochHeader().outputUnits[channel], text);
}
char* ITCGetInputUnits(int32_t channel) { return CurrentEpochHeader().inputUnits[channel]; }
char* ITCGetOutputUnits(int32_t channel) { return CurrentEpochHeader().outputUnits[channel]; }

int32_t ITCGetSegments() { return CurrentEpochHeader().sequenceLength; }
int32_t ITCGetDataPts() { return CurrentEpochHeader().epochPoints; }
int32_t ITCGetSampInterval() { return CurrentEpochHeader().samplingInterval; }

void ITCWriteAmpGain(float gain, float value, int8_t code, int32_t channel) {
    ITCEpochHeader& header = CurrentEpochHeader();
    header.ampGain[channel] = gain;
    header.ampValue[channel] = value;
    header.ampCode[channel] = code;
}
void ITCGetAmpSettings(float* gain, float* value, int8_t* code, int32_t channel) {
    const ITCEpochHeader& header = CurrentEpochHeader();
    *gain = header.ampGain[channel];
    *value = header.ampValue[channel];
    *code = header.ampCode[channel];
}
void ITCWriteConvFactor(float factor, int32_t channel) {
    CurrentEpochHeader().convFactor[channel] = factor;
}
double ITCGetConvFactor(int32_t channel) { return CurrentEpochHeader().convFactor[channel]; }
void ITCWriteAmpMode(int8_t mode, int32_t channel) { CurrentEpochHeader().ampMode[channel] = mode; }

void ITCWriteMeanOutput(int32_t value, int32_t channel) {
    corvantis::StoreUpTo(CurrentEpochHeader().meanOutput, channel, value);
}
void ITCWriteNDF(float value, int32_t channel) {
    corvantis::StoreUpTo(CurrentEpochHeader().ndf, channel, value);
}
void ITCWriteLEDSetting(uint16_t value, int32_t channel) {
    corvantis::StoreUpTo(CurrentEpochHeader().ledSetting, channel, value);
}
void ITCWriteUserValue(float value, int32_t index) {
    corvantis::StoreUpTo(CurrentEpochHeader().userValue, index, value);
}

void ITCWriteTemperature(float value) { CurrentEpochHeader().temperature = value; }
void ITCWriteDigitalOutput(uint16_t value) { CurrentEpochHeader().digitalOutput = value; }
void ITCWriteWavelength(uint16_t value) { CurrentEpochHeader().wavelength = value; }
int32_t ITCGetStimType(int32_t channel) { return CurrentEpochHeader().stimType[channel]; }

void* ITCGetStimParams(int32_t channel, void* destination, uint32_t byteCount) {
    const uint32_t slot = static_cast<uint32_t>(channel);
    const size_t known =
        corvantis::IsChannel(slot) ? corvantis::SlotRecordSize(slot, byteCount) : 0;
    if (known > 0) std::memcpy(destination, StmParameters[slot], known);
    return destination;
}
