// Where Windows locks a file that is being recorded, for those who lock and those who look: a byte
// far behind all data, since what is locked there cannot be read by others.
#pragma once

#if defined(_WIN32)

#include "ITCUtilities/WidePath.h"

namespace corvantis {

inline OVERLAPPED LockPlace() {
    OVERLAPPED place = {};
    place.OffsetHigh = 0x40000000;  // the upper half
    return place;
}

}  // namespace corvantis

#endif
