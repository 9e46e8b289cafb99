// Writing and reading in turn until an epoch is over.
#include "acquisition/EpochPlay.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>
#include <utility>

namespace corvantis::rig {
namespace {

// What is written between two looks at the response and at who may want to stop [samples].
constexpr size_t kRound = 16384;

double MonotonicSeconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

void Sleep(double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); }

EpochTime WithDefaults(EpochTime time) {
    if (!time.now) time.now = MonotonicSeconds;
    if (!time.sleep) time.sleep = Sleep;
    return time;
}

// An epoch on its way. `skipped` are the samples from before the first played one.
struct Play {
    OpenPlayer& player;
    const PlayerEpoch& epoch;
    std::span<const uint16_t> stimulus;
    std::span<uint16_t> response;
    const EpochHooks& hooks;
    const EpochTime& time;
    size_t delay = 0;
    size_t written = 0;   // of the stimulus and, behind it, the delay
    size_t skipped = 0;   // of the delay
    size_t acquired = 0;  // of the response
    double begun = 0;     // when it started, or its first sample came after a trigger [s]
    double moved = 0;     // when anything was moved last [s]

    bool IsOver() const { return acquired == response.size(); }
};

double Duration(const PlayerEpoch& epoch) { return 1e-6 * epoch.interval * epoch.points; }

EpochEnd EndOf(int32_t result) {
    switch (result) {
        case Player_Overflow:
            return EpochEnd::Overflow;
        case Player_Underrun:
            return EpochEnd::Underrun;
        case Player_Lost:
            return EpochEnd::Lost;
        default:
            return EpochEnd::Failed;
    }
}

EpochResult Ended(const Play& play, EpochEnd end, std::string message) {
    return {end, std::move(message), play.acquired, end == EpochEnd::Lost};
}

EpochResult Ended(const Play& play, const Answer& answer) {
    return Ended(play, EndOf(answer.result), answer.text);
}

// What comes next: of the stimulus or, behind it, of the last point once more, so that an interface
// that plays these too ends where the epoch does.
std::span<const uint16_t> NextSamples(const Play& play) {
    const size_t count = play.stimulus.size();
    if (play.written < count) return play.stimulus.subspan(play.written);
    const auto entries = static_cast<size_t>(play.epoch.entries);
    const size_t behind = play.written - count;
    const size_t entry = behind % entries;
    return play.stimulus.subspan(count - entries + entry,
                                 std::min(entries - entry, play.delay - behind));
}

// Writes until nothing more fits, at most so many. Notes whether anything did.
Answer WriteSome(Play& play, size_t most, bool& moved) {
    const size_t end = std::min(play.stimulus.size() + play.delay, play.written + most);
    while (play.written < end) {
        const auto next = NextSamples(play);
        int32_t written = 0;
        Answer answer =
            play.player.Write(next.first(std::min(next.size(), end - play.written)), written);
        if (!answer) return answer;
        if (written == 0) break;
        play.written += static_cast<size_t>(written);
        moved = true;
    }
    return {};
}

Answer ReadDelay(Play& play, int32_t& taken) {
    uint16_t unwanted[64];
    const size_t count = std::min(play.delay - play.skipped, std::size(unwanted));
    Answer answer = play.player.Read({unwanted, count}, taken);
    play.skipped += static_cast<size_t>(taken);
    return answer;
}

Answer ReadSome(Play& play, bool& moved) {
    int32_t taken = 0;
    while (play.skipped < play.delay) {
        Answer answer = ReadDelay(play, taken);
        if (!answer || taken == 0) return answer;
        moved = true;
    }
    Answer answer = play.player.Read(play.response.subspan(play.acquired), taken);
    if (!answer || taken == 0) return answer;
    play.acquired += static_cast<size_t>(taken);
    moved = true;
    if (play.hooks.progress) play.hooks.progress(play.response.first(play.acquired));
    return answer;
}

bool HasBegun(const Play& play) {
    return play.epoch.trigger == 0 || play.skipped + play.acquired > 0;
}

void NoteMovement(Play& play, bool hadBegun) {
    play.moved = play.time.now();
    if (!hadBegun) play.begun = play.moved;
}

bool IsTimedOut(const Play& play) {
    const double now = play.time.now();
    return HasBegun(play) && now - play.moved > play.time.margin &&
           now - play.begun > Duration(play.epoch) + play.time.margin;
}

std::string TimedOutText(const Play& play) {
    return "the interface has stopped moving samples: " + std::to_string(play.acquired) + " of " +
           std::to_string(play.response.size()) + " came within " +
           std::to_string(static_cast<int64_t>(play.time.now() - play.begun)) + " s";
}

// One round of writing and reading; the end, if this is one.
std::optional<EpochResult> Round(Play& play) {
    if (play.hooks.stopAsked && play.hooks.stopAsked())
        return Ended(play, EpochEnd::Stopped, "stopped before the epoch's end");
    const bool hadBegun = HasBegun(play);
    bool moved = false;
    Answer answer = WriteSome(play, kRound, moved);
    if (answer) answer = ReadSome(play, moved);
    if (!answer) return Ended(play, answer);
    if (moved) {
        NoteMovement(play, hadBegun);
    } else if (IsTimedOut(play)) {
        return Ended(play, EpochEnd::TimedOut, TimedOutText(play));
    } else {
        play.time.sleep(play.time.pause);
    }
    return std::nullopt;
}

EpochResult Run(Play& play) {
    int32_t delay = 0;
    bool moved = false;
    Answer answer = WriteSome(play, play.stimulus.size(), moved);
    if (answer) answer = play.player.Start(play.epoch, delay);
    if (!answer) return Ended(play, answer);
    play.delay = static_cast<size_t>(delay);
    play.begun = play.moved = play.time.now();
    while (!play.IsOver())
        if (auto end = Round(play)) return *std::move(end);
    return Ended(play, EpochEnd::Complete, "");
}

// A hook may throw, and the next epoch shall find the player stopped all the same.
EpochResult RunOrStop(Play& play) {
    try {
        return Run(play);
    } catch (...) {
        play.player.Stop();
        throw;
    }
}

bool IsWellFormed(const PlayerEpoch& epoch, size_t stimulus, size_t response) {
    if (epoch.entries < 1 || epoch.points < 1 || epoch.sequence == nullptr) return false;
    const auto samples = static_cast<size_t>(int64_t{epoch.entries} * epoch.points);
    return stimulus == samples && response == samples;
}

}  // namespace

EpochResult PlayEpoch(OpenPlayer& player, const PlayerEpoch& epoch,
                      std::span<const uint16_t> stimulus, std::span<uint16_t> response,
                      const EpochHooks& hooks, const EpochTime& time) {
    if (!IsWellFormed(epoch, stimulus.size(), response.size()))
        return {EpochEnd::Malformed, "the epoch's samples are not points x entries", 0, false};
    const EpochTime clock = WithDefaults(time);
    Play play{player, epoch, stimulus, response, hooks, clock};
    EpochResult result = RunOrStop(play);
    if (result.lost) return result;
    const Answer stopped = player.Stop();
    result.lost = stopped.result == Player_Lost;
    if (result.end == EpochEnd::Complete) result.message = stopped.text;
    return result;
}

}  // namespace corvantis::rig
