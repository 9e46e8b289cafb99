// Recomputing in a child process that shares the memory of its result.
#include "Rebuild.h"

#include <fmt/core.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <optional>
#include <utility>

#include "Failure.h"
#include "StimulusTypes.h"

namespace corvantis {
namespace {

constexpr int8_t kLastVersionWithPlatformNoise = 4;

// Memory that parent and child both see: a success flag and the samples, for each time.
class SharedSamples {
  public:
    SharedSamples(size_t times, size_t samples)
        : samples_(samples), size_(times * (1 + samples) * sizeof(uint16_t)) {
        memory_ = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory_ == MAP_FAILED) throw Failure("out of memory");
    }
    SharedSamples(const SharedSamples&) = delete;
    SharedSamples& operator=(const SharedSamples&) = delete;
    ~SharedSamples() { munmap(memory_, size_); }

    uint16_t* Flag(size_t time) const {
        return static_cast<uint16_t*>(memory_) + time * (1 + samples_);
    }
    uint16_t* Samples(size_t time) const { return Flag(time) + 1; }

  private:
    size_t samples_;
    size_t size_;
    void* memory_;
};

// The library's one open file becomes this one with this one epoch, wherever the table has it.
int32_t OpenAsOnlyEpoch(const DataFile& file, const EpochPlace& place) {
    if (ITCInitializeAnalysis(place.points * place.entries) != ITC_SUCCESS) {
        return ITC_OUT_OF_MEMORY;
    }
    *filehdr = file.Header();
    filehdr->numEpochs = 1;
    EpochPosition[0] = static_cast<uint32_t>(place.start);
    ITCOpenFilePtr = std::fopen(file.Path().c_str(), "rb");
    return ITCOpenFilePtr == nullptr ? ITC_FILE_ERROR : ITCEpochParameters(0);
}

// Not the whole sum is given up: the noise of later entries goes on behind its noise.
void DropComponentsWithoutWaveform(const Stimulus& stimulus, ITCSummedParameters& sum) {
    sum.count = 0;
    for (size_t k = 0; k < stimulus.components.size(); ++k) {
        if (!HasWaveform(stimulus.components[k])) continue;
        sum.componentType[sum.count] = sum.componentType[k];
        sum.components[sum.count++] = sum.components[k];
    }
}

// An entry without a waveform would keep the others from being computed.
void BlankEntriesWithoutWaveform(const EpochContent& content) {
    const ITCSpatialStmParameters blank = {};
    for (size_t entry = 0; entry < content.stimuli.size(); ++entry) {
        const Stimulus& stimulus = content.stimuli[entry];
        if (HasWaveform(stimulus)) continue;
        if (stimulus.type == ITC_STIMULUS_SUMMED) {
            auto& sum = *static_cast<ITCSummedParameters*>(StmParameters[entry]);
            DropComponentsWithoutWaveform(stimulus, sum);
        } else {
            ITCSpatialParams(static_cast<int32_t>(entry), &blank);
        }
    }
}

// A seed of 0 or above gives a word that restarts the generator.
int32_t StateWord(int32_t seed) { return static_cast<int32_t>(0U - static_cast<uint32_t>(seed)); }

void DrawAgain(const Draws& draws) {
    int32_t state = StateWord(draws.seed);
    ITCSeedRandom(&state);
    const auto draw = draws.areNormal ? ITCNormalDeviate : ran2;
    for (int64_t i = 0; i < draws.count; ++i) draw(&state);
}

// The value of a spare held before these draws does not matter: the first of them uses it up.
void BringTo(const NoiseStart& start) {
    if (start.isSpareHeld) DrawAgain({.areNormal = true, .count = 1});
    for (const Draws& draws : start.draws) DrawAgain(draws);
}

void Compute(const DataFile& file, const EpochPlace& place, const EpochContent& content,
             const SharedSamples& shared, size_t times, const NoiseStart& start) {
    if (OpenAsOnlyEpoch(file, place) != ITC_SUCCESS) return;
    BlankEntriesWithoutWaveform(content);
    BringTo(start);
    const size_t samples = static_cast<size_t>(place.points) * static_cast<size_t>(place.entries);
    for (size_t time = 0; time < times; ++time) {
        if (ITCUpdateStm() != ITC_SUCCESS) return;
        std::copy_n(*ITCOutputBuffer, samples, shared.Samples(time));
        *shared.Flag(time) = 1;
    }
}

void RunChild(const DataFile& file, const EpochPlace& place, const EpochContent& content,
              const SharedSamples& shared, size_t times, const NoiseStart& start) {
    const pid_t child = fork();
    if (child < 0) throw SystemFailure("fork");
    if (child == 0) {
        Compute(file, place, content, shared, times, start);
        _exit(0);  // nothing that the parent has buffered is written twice
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
}

RebuiltStimulus Split(const EpochPlace& place, const EpochContent& content,
                      const uint16_t* samples) {
    RebuiltStimulus rebuilt;
    const auto entries = static_cast<size_t>(place.entries);
    for (size_t entry = 0; entry < entries; ++entry) {
        if (!HasWaveform(content.stimuli[entry])) continue;
        rebuilt.entries[entry].resize(static_cast<size_t>(place.points));
        for (size_t p = 0; p < rebuilt.entries[entry].size(); ++p) {
            rebuilt.entries[entry][p] = static_cast<int16_t>(samples[p * entries + entry]);
        }
    }
    return rebuilt;
}

// The platform's generator restarts with every seed.
std::string WhyNoise(const ITCFileHeader& file, int32_t seed) {
    if (file.version <= kLastVersionWithPlatformNoise) {
        return "noise of format versions 4 and below came from the recording machine's own "
               "generator";
    }
    return seed < 0 ? "its seed continues the noise before it, whose end is not recorded" : "";
}

std::string WhySegments(const ITCSegmentedNoiseParameters& record) {
    if (record.seed < 0) return "its seed continues the noise before it, whose end is not recorded";
    const bool odd = record.segmentPoints > 0 && (record.points / record.segmentPoints) % 2 != 0;
    return odd ? "an odd number of segments leaves a deviate to the next noise, also to a repeat"
               : "";
}

template <class Record>
const Record& As(const Stimulus& stimulus) {
    return *reinterpret_cast<const Record*>(stimulus.record.data());
}

// answer(record) for a record that says how long its runs are, true for any other.
template <class Answer>
bool AskLengths(const Stimulus& stimulus, Answer answer) {
    switch (stimulus.type) {
        case ITC_STIMULUS_SINE:
            return answer(As<ITCSineParameters>(stimulus));
        case ITC_STIMULUS_NOISE:
            return answer(As<ITCNoiseParameters>(stimulus));
        case ITC_STIMULUS_PULSE:
            return answer(As<ITCPulseParameters>(stimulus));
        case ITC_STIMULUS_RAMP:
            return answer(As<ITCRampParameters>(stimulus));
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return answer(As<ITCSegmentedNoiseParameters>(stimulus));
        case ITC_STIMULUS_BINARY_NOISE:
            return answer(As<ITCBinaryNoiseParameters>(stimulus));
        case ITC_STIMULUS_ALTERNATING_VOLTAGE:
            return answer(As<ITCAlternateVoltageParameters>(stimulus));
        default:
            return true;
    }
}

template <class Record>
int64_t TotalPoints(const Record& record) {
    return int64_t{record.prePoints} + record.points + record.tailPoints;
}

// The library refuses others; here they could ask for any number of draws.
bool StaysWithin(const Stimulus& stimulus, int32_t points) {
    return AskLengths(stimulus, [=](const auto& record) {
        return record.points >= 0 && record.points <= points && TotalPoints(record) <= points;
    });
}

// The library computes neither, nor what comes behind them.
bool IsApplications(const Stimulus& stimulus) {
    return stimulus.type == ITC_STIMULUS_GENERIC || stimulus.type == ITC_STIMULUS_CIRCLE_PULSE;
}

template <class Record>
Draws SegmentDraws(const Record& record, bool areNormal) {
    const int32_t segments = record.segmentPoints > 0 ? record.points / record.segmentPoints : 0;
    return {areNormal, record.seed, segments};
}

// A transform has the smallest power of two above the points; without points nothing is seeded.
std::optional<Draws> FilteredDraws(const ITCNoiseParameters& record, int32_t version) {
    if (version <= kLastVersionWithPlatformNoise || record.points <= 0) return std::nullopt;
    return Draws{true, record.seed, std::bit_ceil(static_cast<uint32_t>(record.points) + 1)};
}

std::optional<Draws> DrawsOf(const Stimulus& stimulus, int32_t version) {
    switch (stimulus.type) {
        case ITC_STIMULUS_NOISE:
            return FilteredDraws(As<ITCNoiseParameters>(stimulus), version);
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return SegmentDraws(As<ITCSegmentedNoiseParameters>(stimulus), true);
        case ITC_STIMULUS_BINARY_NOISE:
            return SegmentDraws(As<ITCBinaryNoiseParameters>(stimulus), false);
        default:
            return std::nullopt;
    }
}

// All records that are computed, in the order in which they are.
std::vector<const Stimulus*> RecordsOf(const EpochContent& content) {
    std::vector<const Stimulus*> records;
    for (const Stimulus& entry : content.stimuli) {
        if (entry.type != ITC_STIMULUS_SUMMED) records.push_back(&entry);
        for (const Stimulus& component : entry.components) records.push_back(&component);
    }
    return records;
}

bool DrawsNormal(const std::vector<Draws>& noise) {
    return std::any_of(noise.begin(), noise.end(),
                       [](const Draws& draws) { return draws.areNormal && draws.count > 0; });
}

bool LeavesSpare(const std::vector<Draws>& noise, bool isSpareHeld) {
    for (const Draws& draws : noise) isSpareHeld ^= draws.areNormal && draws.count % 2 != 0;
    return isSpareHeld;
}

bool Restarts(const Draws& draws) { return StateWord(draws.seed) <= 0; }

// What follows a new pair of a restarted generator depends on nothing before.
bool Settles(const std::vector<Draws>& noise) {
    return std::any_of(noise.begin(), noise.end(), [](const Draws& draws) {
        return draws.areNormal && draws.count > 1 && Restarts(draws);
    });
}

}  // namespace

NoiseHistory::NoiseHistory(const DataFile& file, std::span<const EpochPlace> epochs) {
    Epoch next;
    for (const EpochPlace& place : epochs) {
        const EpochContent content = ReadEpochAt(file, place.start).content;
        Epoch epoch = std::exchange(next, {});
        bool isCertain = true;
        for (const Stimulus* record : RecordsOf(content)) {
            const bool fits = StaysWithin(*record, place.points);
            isCertain &= fits && !IsApplications(*record);
            const std::optional<Draws> draws = DrawsOf(*record, file.Header().version);
            if (fits && draws) epoch.draws.push_back(*draws);
        }
        next.isSpareHeld = LeavesSpare(epoch.draws, epoch.isSpareHeld);
        if (next.isSpareHeld && epoch.isSpareHeld) next.uncertain = epoch.uncertain;
        const bool isDoubtful = !isCertain && !epoch.draws.empty();
        if (next.isSpareHeld && isDoubtful && !next.uncertain) next.uncertain = epochs_.size();
        epochs_.push_back(std::move(epoch));
    }
}

bool NoiseHistory::Continues(const Epoch& epoch) const {
    return (epoch.isSpareHeld && DrawsNormal(epoch.draws)) ||
           !std::all_of(epoch.draws.begin(), epoch.draws.end(), Restarts);
}

NoiseStart NoiseHistory::Before(size_t number) const {
    if (!Continues(epochs_[number])) return {};
    size_t first = number;
    while (first > 0 && (first == number || !Settles(epochs_[first].draws))) --first;
    NoiseStart start = {epochs_[first].isSpareHeld, {}, Doubt(number)};
    for (; first < number; ++first) {
        const std::vector<Draws>& draws = epochs_[first].draws;
        start.draws.insert(start.draws.end(), draws.begin(), draws.end());
    }
    return start;
}

std::string NoiseHistory::Doubt(size_t number) const {
    if (!epochs_[number].isSpareHeld || !DrawsNormal(epochs_[number].draws)) return {};
    const std::optional<size_t> uncertain = epochs_[number].uncertain;
    return "its noise begins with a deviate that an earlier epoch left, and is right only if the "
           "epochs before it were computed once each, in this order" +
           (uncertain ? fmt::format(", and epoch {} cannot be recomputed", *uncertain) : "");
}

bool FillsEpoch(const Stimulus& stimulus, int32_t points) {
    const auto fills = [=](const auto& record) { return TotalPoints(record) == points; };
    return AskLengths(stimulus, fills);
}

bool HasWaveform(const Stimulus& stimulus) {
    switch (stimulus.type) {
        case ITC_STIMULUS_FILEWAVE:
        case ITC_STIMULUS_GENERIC:
        case ITC_STIMULUS_TRIGGER_SERIES:
        case ITC_STIMULUS_CIRCLE_PULSE:
            return false;
        default:
            return std::all_of(stimulus.components.begin(), stimulus.components.end(), HasWaveform);
    }
}

std::string WhyNotRebuilt(const ITCFileHeader& file, const Stimulus& stimulus) {
    switch (stimulus.type) {
        case ITC_STIMULUS_FILEWAVE:
            return "the wave was the application's and is not stored";
        case ITC_STIMULUS_TRIGGER_SERIES:
            return "its parameters are not stored";
        case ITC_STIMULUS_GENERIC:
        case ITC_STIMULUS_CIRCLE_PULSE:
            return "only the application knows its waveform";
        case ITC_STIMULUS_DYNAMIC_CLAMP:
            return "what was played followed the measured potential; its conductances are stored";
        case ITC_STIMULUS_NOISE:
            return WhyNoise(file, As<ITCNoiseParameters>(stimulus).seed);
        case ITC_STIMULUS_SEGMENTED_NOISE:
            return WhySegments(As<ITCSegmentedNoiseParameters>(stimulus));
        case ITC_STIMULUS_BINARY_NOISE:
            if (As<ITCBinaryNoiseParameters>(stimulus).seed >= 0) return {};
            return "its seed continues the noise before it, whose end is not recorded";
        default:
            break;
    }
    for (const Stimulus& component : stimulus.components) {
        const std::string why = WhyNotRebuilt(file, component);
        if (!why.empty()) return fmt::format("component {}: {}", TypeName(component.type), why);
    }
    return {};
}

std::vector<RebuiltStimulus> RebuildStimulus(const DataFile& file, const EpochPlace& place,
                                             const EpochContent& content, size_t times,
                                             const NoiseStart& start) {
    std::vector<RebuiltStimulus> rebuilt(times);
    const int64_t samples = int64_t{place.points} * place.entries;
    // Neither the library's buffers nor its offsets reach further.
    const bool fits = samples <= std::numeric_limits<int32_t>::max() &&
                      place.start <= std::numeric_limits<uint32_t>::max();
    if (!fits || samples == 0) return rebuilt;
    const SharedSamples shared(times, static_cast<size_t>(samples));
    RunChild(file, place, content, shared, times, start);
    for (size_t time = 0; time < times && *shared.Flag(time) == 1; ++time) {
        rebuilt[time] = Split(place, content, shared.Samples(time));
    }
    return rebuilt;
}

}  // namespace corvantis
