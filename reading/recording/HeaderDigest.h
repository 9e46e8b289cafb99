// By what a header is known again, on whatever machine.
#pragma once

#include <cstdint>

#include "Corvantis.h"

namespace corvantis::reading {

// Of all fields. Two that differ hardly ever have the same; it is no protection against forgery.
uint64_t DigestOf(const ITCFileHeader& header);
uint64_t DigestOf(const ITCEpochHeader& header);

}  // namespace corvantis::reading
