// The comparison, sample by sample.
#include "Replay.h"

#include <stdexcept>

#include "PlayedSamples.h"

namespace {

using Counts = std::vector<uint16_t>;

void Compare(Replay& replay, const Counts& played) {
    if (replay.stimulus.size() != played.size())
        throw std::runtime_error("epoch " + std::to_string(replay.epoch.number) + ": " +
                                 std::to_string(replay.stimulus.size()) + " samples recorded, " +
                                 std::to_string(played.size()) + " played");
    for (size_t k = played.size(); k-- > 0;) {
        if (replay.stimulus[k] == played[k]) continue;
        ++replay.differences[k % replay.differences.size()];
        replay.firstDifference = k;
    }
}

Replay ReplayEpoch(size_t number, const Counts& played) {
    Replay replay{ReadEpoch(static_cast<int32_t>(number)), {}, {}, 0};
    replay.differences.resize(replay.epoch.entries.size());
    replay.stimulus = RecomputeStimulus(replay.epoch);
    Compare(replay, played);
    return replay;
}

}  // namespace

std::vector<Replay> ReplayAll(const Recording& recording, const std::string& playedPath) {
    const std::vector<Counts> played = ReadPlayedSamples(playedPath);
    const auto epochs = static_cast<size_t>(recording.epochs);
    if (epochs != played.size())
        throw std::runtime_error(playedPath + ": " + std::to_string(played.size()) + " plays for " +
                                 std::to_string(epochs) + " epochs");
    std::vector<Replay> replays;
    for (size_t k = 0; k < epochs; ++k) replays.push_back(ReplayEpoch(k, played[k]));
    return replays;
}
