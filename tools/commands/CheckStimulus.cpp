// Comparing two computations of every entry's stimulus.
#include "commands/CheckStimulus.h"

#include <fmt/core.h>

#include <array>
#include <utility>
#include <vector>

#include "files/EpochRecords.h"
#include "files/Failure.h"

namespace corvantis::tool {
namespace {

constexpr char kExpected[] = "the waveform that was played";

struct Computed {
    int64_t number = 0;
    std::array<uint64_t, CORVANTIS_ENTRIES> digests = {};
};

// Of two waveforms that differ, hardly ever the same.
uint64_t DigestOf(const std::vector<int16_t>& samples) {
    constexpr uint64_t kOdd = 0x9E3779B97F4A7C15;
    uint64_t digest = samples.size();
    for (const int16_t sample : samples) {
        digest = (digest ^ static_cast<uint16_t>(sample)) * kOdd;
        digest ^= digest >> 32;
    }
    return digest | 1;
}

// 0 for one that cannot be computed.
uint64_t ComputeDigest(const DataFile& file, const EpochRecords& epoch, int32_t entry) {
    std::vector<int16_t> samples(static_cast<size_t>(epoch.info.points));
    CorvantisProblem problem = {};
    const int32_t result =
        CorvantisStimulus(file.Recording(), epoch.number, entry, 0, epoch.info.points,
                          samples.data(), 0, nullptr, &problem);
    if (result == CORVANTIS_NO_STIMULUS) return 0;
    Require(result, problem);
    return DigestOf(samples);
}

class StimulusCheck {
  public:
    StimulusCheck(const DataFile& file, const Terminal& terminal)
        : file_(file),
          again_(file.Contents().Name()),
          count_(file.Info().epochs),
          progress_(terminal, "computing stimuli", 2 * count_) {}

    Findings Check() {
        for (int64_t number = 0; number < count_; ++number) {
            progress_.Reach(number);
            if (const auto epoch = ReadEpoch(file_, number)) {
                Compute(*epoch);
            } else {
                number = LostFrom(file_, number).last;
            }
        }
        for (; !computed_.empty(); computed_.pop_back()) {
            progress_.Reach(2 * count_ - computed_.back().number);
            Compare(computed_.back());
        }
        return std::move(findings_);
    }

  private:
    void Compute(const EpochRecords& epoch) {
        Computed computed = {.number = epoch.number};
        for (int32_t entry = 0; entry < epoch.info.entries; ++entry) {
            computed.digests[static_cast<size_t>(entry)] = ComputeDigest(file_, epoch, entry);
            Judge(epoch, entry);
        }
        computed_.push_back(computed);
    }

    void Judge(const EpochRecords& epoch, int32_t entry) {
        const StimulusState state = StimulusStateOf(file_, epoch.number, entry);
        if (!state.problem.empty()) {
            Find(epoch, entry, "no waveform: " + state.problem, CORVANTIS_DOUBT);
        } else if (!state.fillsEpoch) {
            Find(epoch, entry, "its lengths do not fill the epoch", CORVANTIS_DOUBT);
        }
        if (state.doubt.reason != CORVANTIS_NO_DOUBT) {
            Find(epoch, entry, state.doubt.text, CORVANTIS_DOUBT);
        }
    }

    void Compare(const Computed& computed) {
        const auto epoch = ReadEpoch(again_, computed.number);
        for (int32_t entry = 0; epoch && entry < epoch->info.entries; ++entry) {
            const uint64_t digest = computed.digests[static_cast<size_t>(entry)];
            if (ComputeDigest(again_, *epoch, entry) == digest) continue;
            Find(*epoch, entry, "another waveform the second time", CORVANTIS_FAULT);
        }
    }

    void Find(const EpochRecords& epoch, int32_t entry, const std::string& found,
              CorvantisWeight weight) {
        const int32_t type = epoch.info.stimulusTypes[entry];
        findings_.push_back(
            {epoch.info.start, epoch.number,
             fmt::format("epoch {}, entry {}, {} stimulus", epoch.number, entry, TypeName(type)),
             found, kExpected, weight});
    }

    const DataFile& file_;
    const DataFile again_;
    const int64_t count_;
    Progress progress_;
    std::vector<Computed> computed_;
    Findings findings_;
};

}  // namespace

Findings CheckStimuli(const DataFile& file, const Terminal& terminal) {
    return StimulusCheck(file, terminal).Check();
}

}  // namespace corvantis::tool
