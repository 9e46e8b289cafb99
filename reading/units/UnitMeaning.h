// What the name of a unit stands for, among those that electrophysiology rests on.
#pragma once

#include <cstdint>
#include <string_view>

#include "CorvantisReading.h"

namespace corvantis::reading {

struct UnitMeaning {
    int32_t quantity = CORVANTIS_OTHER;
    double si = 1.0;  // volts, amperes or siemens in one of it
};

// Of a name in UTF-8 such as "mV": a prefix from femto to mega and a symbol, exactly as the SI
// writes them. A name that is written in another way is taken for no unit that is known here.
UnitMeaning MeaningOf(std::string_view unit);

}  // namespace corvantis::reading
