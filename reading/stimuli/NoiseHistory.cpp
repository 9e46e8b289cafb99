// Going back no further than an epoch's noise depends on, and keeping what was found on the way.
#include "stimuli/NoiseHistory.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "stimuli/NoiseOrigins.h"
#include "stimuli/Stimuli.h"
#include "text/Words.h"

namespace corvantis::reading {
namespace {

constexpr size_t kMostStates = 1 << 14;  // of 4 KB each

// No deviate is the number of all ones, which is none: its complement stands for what is not known.
uint32_t Pack(const SpareDeviate& spare) { return ~std::bit_cast<uint32_t>(spare.gset); }

bool Unpack(uint32_t packed, SpareDeviate& spare) {
    if (packed == 0) return false;
    spare = {1, std::bit_cast<float>(~packed)};
    return true;
}

// Whether nothing of the uniform numbers before the epoch is left behind it.
bool BeginsAnew(const NoiseEpoch& epoch) {
    for (const NoiseStep& step : epoch.steps) {
        if (!AreOld(step.draws)) return Restarts(step.draws);
    }
    return false;
}

// The library computes neither, nor what comes behind them.
bool IsApplications(const Stimulus& stimulus) {
    return stimulus.type != ITC_STIMULUS_SUMMED && RowOf(stimulus.type).waveform.Get() == nullptr;
}

class NoiseReader {
  public:
    NoiseReader(NoiseEpoch& epoch, int32_t points, int8_t version)
        : epoch_(epoch), points_(points), version_(version) {}

    void Add(const Stimulus& stimulus, size_t entry) {
        isRead_ &= stimulus.isRead;
        hasApplications_ |= IsApplications(stimulus);
        if (!stimulus.isRead) return;
        for (const Stimulus& component : stimulus.components) Add(component, entry);
        const Draws draws = DrawsOf(stimulus, version_);
        if (draws.deviates == Deviates::kNone) return;
        fits_ &= StaysWithin(stimulus, points_);
        if (fits_) epoch_.steps.push_back({draws, entry});
    }

    void Finish() const {
        const bool isInterrupted = hasApplications_ && !epoch_.steps.empty();
        epoch_.isKnown = isRead_ && fits_ && !isInterrupted;
    }

  private:
    NoiseEpoch& epoch_;
    int32_t points_;
    int8_t version_;
    bool isRead_ = true;
    bool fits_ = true;
    bool hasApplications_ = false;
};

std::string DoubtText(const Origin& origin) {
    switch (origin.reason) {
        case CORVANTIS_RESTS_ON_ORDER:
            return Say("its noise goes on behind noise that began in epoch ", origin.epoch,
                       ": it is as played if the epochs were computed once each, in this order");
        case CORVANTIS_BEGAN_BEFORE_FILE:
            return "its noise continues noise before the file's first: it is as played if the "
                   "recording program had computed none";
        case CORVANTIS_BEHIND_UNKNOWN:
            return Say("epoch ", origin.epoch,
                       " cannot be recomputed: the noise behind it may be another one than was "
                       "played");
        case CORVANTIS_OLD_GENERATOR:
            return "noise of format versions 4 and below came from the recording machine's own "
                   "generator";
        default:
            return {};
    }
}

}  // namespace

NoiseEpoch NoiseOf(int64_t number, const EpochContent& content, int8_t version) {
    NoiseEpoch epoch;
    epoch.number = number;
    NoiseReader reader(epoch, content.header.epochPoints, version);
    for (size_t entry = 0; entry < content.stimuli.size(); ++entry) {
        reader.Add(content.stimuli[entry], entry);
    }
    reader.Finish();
    return epoch;
}

NoiseHistory::NoiseHistory(std::vector<NoiseEpoch> epochs)
    : epochs_(std::move(epochs)), spares_(epochs_.size() + 1), oldSpares_(epochs_.size() + 1) {
    NoiseOrigins origins;
    for (size_t index = 0; index < epochs_.size(); ++index) {
        epochs_[index].before = origins;
        origins = OriginsBehind(epochs_[index], index);
    }
}

std::optional<size_t> NoiseHistory::Find(int64_t number) const {
    const auto isBefore = [](const NoiseEpoch& epoch, int64_t wanted) {
        return epoch.number < wanted;
    };
    const auto found = std::lower_bound(epochs_.begin(), epochs_.end(), number, isBefore);
    if (found == epochs_.end() || found->number != number) return std::nullopt;
    return static_cast<size_t>(found - epochs_.begin());
}

NoiseHistory::Needs NoiseHistory::NeedsOf(size_t index) const {
    const NoiseEpoch& epoch = epochs_[index];
    Needs needs;
    bool hasRestarted = false;
    for (const NoiseStep& step : epoch.steps) {
        const Draws& draws = step.draws;
        needs.old |= AreOld(draws) && draws.count > 0 && epoch.before.old.isHeld;
        needs.normal |= AreNormal(draws) && draws.count > 0 && epoch.before.normal.isHeld;
        if (AreOld(draws)) continue;
        hasRestarted |= Restarts(draws);
        needs.uniform |= !hasRestarted;
    }
    return needs;
}

size_t NoiseHistory::AnchorOf(size_t index, const Needs& needs) const {
    const NoiseOrigins& before = epochs_[index].before;
    size_t anchor = index;
    if (needs.uniform) anchor = std::min(anchor, before.uniform.anchor);
    if (needs.normal) anchor = std::min(anchor, before.normal.origin.anchor);
    if (needs.old) anchor = std::min(anchor, before.old.origin.anchor);
    return anchor;
}

bool NoiseHistory::Recall(size_t index, const Needs& needs, NoiseGenerators& generators) const {
    if (needs.normal && !Unpack(spares_[index], generators.spare)) return false;
    if (needs.old && !Unpack(oldSpares_[index], generators.oldSpare)) return false;
    if (!needs.uniform) return true;
    const Lock lock(mutex_);
    const auto state = states_.find(index);
    if (state == states_.end()) return false;
    generators.uniform = *state->second;
    return true;
}

// Of what the generators hold behind an epoch, only what stems from the anchor on, or from before
// it as that was known, is right.
void NoiseHistory::Keep(size_t index, size_t anchor, const NoiseGenerators& generators) const {
    if (index + 1 >= epochs_.size()) return;
    const NoiseOrigins& behind = epochs_[index + 1].before;
    const auto draws = [&](auto kind) {
        const auto& steps = epochs_[index].steps;
        return std::any_of(steps.begin(), steps.end(),
                           [&](const NoiseStep& step) { return kind(step.draws); });
    };
    const bool drawsNormal = draws(AreNormal), drawsOld = draws(AreOld);
    const auto keep = [&](const SpareOrigin& origin, bool isDrawn, const SpareDeviate& spare,
                          auto& spares) {
        if (!origin.isHeld) return;
        if (!isDrawn) {
            if (spares[index] != 0) spares[index + 1] = spares[index].load();
        } else if (origin.origin.anchor >= anchor) {
            spares[index + 1] = Pack(spare);
        }
    };
    keep(behind.normal, drawsNormal, generators.spare, spares_);
    keep(behind.old, drawsOld, generators.oldSpare, oldSpares_);
    const bool isDrawn = drawsNormal || draws(AreUniform);
    if (!isDrawn || !NeedsOf(index + 1).uniform || behind.uniform.anchor < anchor) return;
    const Lock lock(mutex_);
    if (states_.size() >= kMostStates || states_.contains(index + 1)) return;
    states_.emplace(index + 1, std::make_unique<LongPeriodState>(generators.uniform));
}

void NoiseHistory::BringTo(int64_t number, NoiseGenerators& generators) const {
    const std::optional<size_t> index = Find(number);
    if (!index) return;
    const Needs needs = NeedsOf(*index);
    if (Recall(*index, needs, generators)) return;
    const size_t anchor = AnchorOf(*index, needs);
    size_t next = *index;
    while (next > anchor) {
        const NoiseOrigins& before = epochs_[--next].before;
        const Needs all = {!BeginsAnew(epochs_[next]), before.normal.isHeld, before.old.isHeld};
        if (next > anchor && Recall(next, all, generators)) break;
    }
    // The value of a deviate that is held first does not matter: the draws to come use it up.
    generators.spare.iset = epochs_[next].before.normal.isHeld ? 1 : 0;
    generators.oldSpare.iset = epochs_[next].before.old.isHeld ? 1 : 0;
    for (; next < *index; ++next) {
        for (const NoiseStep& step : epochs_[next].steps) Draw(step.draws, generators);
        Keep(next, anchor, generators);
    }
}

void NoiseHistory::Note(int64_t number, const NoiseGenerators& generators) const {
    const std::optional<size_t> index = Find(number);
    if (index) Keep(*index, AnchorOf(*index, NeedsOf(*index)), generators);
}

CorvantisDoubt NoiseHistory::DoubtOf(int64_t number, int32_t entry) const {
    CorvantisDoubt doubt = {CORVANTIS_NO_DOUBT, -1, {}};
    const std::optional<size_t> index = Find(number);
    if (!index) return doubt;
    Origin highest;
    NoiseOrigins origins = epochs_[*index].before;
    for (const NoiseStep& step : epochs_[*index].steps) {
        const bool isAsked = entry < 0 || step.entry == static_cast<size_t>(entry);
        Origin origin = DependenceOf(step.draws, origins);
        if (AreOld(step.draws)) origin = {CORVANTIS_OLD_GENERATOR, -1, 0};
        const bool isOwn = origin.epoch == number;
        if (isAsked && !isOwn && origin.reason > highest.reason) highest = origin;
        Follow(step.draws, number, *index, origins);
    }
    doubt.reason = highest.reason;
    doubt.epoch = highest.epoch;
    StoreText(DoubtText(highest), doubt.text);
    return doubt;
}

}  // namespace corvantis::reading
