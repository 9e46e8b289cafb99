// Parameters that the sections share, and the samples of one record.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Corvantis.h"
#include "Report.h"

namespace exactness {

inline constexpr int32_t kPeriods[] = {1,   2,    3,    4,    5,     7,  10, 97,
                                       100, 1000, 1001, 7919, 99991, -7, 0};
inline constexpr int32_t kIntervals[] = {4, 10, 33, 50, 100, 65535};
inline constexpr int32_t kSinePoints = 1000;

struct Levels {
    int32_t amplitude;
    int32_t mean;
};
inline constexpr Levels kLevels[] = {{1000, 0},       {32767, 0},        {-999, 12345},
                                     {40000, -40000}, {2000000000, 100}, {1, 1}};

// Lets the dispatcher, which the output update uses too, add a record's samples.
inline void Append(Samples& samples, uint32_t type, const void* record, int32_t points) {
    const size_t begin = samples.size();
    samples.resize(begin + static_cast<size_t>(points));
    Require(ITCCalcStimulus(type, samples.data() + begin, record) == ITC_SUCCESS,
            "computing a stimulus");
}

template <class Record>
void Append(Samples& samples, uint32_t type, const Record& record) {
    Append(samples, type, &record, record.prePoints + record.points + record.tailPoints);
}

}  // namespace exactness
