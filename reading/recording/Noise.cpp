// Going through a recording once for what its noise draws.
#include <utility>

#include "recording/Recording.h"
#include "stimuli/Stimuli.h"

namespace corvantis::reading {
namespace {

bool MayDraw(const ITCEpochHeader& header) {
    for (int32_t entry = 0; entry < header.sequenceLength; ++entry) {
        const int32_t type = header.stimType[entry];
        if (type == ITC_STIMULUS_SUMMED || !IsSimpleType(type)) return true;
        if (RowOf(type).places->seed >= 0) return true;
    }
    return false;
}

NoiseEpoch OfUnknown(int64_t number) {
    NoiseEpoch epoch;
    epoch.number = number;
    epoch.isKnown = false;
    return epoch;
}

}  // namespace

// Records are asked for where the header has noise or a sum.
int32_t Contents::ReadNoise(const FileView& view, int64_t number, NoiseEpoch& noise,
                            const Reporter& reporter) const {
    EpochReading reading;
    int32_t result = Find(view, number, Depth::kHeader, reading, reporter);
    if (result != CORVANTIS_SUCCESS || !MayDraw(reading.content.header)) return result;
    result = Find(view, number, Depth::kRecords, reading, reporter);
    if (result == CORVANTIS_SUCCESS) {
        noise = NoiseOf(number, reading.content, snapshot_.header.version);
    }
    return result;
}

// A damaged epoch may have drawn any numbers, and so may all those of a gap: one stands for them.
std::vector<NoiseEpoch> Contents::NoiseOfAll(const Reporter& reporter, bool& isComplete) const {
    std::vector<NoiseEpoch> epochs;
    const FileView view = View();
    const Reporter quiet("", nullptr);
    isComplete = true;
    for (int64_t number = 0; number < count_ && isComplete; ++number) {
        NoiseEpoch noise;
        const int32_t result = ReadNoise(view, number, noise, quiet);
        if (result == CORVANTIS_DAMAGED) {
            noise = OfUnknown(number);
            number = NextNumber(isWalked_.load(std::memory_order_acquire)->survey, number) - 1;
        }
        if (!noise.steps.empty() || !noise.isKnown) epochs.push_back(std::move(noise));
        isComplete = result == CORVANTIS_SUCCESS || result == CORVANTIS_DAMAGED;
        if (!isComplete) ReadNoise(view, number, noise, reporter);
    }
    return epochs;
}

const NoiseHistory* Contents::History(const Reporter& reporter) const {
    if (const NoiseHistory* known = hasHistory_.load(std::memory_order_acquire)) return known;
    const Lock lock(historyMutex_);
    if (history_) return history_.get();
    bool isComplete = false;
    std::vector<NoiseEpoch> epochs = NoiseOfAll(reporter, isComplete);
    if (!isComplete) return nullptr;
    history_ = std::make_unique<NoiseHistory>(std::move(epochs));
    hasHistory_.store(history_.get(), std::memory_order_release);
    return history_.get();
}

}  // namespace corvantis::reading
