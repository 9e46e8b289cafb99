// Following draws without drawing: who restarts, who leaves a deviate, and whether that is known.
#include "stimuli/NoiseOrigins.h"

#include <algorithm>
#include <array>

namespace corvantis::reading {
namespace {

constexpr size_t kBatch = 4096;

Origin Higher(const Origin& a, const Origin& b) { return b.reason > a.reason ? b : a; }

Origin Unknown(int64_t epoch) { return {CORVANTIS_BEHIND_UNKNOWN, epoch, 0}; }

bool DependsOn(const SpareOrigin& spare, int64_t count) {
    return count > 0 && (spare.isHeld || !spare.isParityKnown);
}

// A held deviate is used up first; the pairs behind it come from where the numbers come from.
void UsePairs(int64_t count, const Origin& numbers, SpareOrigin& spare) {
    if (count == 0 || !spare.isParityKnown) return;
    const bool makesPairs = count > 1 || !spare.isHeld;
    if (count % 2 != 0) spare.isHeld = !spare.isHeld;
    if (spare.isHeld && makesPairs) spare.origin = numbers;
}

}  // namespace

Origin DependenceOf(const Draws& draws, const NoiseOrigins& before) {
    Origin highest;
    const bool usesNumbers = AreNormal(draws) || AreUniform(draws);
    if (usesNumbers && !Restarts(draws)) highest = Higher(highest, before.uniform);
    const SpareOrigin& spare = AreNormal(draws) ? before.normal : before.old;
    const bool usesPairs = AreNormal(draws) || AreOld(draws);
    if (usesPairs && DependsOn(spare, draws.count)) highest = Higher(highest, spare.origin);
    return highest;
}

void Follow(const Draws& draws, int64_t epoch, size_t place, NoiseOrigins& origins) {
    const Origin here = {CORVANTIS_RESTS_ON_ORDER, epoch, place};
    if (AreOld(draws)) return UsePairs(draws.count, here, origins.old);
    if (!AreNormal(draws) && !AreUniform(draws)) return;
    if (Restarts(draws)) origins.uniform = here;
    if (!AreNormal(draws)) return;
    UsePairs(draws.count, origins.uniform, origins.normal);
    // How many numbers the pairs take depends on how many there are.
    if (draws.count > 0 && !origins.normal.isParityKnown) {
        origins.uniform = origins.normal.origin;
    }
}

NoiseOrigins OriginsBehind(const NoiseEpoch& epoch, size_t place) {
    NoiseOrigins origins = epoch.before;
    for (const NoiseStep& step : epoch.steps) Follow(step.draws, epoch.number, place, origins);
    if (!epoch.isKnown) {
        const Origin unknown = Unknown(epoch.number);
        origins.uniform = unknown;
        origins.normal = {false, false, unknown};
        origins.old = {false, false, unknown};
    }
    return origins;
}

void Draw(const Draws& draws, NoiseGenerators& generators) {
    int32_t word = StateWord(draws.seed);
    if (AreOld(draws)) {
        generators.old->Seed(static_cast<uint32_t>(draws.seed));
    } else if (draws.deviates != Deviates::kNone) {
        DrawUniformDeviate(generators.uniform, word);
    }
    std::array<float, kBatch> batch;
    for (int64_t done = 0; done < draws.count; done += kBatch) {
        const std::span<float> next(batch.data(),
                                    std::min(kBatch, static_cast<size_t>(draws.count - done)));
        if (AreOld(draws)) DrawOldNormalDeviates(generators, next);
        if (AreNormal(draws)) DrawNormalDeviates(generators, word, next);
        if (AreUniform(draws)) DrawUniformDeviates(generators.uniform, word, next);
    }
}

}  // namespace corvantis::reading
