// Long runs of ran2 in blocks. Within a block nothing is looked at: the states advance in scaled
// form, and beside what they wait for there is little else to do. Then, for all of the block side
// by side, it turns out whether each state and output was one for which the scaled form holds. A
// block in which one was not, about every hundredth, is taken back.
#include "ITCUtilities/ScaledRun.h"

#include <array>

#include "ITCUtilities/FunctionClones.h"
#include "ITCUtilities/LongPeriodGenerator.h"
#include "ITCUtilities/ScaledStates.h"

namespace corvantis {
namespace {

using First = Scaled<kFirst>;
using Second = Scaled<kSecond>;

// What changes from draw to draw beside the table, in scaled form.
struct ScaledNumbers {
    uint64_t first;
    uint64_t second;
    uint64_t output;
};

// The numbers after each draw of a block.
struct Block {
    std::array<uint64_t, kBlockDraws> first;
    std::array<uint64_t, kBlockDraws> second;
    std::array<uint64_t, kBlockDraws> output;
};

// As a part of its caller, GCC would make three loops of this one, each with all the steps.
[[gnu::noinline]] void Advance(const ScaledNumbers& start, Block& block, LongPeriodState& tables) {
    auto [first, second, output] = start;
    for (size_t i = 0; i < kBlockDraws; ++i) {
        first = First::Next(first);
        second = Second::Next(second);
        const size_t j = output >> kIndexShift;
        output = tables.scaled[j] - Second::InOutputUnits(second);
        tables.iv[j] = First::State(first);
        tables.scaled[j] = First::InOutputUnits(first);
        block.first[i] = first;
        block.second[i] = second;
        block.output[i] = output;
    }
}

// Each output is an entry less a state, and the output before it is where the entry was.
void TakeBack(const ScaledNumbers& start, const Block& block, LongPeriodState& tables) {
    for (size_t i = kBlockDraws; i-- > 0;) {
        const size_t j = (i == 0 ? start.output : block.output[i - 1]) >> kIndexShift;
        tables.scaled[j] = block.output[i] + Second::InOutputUnits(block.second[i]);
        tables.iv[j] = static_cast<int32_t>(FromUpperHalf(tables.scaled[j]));
    }
}

// Whether the scaled form holds for the whole block: states are below 2^31, the first generator's
// above 0, and no output misleads. Signs say so, which processors of any age have side by side.
CORVANTIS_CLONES bool Holds(const Block& block) {
    uint64_t doubts = 0;
    for (size_t i = 0; i < kBlockDraws; ++i) {
        const uint64_t first = block.first[i];
        doubts |= (first - 1) | (First::kNegative - 1 - first);
        doubts |= (Second::kNegative - 1 - block.second[i]) | CouldMislead(block.output[i]);
    }
    return doubts >> 63 == 0;
}

// FromUpperHalf in double precision, of which processors do more at a time: exact but for the sum's
// rounding, some 2^-22, which the quarter allows for.
CORVANTIS_CLONES void Convert(const Block& block, float* __restrict deviates) {
    constexpr double kFactor = kLargestOutput * 0x1p-32;
    for (size_t i = 0; i < kBlockDraws; ++i) {
        const auto centred =
            static_cast<int32_t>(static_cast<uint32_t>(block.output[i] >> 32) - 0x80000000u);
        const double output = centred * kFactor + (0x1p31 * kFactor + kFactor + 0.25);
        deviates[i] = ToDeviate(static_cast<int32_t>(output));
    }
}

}  // namespace

size_t DrawInBlocks(int32_t& state, std::span<float> deviates) {
    auto& [idum2, iv, iy, scaled] = longPeriod;
    ScaledNumbers numbers = {First::From(state), Second::From(idum2),
                             static_cast<uint64_t>(iy) * kOutputUnit};
    if (state <= 0 || idum2 < 0 || iy <= 0 || CouldMislead(numbers.output) >> 63 != 0) return 0;
    Block block;
    size_t done = 0;
    for (; deviates.size() - done >= kBlockDraws; done += kBlockDraws) {
        Advance(numbers, block, longPeriod);
        if (!Holds(block)) {
            TakeBack(numbers, block, longPeriod);
            break;
        }
        Convert(block, deviates.data() + done);
        numbers = {block.first.back(), block.second.back(), block.output.back()};
    }
    state = First::State(numbers.first);
    idum2 = Second::State(numbers.second);
    iy = static_cast<int32_t>(FromUpperHalf(numbers.output));
    return done;
}

}  // namespace corvantis
