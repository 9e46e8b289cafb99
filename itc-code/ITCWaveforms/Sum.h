// Adding up the components of a compound stimulus.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "Corvantis.h"
#include "ITCWaveforms/SampleRuns.h"

namespace corvantis {

// calculate(k, scratch) computes component k and gives a result code, of which the first failure
// ends the sum. The scratch buffer is deliberately not cleared in between: what a shorter wave
// leaves of the component before it is added once more, as in recorded sums. Samples wrap at 65536.
template <class Calculate>
int32_t SumComponents(std::span<uint16_t> output, uint16_t* scratch, int32_t count,
                      Calculate calculate) {
    std::fill(output.begin(), output.end(), uint16_t{0});
    for (int32_t k = 0; k < count; ++k) {
        const int32_t result = calculate(k, scratch);
        if (result != ITC_SUCCESS) return result;
        AddSamples(output, scratch);
    }
    return ITC_SUCCESS;
}

}  // namespace corvantis
