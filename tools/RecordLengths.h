// The lengths that a stimulus record gives, against the epoch's.
#pragma once

#include <cstdint>

#include "Container.h"

namespace corvantis {

// The record, of which the type must be that of the stimulus.
template <class Record>
const Record& As(const Stimulus& stimulus) {
    return *reinterpret_cast<const Record*>(stimulus.record.data());
}

// Whether a record defines all of an epoch's points and no more; so do types without lengths.
bool FillsEpoch(const Stimulus& stimulus, int32_t points);
// Whether it stays within them. The library refuses others, which could ask for any number of
// draws.
bool StaysWithin(const Stimulus& stimulus, int32_t points);

}  // namespace corvantis
