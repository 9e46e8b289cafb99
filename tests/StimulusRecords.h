// Every stimulus type by the places of its record's values, and the functions that take one.
#pragma once

#include <cstdint>
#include <iterator>

#include "Corvantis.h"
#include "ITCFileIO/StimulusTypes.h"

namespace corvantis_test {

constexpr int32_t kLatency = 77;

// The library's functions take a record of their own type each.
struct AnyRecord {
    template <class Record>
    operator Record*() const {
        return static_cast<Record*>(words);
    }
    void* words;
};
template <auto call>
int32_t Give(int32_t channel, void* words) {
    const AnyRecord record{words};
    if constexpr (requires { call(record); })
        return call(record);
    else if constexpr (requires { call(channel, record); })
        return call(channel, record);
    else
        return call(channel, record, kLatency);
}

struct Stimulus {
    int8_t type;
    uint32_t size;  // as the file counts it
    // The 32-bit fields, from 1 to C, of amplitude, mean, points, tail and pre-points. 0: the value
    // is 0; -: there is none.
    const char* fields;
    // Those of points, tail and pre-points if a builder compares them with the epoch.
    const char* lengths;
    int32_t (*build)(int32_t channel, void* words);
    int32_t (*add)(int32_t channel, void* words);  // null: it can be no component
};

inline constexpr Stimulus kStimuli[] = {
    {1, 40, "12567", "567", Give<ITCSineParams>, Give<ITCAddSineParams>},
    {2, 36, "12456", "456", Give<ITCNoiseParams>, Give<ITCAddNoiseParams>},
    {3, 32, "12345", "345", Give<ITCPulseParams>, Give<ITCAddPulseParams>},
    {4, 32, "12345", "345", Give<ITCRampParams>, Give<ITCAddRampParams>},
    {5, 8, "-----", "", Give<ITCFilewaveParams>, Give<ITCAddFilewaveParams>},
    {6, 32, "12345", "345", Give<ITCGenericParams>, nullptr},
    {7, 1284, "-----", "", Give<ITCSummedParams>, nullptr},
    {8, 36, "-----", "456", Give<ITCTrigSeriesParams>, nullptr},
    {9, 40, "12456", "456", Give<ITCSegmentedNoiseParams>, Give<ITCAddSegmentedNoiseParams>},
    {10, 40, "12456", "456", Give<ITCBinaryNoiseParams>, Give<ITCAddBinaryNoiseParams>},
    {11, 8, "00000", "", Give<ITCGClampParams>, Give<ITCAddGClampParams>},
    {12, 48, "--ABC", "", Give<ITCCirclePulseParams>, Give<ITCAddCirclePulseParams>},
    {13, 36, "23456", "456", Give<ITCAltVoltageParams>, Give<ITCAddAltVoltParams>},
    {14, 16, "-----", "", Give<ITCSpatialParams>, nullptr}};
static_assert(std::size(kStimuli) == corvantis::kLargestType);

struct Lengths {
    int32_t points, tailPoints, prePoints;
};

// Room for the largest record; its fields are 44, 45, 46 and so on, but for tested lengths.
struct alignas(void*) Record {
    explicit Record(const Stimulus& stimulus, const Lengths& lengths = {800, 100, 100}) {
        const int32_t given[] = {lengths.points, lengths.tailPoints, lengths.prePoints};
        for (int32_t i = 0; i < 580; ++i) words[i] = 44 + i;
        for (int i = 0; stimulus.lengths[i] != '\0'; ++i)
            words[stimulus.lengths[i] - '1'] = given[i];
    }
    int32_t words[580];
};

}  // namespace corvantis_test
