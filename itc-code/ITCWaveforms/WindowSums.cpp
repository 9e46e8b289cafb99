// Sums over a moving window: vectors hold the sums of neighbouring points, each of which grows in
// its own order.
#include "ITCWaveforms/WindowSums.h"

#include "ITCUtilities/FunctionClones.h"

namespace corvantis {
namespace {

CORVANTIS_CLONES void SumSideBySide(float* __restrict sums, const float* __restrict values,
                                    int64_t window) {
    float sum[kWindowBatch] = {};
    for (int64_t k = 0; k < window; ++k) {
        for (int64_t i = 0; i < kWindowBatch; ++i) sum[i] += values[k + i];
    }
    for (int64_t i = 0; i < kWindowBatch; ++i) sums[i] = sum[i];
}

}  // namespace

void SumWindows(float* sums, const float* values, int64_t window) {
    SumSideBySide(sums, values, window);
}

}  // namespace corvantis
