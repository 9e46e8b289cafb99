// Counting the random numbers that the noise of each epoch draws.
#include "stimuli/NoiseHistory.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "stimuli/Stimuli.h"

namespace corvantis::tool {
namespace {

// The library computes neither, nor what comes behind them.
bool IsApplications(const Stimulus& stimulus) {
    return RowOf(stimulus.type).waveform.Get() == nullptr;
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

bool AreNormal(const Draws& draws) { return draws.deviates == Deviates::kNormal; }

// The older generator restarts with every seed.
bool IsOfLongPeriod(const Draws& draws) {
    return AreNormal(draws) || draws.deviates == Deviates::kUniform;
}

bool DrawsNormal(const std::vector<Draws>& noise) {
    return std::any_of(noise.begin(), noise.end(),
                       [](const Draws& draws) { return AreNormal(draws) && draws.count > 0; });
}

bool LeavesSpare(const std::vector<Draws>& noise, bool isSpareHeld) {
    for (const Draws& draws : noise) isSpareHeld ^= AreNormal(draws) && draws.count % 2 != 0;
    return isSpareHeld;
}

bool Restarts(const Draws& draws) { return StateWord(draws.seed) <= 0; }

// What follows a new pair of a restarted generator depends on nothing before.
bool Settles(const std::vector<Draws>& noise) {
    return std::any_of(noise.begin(), noise.end(), [](const Draws& draws) {
        return AreNormal(draws) && draws.count > 1 && Restarts(draws);
    });
}

bool Continues(const std::vector<Draws>& noise, bool isSpareHeld) {
    return (isSpareHeld && DrawsNormal(noise)) ||
           !std::all_of(noise.begin(), noise.end(), Restarts);
}

// The library's own spare deviate, which is the process's.
bool isSpareInLibrary = false;

void Draw(const Draws& draws) {
    int32_t state = StateWord(draws.seed);
    ITCSeedRandom(&state);
    const auto draw = AreNormal(draws) ? ITCNormalDeviate : ran2;
    for (int64_t i = 0; i < draws.count; ++i) draw(&state);
    isSpareInLibrary = LeavesSpare({draws}, isSpareInLibrary);
}

// The value of a spare that is held first does not matter: the draws to come use it up.
void SetSpare(bool isHeld) {
    if (isSpareInLibrary != isHeld) Draw({.deviates = Deviates::kNormal, .count = 1});
}

}  // namespace

NoiseHistory::NoiseHistory(const DataFile& file, std::span<const EpochPlace> epochs) {
    Epoch next;
    for (const EpochPlace& place : epochs) {
        const EpochContent content = ReadEpochAt(file, place.start).content;
        Epoch epoch = std::exchange(next, {});
        epoch.number = place.number;
        if (IsBehindGap(place)) {  // what is missing may have drawn any number
            epoch.uncertain = static_cast<size_t>(place.number - 1);
            epoch.isParityKnown = false;
        }
        bool isCertain = true, isRead = true;
        for (const Stimulus* record : RecordsOf(content)) {
            isRead &= record->isRead;
            const bool fits = record->isRead && StaysWithin(*record, place.points);
            isCertain &= fits && !IsApplications(*record);
            if (!fits) continue;
            const Draws draws = DrawsOf(*record, file.Header().version);
            if (IsOfLongPeriod(draws)) epoch.draws.push_back(draws);
        }
        next.isParityKnown = epoch.isParityKnown && isRead;
        next.isSpareHeld = LeavesSpare(epoch.draws, epoch.isSpareHeld);
        const bool goesOn = (next.isSpareHeld && epoch.isSpareHeld) || !next.isParityKnown;
        if (goesOn) next.uncertain = epoch.uncertain;
        const bool isDoubtful = !isCertain && !epoch.draws.empty() && next.isSpareHeld;
        if ((isDoubtful || !isRead) && !next.uncertain) {
            next.uncertain = static_cast<size_t>(place.number);
        }
        next.settled = Settles(epoch.draws) ? epochs_.size() : epoch.settled;
        epochs_.push_back(std::move(epoch));
    }
}

bool NoiseHistory::IsBehindGap(const EpochPlace& place) const {
    if (epochs_.empty()) return place.start != kFirstEpoch;
    return place.number != epochs_.back().number + 1;
}

size_t NoiseHistory::FirstNeeded(size_t index) const {
    const Epoch& epoch = epochs_[index];
    return Continues(epoch.draws, epoch.isSpareHeld) ? epoch.settled : index;
}

void NoiseHistory::Begin(std::span<const size_t> indices) {
    reached_ = indices.empty() ? 0 : indices.front();
    for (const size_t index : indices) reached_ = std::min(reached_, FirstNeeded(index));
    if (!indices.empty()) SetSpare(epochs_[reached_].isSpareHeld);
}

void NoiseHistory::BringGeneratorsTo(size_t index) {
    for (; reached_ < index; ++reached_) {
        for (const Draws& draws : epochs_[reached_].draws) Draw(draws);
    }
}

std::string NoiseHistory::Doubt(size_t index) const {
    const Epoch& epoch = epochs_[index];
    const bool dependsOnSpare = epoch.isSpareHeld || !epoch.isParityKnown;
    if (!dependsOnSpare || !DrawsNormal(epoch.draws)) return {};
    return "its noise begins with a deviate that an earlier epoch left, and is right only if the "
           "epochs before it were computed once each, in this order" +
           (epoch.uncertain ? fmt::format(", and epoch {} cannot be recomputed", *epoch.uncertain)
                            : "");
}

}  // namespace corvantis::tool
