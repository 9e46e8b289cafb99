// The sequence's interleaving and its splitting; the limit is memcpy of the same bytes.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

#include "Corvantis.h"
#include "Jobs.h"
#include "reference/Definitions.h"

namespace bench {
namespace {

constexpr int32_t kSamples = 240000;

struct Sequence {
    explicit Sequence(int32_t count)
        : entries(count), points(kSamples / count), stream(kSamples), samples(kSamples) {
        for (int32_t c = 0; c < entries; ++c) perEntry.push_back(samples.data() + c * points);
    }
    int32_t entries;
    int32_t points;
    std::vector<uint16_t> stream;
    std::vector<uint16_t> samples;
    std::vector<uint16_t*> perEntry;
};

template <class Move>
std::function<void()> Moving(const std::shared_ptr<Sequence>& s, Move move) {
    return [=] {
        move(s->stream.data(), s->perEntry.data(), s->entries, s->points);
        benchmark::ClobberMemory();
    };
}

}  // namespace

void AddInterleavingJobs(Jobs& jobs) {
    for (int32_t entries = 1; entries <= 4; ++entries) {
        const auto s = std::make_shared<Sequence>(entries);
        const auto copy = [=] {
            std::memcpy(s->stream.data(), s->samples.data(), 2 * kSamples);
            benchmark::ClobberMemory();
        };
        const std::string suffix = ", entries " + std::to_string(entries);
        jobs.push_back({"interleave" + suffix, kSamples, Moving(s, definition::Interleave),
                        Moving(s, ITCInterleaveData), copy});
        jobs.push_back({"split" + suffix, kSamples, Moving(s, definition::Split),
                        Moving(s, ITCSplitData), copy});
    }
}

}  // namespace bench
