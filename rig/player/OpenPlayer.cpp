// The calls of an open player, and the checks on its answers.
#include "player/OpenPlayer.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace corvantis::rig {
namespace {

constexpr size_t kMostSamples = std::numeric_limits<int32_t>::max();

Answer Refused(const std::string& text) { return {Player_Refused, -1, text}; }

// The terminator may be missing, and so may the text.
std::string TextOf(const PlayerProblem& problem, const char* what) {
    const char* const end =
        static_cast<const char*>(std::memchr(problem.text, '\0', sizeof problem.text));
    const std::string text(problem.text, end != nullptr ? end : std::end(problem.text));
    return text.empty() ? std::string("the player does not say why it cannot ") + what : text;
}

int32_t KnownResult(int32_t result) {
    return result > Player_Success && result <= Player_OutOfMemory ? result : Player_Refused;
}

int32_t CountOf(size_t samples) { return static_cast<int32_t>(std::min(samples, kMostSamples)); }

// The answer to a call that has moved samples, unless it has moved more than was asked for.
Answer Moved(Answer answer, const char* what, int32_t moved, int32_t asked, int32_t& result) {
    if (!answer) return answer;
    if (moved < 0 || moved > asked)
        return Refused(std::string("the player says that it has ") + what + ' ' +
                       std::to_string(moved) + " of " + std::to_string(asked) + " samples");
    result = moved;
    return answer;
}

}  // namespace

template <class Call>
Answer OpenPlayer::Ask(const char* what, Call call) {
    if (player == nullptr) return Refused("the player is not open");
    PlayerProblem problem{.setting = -1, .text = {}};
    const int32_t result = call(&problem);
    if (result == Player_Success) return {};
    return {KnownResult(result), problem.setting, TextOf(problem, what)};
}

OpenPlayer::~OpenPlayer() { Close(); }

Answer OpenPlayer::Open(void* device, std::span<const PlayerSetting> settings) {
    Close();
    PlayerProblem problem{.setting = -1, .text = {}};
    const int32_t result =
        calls.open(device, settings.data(), CountOf(settings.size()), &player, &problem);
    if (result == Player_Success)
        return player != nullptr ? Answer{} : Refused("the player has opened nothing");
    player = nullptr;
    return {KnownResult(result), problem.setting, TextOf(problem, "open")};
}

Answer OpenPlayer::Change(std::span<const PlayerSetting> settings) {
    return Ask("change", [&](PlayerProblem* problem) {
        return calls.change(player, settings.data(), CountOf(settings.size()), problem);
    });
}

Answer OpenPlayer::Start(const PlayerEpoch& epoch, int32_t& delay) {
    int32_t stated = 0;
    Answer answer = Ask("start", [&](PlayerProblem* problem) {
        return calls.start(player, &epoch, &stated, problem);
    });
    return Moved(std::move(answer), "delayed", stated, Player_LongestDelay, delay);
}

Answer OpenPlayer::Write(std::span<const uint16_t> samples, int32_t& written) {
    const int32_t count = CountOf(samples.size());
    int32_t moved = 0;
    Answer answer = Ask("write", [&](PlayerProblem* problem) {
        return calls.write(player, samples.data(), count, &moved, problem);
    });
    return Moved(std::move(answer), "written", moved, count, written);
}

Answer OpenPlayer::Read(std::span<uint16_t> samples, int32_t& taken) {
    const int32_t count = CountOf(samples.size());
    int32_t moved = 0;
    Answer answer = Ask("read", [&](PlayerProblem* problem) {
        return calls.read(player, samples.data(), count, &moved, problem);
    });
    return Moved(std::move(answer), "read", moved, count, taken);
}

Answer OpenPlayer::Stop() {
    return Ask("stop", [&](PlayerProblem* problem) { return calls.stop(player, problem); });
}

Answer OpenPlayer::Wait(int64_t microseconds, const uint16_t* levels) {
    return Ask("wait", [&](PlayerProblem* problem) {
        return calls.wait(player, microseconds, levels, problem);
    });
}

void OpenPlayer::Close() {
    if (player != nullptr) calls.close(std::exchange(player, nullptr));
}

}  // namespace corvantis::rig
