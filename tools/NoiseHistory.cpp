// Counting the random numbers that the noise of each epoch draws.
#include "NoiseHistory.h"

#include <fmt/core.h>

#include <algorithm>
#include <bit>
#include <utility>

#include "RecordLengths.h"

namespace corvantis {
namespace {

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

bool Continues(const std::vector<Draws>& noise, bool isSpareHeld) {
    return (isSpareHeld && DrawsNormal(noise)) ||
           !std::all_of(noise.begin(), noise.end(), Restarts);
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

NoiseStart NoiseHistory::Before(size_t number) const {
    if (!Continues(epochs_[number].draws, epochs_[number].isSpareHeld)) return {};
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

}  // namespace corvantis
