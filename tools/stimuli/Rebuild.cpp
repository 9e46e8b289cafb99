// Recomputing in a child process that shares the memory of its result.
#include "stimuli/Rebuild.h"

#include <fmt/core.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

#include "files/Failure.h"
#include "stimuli/NoiseHistory.h"
#include "stimuli/Stimuli.h"

namespace corvantis::tool {
namespace {

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

void Compute(const DataFile& file, const EpochPlace& place, const EpochContent& content,
             const SharedSamples& shared, size_t times) {
    if (OpenAsOnlyEpoch(file, place) != ITC_SUCCESS) return;
    BlankEntriesWithoutWaveform(content);
    const size_t samples = static_cast<size_t>(place.points) * static_cast<size_t>(place.entries);
    for (size_t time = 0; time < times; ++time) {
        if (ITCUpdateStm() != ITC_SUCCESS) return;
        std::copy_n(*ITCOutputBuffer, samples, shared.Samples(time));
        *shared.Flag(time) = 1;
    }
}

void RunChild(const DataFile& file, const EpochPlace& place, const EpochContent& content,
              const SharedSamples& shared, size_t times) {
    const pid_t child = fork();
    if (child < 0) throw SystemFailure("fork");
    if (child == 0) {
        Compute(file, place, content, shared, times);
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

constexpr char kContinues[] = "its seed continues the noise before it, whose end is not recorded";

std::string WhyNoise(const Draws& draws) {
    switch (draws.deviates) {
        case Deviates::kNone:
            return {};
        case Deviates::kOldNormal:
            return "noise of format versions 4 and below came from the recording machine's own "
                   "generator";
        case Deviates::kUniform:
            return draws.seed < 0 ? kContinues : "";
        case Deviates::kNormal:
            if (draws.seed < 0) return kContinues;
            return draws.count % 2 == 0 ? ""
                                        : "an odd number of segments leaves a deviate to the next "
                                          "noise, also to a repeat";
    }
    return {};
}

}  // namespace

bool HasWaveform(const Stimulus& stimulus) {
    if (!stimulus.isRead) return false;
    if (stimulus.type != ITC_STIMULUS_SUMMED) return IsComputedFromFile(stimulus.type);
    return std::all_of(stimulus.components.begin(), stimulus.components.end(), HasWaveform);
}

std::string WhyNotRebuilt(const ITCFileHeader& file, const Stimulus& stimulus) {
    if (!IsStimulusType(static_cast<uint32_t>(stimulus.type))) {
        return fmt::format("stimulus type {} is not known", stimulus.type);
    }
    if (!stimulus.isRead) return "its parameters lie behind some of a type that is not known";
    std::string caveat = RowOf(stimulus.type).caveat.Get();
    if (!caveat.empty()) return caveat;
    for (const Stimulus& component : stimulus.components) {
        const std::string why = WhyNotRebuilt(file, component);
        if (!why.empty()) return fmt::format("component {}: {}", TypeName(component.type), why);
    }
    return WhyNoise(DrawsOf(stimulus, file.version));
}

std::vector<RebuiltStimulus> RebuildStimulus(const DataFile& file, const EpochPlace& place,
                                             const EpochContent& content, size_t times) {
    std::vector<RebuiltStimulus> rebuilt(times);
    const int64_t samples = int64_t{place.points} * place.entries;
    // Neither the library's buffers nor its offsets reach further.
    const bool fits = samples <= std::numeric_limits<int32_t>::max() &&
                      place.start <= std::numeric_limits<uint32_t>::max();
    if (!fits || samples == 0) return rebuilt;
    const SharedSamples shared(times, static_cast<size_t>(samples));
    RunChild(file, place, content, shared, times);
    for (size_t time = 0; time < times && *shared.Flag(time) == 1; ++time) {
        rebuilt[time] = Split(place, content, shared.Samples(time));
    }
    return rebuilt;
}

}  // namespace corvantis::tool
