// The recurrences of the twiddle factors, run once for each stage.
#include "ITCUtilities/Fourier/KeptTwiddles.h"

#include <bit>

#include "ITCUtilities/Fourier/Twiddle.h"
#include "ITCUtilities/Mutex.h"

namespace corvantis {
namespace {

constexpr size_t kMostStages = 32;

struct KeptStage {
    bool isCalculated = false;
    StageStarts starts;
};

}  // namespace

BlockTwiddles::BlockTwiddles(int32_t isign) : rows() {
    for (size_t half = 1; half < kTransformBlock; half *= 2) {
        Twiddle w(isign, half);
        for (size_t k = half; k < 2 * half; ++k, w.Advance()) {
            rows[k / kLanes].real[k % kLanes] = w.real;
            rows[k / kLanes].imaginary[k % kLanes] = w.imaginary;
        }
    }
}

StageStarts::StageStarts(int32_t isign, size_t half) {
    Twiddle w(isign, half);
    stepReal = w.stepReal;
    stepImaginary = w.stepImaginary;
    for (size_t start = 0; start < kCount; ++start) {
        real[start] = w.real;
        imaginary[start] = w.imaginary;
        for (size_t k = 0; k < half / kCount; ++k) w.Advance();
    }
}

const BlockTwiddles& KeptBlockTwiddles(bool forward) {
    static const BlockTwiddles kept[2] = {BlockTwiddles(-1), BlockTwiddles(1)};
    return kept[forward ? 1 : 0];
}

const StageStarts& KeptStageStarts(bool forward, size_t half) {
    static Mutex mutex;
    static KeptStage kept[2][kMostStages];
    const Lock guard(mutex);
    const size_t number = static_cast<size_t>(std::countr_zero(half)) % kMostStages;
    KeptStage& stage = kept[forward ? 1 : 0][number];
    if (!stage.isCalculated) stage = {true, StageStarts(forward ? 1 : -1, half)};
    return stage.starts;
}

}  // namespace corvantis
