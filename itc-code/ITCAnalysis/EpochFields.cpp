// The getters of epoch-header fields by epoch number, all made from one mechanism.
#include <type_traits>

#include "Corvantis.h"
#include "ITCInitialize/State.h"

namespace corvantis {
namespace {

// Read the epoch and deliver one of its header's fields. A failure of the read is returned as it
// is.
template <class Field, class Result>
int32_t DeliverField(int32_t epoch, Field ITCEpochHeader::*field, Result* result) {
    const int32_t read = ITCEpochParameters(epoch);
    if (read == ITC_SUCCESS) *result = static_cast<Result>(CurrentEpochHeader().*field);
    return read;
}

template <class Field, size_t Count, class Result>
int32_t DeliverElement(int32_t epoch, Field (ITCEpochHeader::*field)[Count], int32_t index,
                       Result* result) {
    if (static_cast<uint32_t>(index) >= Count)
        return IsStarted() ? ITC_BAD_ARGUMENT : ITC_NOT_STARTED;
    const int32_t read = ITCEpochParameters(epoch);
    if (read == ITC_SUCCESS) *result = static_cast<Result>((CurrentEpochHeader().*field)[index]);
    return read;
}

}  // namespace
}  // namespace corvantis

using corvantis::DeliverElement;
using corvantis::DeliverField;

int32_t ITCGetEpochSegments(int32_t epoch, int32_t* result) {
    return DeliverField(epoch, &ITCEpochHeader::sequenceLength, result);
}
int32_t ITCGetEpochSize(int32_t epoch, int32_t* result) {
    return DeliverField(epoch, &ITCEpochHeader::epochPoints, result);
}
int32_t ITCGetSamplingInterval(int32_t epoch, int32_t* result) {
    return DeliverField(epoch, &ITCEpochHeader::samplingInterval, result);
}
int32_t ITCGetAmpGain(int32_t epoch, int32_t channel, float* result) {
    return DeliverElement(epoch, &ITCEpochHeader::ampGain, channel, result);
}
int32_t ITCGetAmpMode(int32_t epoch, int32_t channel, float* result) {
    return DeliverElement(epoch, &ITCEpochHeader::ampMode, channel, result);
}
int32_t ITCGetMeanOutput(int32_t epoch, int32_t channel, int32_t* result) {
    return DeliverElement(epoch, &ITCEpochHeader::meanOutput, channel, result);
}
int32_t ITCGetUserValue(int32_t epoch, int32_t index, float* result) {
    return DeliverElement(epoch, &ITCEpochHeader::userValue, index, result);
}
int32_t ITCGetLEDSetting(int32_t epoch, int32_t channel, uint16_t* result) {
    return DeliverElement(epoch, &ITCEpochHeader::ledSetting, channel, result);
}
int32_t ITCGetNDF(int32_t epoch, int32_t channel, float* result) {
    return DeliverElement(epoch, &ITCEpochHeader::ndf, channel, result);
}
int32_t ITCGetWavelength(int32_t epoch, uint16_t* result) {
    return DeliverField(epoch, &ITCEpochHeader::wavelength, result);
}
int32_t ITCGetDigitalOutput(int32_t epoch, uint16_t* result) {
    return DeliverField(epoch, &ITCEpochHeader::digitalOutput, result);
}
int32_t ITCGetTemperature(int32_t epoch, float* result) {
    return DeliverField(epoch, &ITCEpochHeader::temperature, result);
}

int32_t ITCGetNumberEpochs(int32_t* result) {
    *result = corvantis::CurrentFileHeader().numEpochs;
    return ITC_SUCCESS;
}
int32_t ITCGetStmDataFormat(int32_t* result) {
    *result = corvantis::CurrentFileHeader().stmDataFormat;
    return ITC_SUCCESS;
}
