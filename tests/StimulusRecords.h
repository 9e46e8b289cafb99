// Every builder and component adder behind one signature, with a record to hand over.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "Corvantis.h"
#include "ITCFileIO/StimulusTypes.h"

namespace corvantis_test {

// Points of the epoch that the given lengths fill.
constexpr int32_t kEpochPoints = 1000;
constexpr int32_t kLatency = 77;

struct Runs {
    int32_t prePoints = 100, points = 800, tailPoints = 100;
};

// A record without a zero byte, but for its lengths and a sum's count.
template <class Record>
Record Patterned(const Runs& runs) {
    Record record;
    std::memset(&record, 0x35, sizeof(record));
    if constexpr (requires { record.prePoints; }) {
        record.prePoints = runs.prePoints;
        record.points = runs.points;
        record.tailPoints = runs.tailPoints;
    }
    if constexpr (requires { record.count; }) record.count = 3;
    return record;
}

// Hands a record over and spoils it afterwards, so that only a copy can be right.
template <class Record, auto call>
int32_t Give(int32_t channel, const Runs& runs) {
    Record record = Patterned<Record>(runs);
    int32_t result = -1;
    if constexpr (std::is_invocable_v<decltype(call), Record*>)
        result = call(&record);
    else if constexpr (std::is_invocable_v<decltype(call), int32_t, Record*, int32_t>)
        result = call(channel, &record, kLatency);
    else
        result = call(static_cast<uint32_t>(channel), &record);
    std::memset(&record, 0xEE, sizeof(record));
    return result;
}
template <class Record, auto call>
int32_t GiveNull(int32_t channel) {
    Record* const none = nullptr;
    if constexpr (std::is_invocable_v<decltype(call), Record*>) return call(none);
    if constexpr (std::is_invocable_v<decltype(call), int32_t, Record*, int32_t>)
        return call(channel, none, kLatency);
    else if constexpr (!std::is_invocable_v<decltype(call), Record*>)
        return call(static_cast<uint32_t>(channel), none);
}
// The fields, as far as no host pads them: a sum's pointers are looked at apart.
template <class Record>
bool IsCopy(const void* kept) {
    const auto record = Patterned<Record>({});
    size_t size = sizeof(Record);
    if constexpr (std::is_same_v<Record, ITCFilewaveParameters>)
        size = offsetof(Record, length) + sizeof(record.length);
    if constexpr (std::is_same_v<Record, ITCSummedParameters>)
        size = offsetof(Record, componentType) + sizeof(record.componentType);
    return kept != nullptr && std::memcmp(kept, &record, size) == 0;
}

struct Entry {
    int8_t type;
    uint32_t size;  // as the file counts it
    bool lengthsTested;
    int32_t (*give)(int32_t channel, const Runs& runs);
    int32_t (*giveNull)(int32_t channel);
    bool (*isCopy)(const void* kept);
};
template <class Record, auto call>
constexpr Entry MakeEntry(int8_t type, uint32_t size, bool lengthsTested = false) {
    return {type, size, lengthsTested, Give<Record, call>, GiveNull<Record, call>, IsCopy<Record>};
}

inline constexpr Entry kBuilders[] = {
    MakeEntry<ITCSineParameters, ITCSineParams>(1, 40, true),
    MakeEntry<ITCNoiseParameters, ITCNoiseParams>(2, 36, true),
    MakeEntry<ITCPulseParameters, ITCPulseParams>(3, 32, true),
    MakeEntry<ITCRampParameters, ITCRampParams>(4, 32, true),
    MakeEntry<ITCFilewaveParameters, ITCFilewaveParams>(5, 8),
    MakeEntry<ITCGenericParameters, ITCGenericParams>(6, 32, true),
    MakeEntry<ITCSummedParameters, ITCSummedParams>(7, 1284),
    MakeEntry<ITCTrigSeriesParameters, ITCTrigSeriesParams>(8, 36, true),
    MakeEntry<ITCSegmentedNoiseParameters, ITCSegmentedNoiseParams>(9, 40, true),
    MakeEntry<ITCBinaryNoiseParameters, ITCBinaryNoiseParams>(10, 40, true),
    MakeEntry<ITCGClampParameters, ITCGClampParams>(11, 8),
    MakeEntry<ITCCirclePulseParameters, ITCCirclePulseParams>(12, 48),
    MakeEntry<ITCAlternateVoltageParameters, ITCAltVoltageParams>(13, 36, true),
    MakeEntry<ITCSpatialStmParameters, ITCSpatialParams>(14, 16)};
static_assert(std::size(kBuilders) == corvantis::kLargestType);

inline constexpr Entry kAdders[] = {
    MakeEntry<ITCSineParameters, ITCAddSineParams>(1, 40),
    MakeEntry<ITCNoiseParameters, ITCAddNoiseParams>(2, 36),
    MakeEntry<ITCPulseParameters, ITCAddPulseParams>(3, 32),
    MakeEntry<ITCRampParameters, ITCAddRampParams>(4, 32),
    MakeEntry<ITCFilewaveParameters, ITCAddFilewaveParams>(5, 8),
    MakeEntry<ITCSegmentedNoiseParameters, ITCAddSegmentedNoiseParams>(9, 40),
    MakeEntry<ITCBinaryNoiseParameters, ITCAddBinaryNoiseParams>(10, 40),
    MakeEntry<ITCGClampParameters, ITCAddGClampParams>(11, 8),
    MakeEntry<ITCCirclePulseParameters, ITCAddCirclePulseParams>(12, 48),
    MakeEntry<ITCAlternateVoltageParameters, ITCAddAltVoltParams>(13, 36)};

}  // namespace corvantis_test
