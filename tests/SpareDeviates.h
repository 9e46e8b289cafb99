// Brings the library's generators, whose spare deviates outlive every test, to a known state.
#pragma once

#include <cstdint>
#include <cstdlib>

#include "Corvantis.h"

namespace corvantis_test {

// A held deviate leaves the state word as it is, a new pair restarts from it.
inline void DropSpareDeviate() {
    int32_t word = -1;
    ITCNormalDeviate(&word);
    if (word != -1) ITCNormalDeviate(&word);
}

inline void DropSpareDeviateOnRand() {
    std::srand(1);
    const int first = std::rand();
    std::srand(1);
    V4ITCNormalDeviate();
    if (std::rand() != first) V4ITCNormalDeviate();
}

}  // namespace corvantis_test
