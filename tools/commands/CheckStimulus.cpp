// Comparing two computations of every entry's stimulus.
#include "commands/CheckStimulus.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "files/EpochRecords.h"
#include "files/Failure.h"

namespace corvantis::tool {
namespace {

constexpr char kExpected[] = "the waveform that was played";

using Digests = std::array<uint64_t, CORVANTIS_ENTRIES>;

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
          digests_(static_cast<size_t>(file.Info().epochs)),
          progress_(terminal, "computing stimuli", 2 * file.Info().epochs) {}

    Findings Check() {
        const auto count = static_cast<int64_t>(digests_.size());
        for (int64_t number = 0; number < count; ++number) Visit(number, &StimulusCheck::Compute);
        for (int64_t number = count; number-- > 0;) Visit(number, &StimulusCheck::Compare);
        return std::move(findings_);
    }

  private:
    void Visit(int64_t number, void (StimulusCheck::*visit)(const EpochRecords&, int32_t)) {
        progress_.Reach(done_++);
        const auto epoch = ReadEpoch(file_, number);
        for (int32_t entry = 0; epoch && entry < epoch->info.entries; ++entry) {
            (this->*visit)(*epoch, entry);
        }
    }

    uint64_t& DigestFor(const EpochRecords& epoch, int32_t entry) {
        return digests_[static_cast<size_t>(epoch.number)][static_cast<size_t>(entry)];
    }

    void Compute(const EpochRecords& epoch, int32_t entry) {
        DigestFor(epoch, entry) = ComputeDigest(file_, epoch, entry);
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

    void Compare(const EpochRecords& epoch, int32_t entry) {
        if (ComputeDigest(again_, epoch, entry) == DigestFor(epoch, entry)) return;
        Find(epoch, entry, "another waveform the second time", CORVANTIS_FAULT);
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
    std::vector<Digests> digests_;
    Progress progress_;
    int64_t done_ = 0;
    Findings findings_;
};

}  // namespace

Findings CheckStimuli(const DataFile& file, const Terminal& terminal) {
    return StimulusCheck(file, terminal).Check();
}

}  // namespace corvantis::tool
