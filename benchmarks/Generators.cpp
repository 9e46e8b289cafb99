// Random numbers in bulk; the limit is the latency from one output to the next.
#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <numeric>
#include <span>
#include <vector>

#include "ITCUtilities/Random/LibraryGenerators.h"
#include "Jobs.h"
#include "reference/Definitions.h"

namespace bench {
namespace {

constexpr int64_t kCount = 100000;
// Uniform numbers per normal deviate: a pair falls into the unit circle with probability pi / 4.
constexpr double kUniformsPerDeviate = 1.2732395447351628;

// What one draw has to wait for of the draw before, and no more: the last output chooses an entry
// of the table, which the next output is made of.
void Chain(int64_t draws) {
    static std::array<uint32_t, 1024> table;
    if (table[0] == 0) std::iota(table.begin(), table.end(), 1u << 30);
    uint32_t output = 12345;
    for (int64_t i = 0; i < draws; ++i) {
        const auto difference = static_cast<int32_t>(table[output / 2097250] - 1000);
        output = static_cast<uint32_t>(difference < 1 ? difference + 2147483562 : difference);
        benchmark::DoNotOptimize(output);
    }
}

template <class Draw>
std::function<void()> EachByItself(Draw draw) {
    return [=] {
        static int32_t word = -1;
        float sum = 0.0F;
        for (int64_t i = 0; i < kCount; ++i) sum += draw(&word);
        benchmark::DoNotOptimize(sum);
    };
}

template <class Generator>
std::function<void()> InBulk(Generator& generator,
                             void (*draw)(Generator&, int32_t&, std::span<float>)) {
    auto values = std::make_shared<std::vector<float>>(kCount);
    auto word = std::make_shared<int32_t>(-1);
    return [=, &generator] { draw(generator, *word, std::span(*values)); };
}

}  // namespace

void AddGeneratorJobs(Jobs& jobs) {
    corvantis::NoiseGenerators& generators = corvantis::LibraryGenerators();
    jobs.push_back({"ran2 in bulk", kCount, EachByItself(definition::UniformDeviate),
                    InBulk(generators.uniform, corvantis::DrawUniformDeviates),
                    [] { Chain(kCount); }});
    jobs.push_back({"normal deviates in bulk", kCount, EachByItself(definition::NormalDeviate),
                    InBulk(generators, corvantis::DrawNormalDeviates),
                    [] { Chain(static_cast<int64_t>(kUniformsPerDeviate * kCount)); }});
}

}  // namespace bench
