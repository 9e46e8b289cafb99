// The queries that read one value out of a stimulus record.
#include <cstring>

#include "Corvantis.h"
#include "ITCFileIO/StimulusTypes.h"
#include "ITCInitialize/State.h"
#include "ITCStimulus/Slots.h"

namespace corvantis {
namespace {

int32_t RetrieveField(int32_t* value, int8_t type, const void* record,
                      int32_t FieldPlaces::*field) {
    if (!IsStarted()) return ITC_NOT_STARTED;
    const FieldPlaces places = TypeRow(static_cast<uint32_t>(int32_t{type})).places;
    const int32_t place = places.*field;
    if (place == kNoSuchField) return ITC_STIMULUS_ERROR;
    if (place == kAlwaysZero) {
        *value = 0;
        return ITC_SUCCESS;
    }
    if (record == nullptr) return ITC_STIMULUS_ERROR;
    std::memcpy(value, static_cast<const uint8_t*>(record) + place, sizeof *value);
    return ITC_SUCCESS;
}

}  // namespace
}  // namespace corvantis

using corvantis::FieldPlaces;
using corvantis::RetrieveField;

int32_t ITCRetrieveStmAmp(int32_t* value, int8_t type, const void* record) {
    return RetrieveField(value, type, record, &FieldPlaces::amplitude);
}
int32_t ITCRetrieveStmMean(int32_t* value, int8_t type, const void* record) {
    return RetrieveField(value, type, record, &FieldPlaces::mean);
}
int32_t ITCRetrieveStmPts(int32_t* value, int8_t type, const void* record) {
    return RetrieveField(value, type, record, &FieldPlaces::points);
}
int32_t ITCRetrieveStmPrePts(int32_t* value, int8_t type, const void* record) {
    return RetrieveField(value, type, record, &FieldPlaces::prePoints);
}
int32_t ITCRetrieveStmTailPts(int32_t* value, int8_t type, const void* record) {
    return RetrieveField(value, type, record, &FieldPlaces::tailPoints);
}

int32_t ITCRetrieveRandomSeed(int32_t* result, uint32_t channel) {
    using namespace corvantis;
    if (!IsStarted()) return ITC_NOT_STARTED;
    if (!IsChannel(channel) || SlotType(channel) != ITC_STIMULUS_NOISE) return ITC_STIMULUS_ERROR;
    const void* record = SlotRecord(channel);
    if (record == nullptr) return ITC_STIMULUS_ERROR;
    *result = static_cast<const ITCNoiseParameters*>(record)->seed;
    return ITC_SUCCESS;
}
