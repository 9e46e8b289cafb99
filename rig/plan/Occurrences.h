// The plays of a protocol in their order: families gone through, repeats, leak subtraction.
#pragma once

#include <cstdint>
#include <vector>

#include "protocol/Amounts.h"
#include "protocol/Protocol.h"

namespace corvantis::rig {

struct Occurrence {
    size_t epoch = 0;  // in the protocol
    Names names;
    // Of a play for leak subtraction: which of how many, and what its stimulus is divided by.
    int32_t leakPlay = 0, leakPlays = 0;
    int32_t divisor = 1;
};

// Throws a Failure, also for more than anybody records.
std::vector<Occurrence> OccurrencesOf(const Protocol& protocol);

}  // namespace corvantis::rig
