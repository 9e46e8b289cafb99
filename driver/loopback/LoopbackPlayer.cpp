// A player whose interface is another process that sends back what it is sent: a cable from every
// output to the input of its entry, with a delay.
#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Player.h"
#include "Problem.h"
#include "loopback/Child.h"
#include "loopback/Frame.h"

namespace {

using loopback::Child;
using loopback::FrameHeader;
using player::Refuse;
using player::Say;

constexpr size_t kQueue = 65536;  // [samples] that wait on either side

constexpr std::array<PlayerSettingInfo, 4> kSettings = {{
    {"loopback.program", "", "the program that sends back, unless it lies beside the library", "",
     0, 0, ""},
    {"loopback.delay", "samples", "from a sample to its echo", nullptr, 0, loopback::kMostDelay,
     "0"},
    {"loopback.dieAfter", "samples", "the program ends itself; -1: never", nullptr, -1, 1e15, "-1"},
    {"loopback.hangAfter", "samples", "the program falls silent; -1: never", nullptr, -1, 1e15,
     "-1"},
}};

struct Settings {
    std::string program;
    double numbers[3] = {0, -1, -1};  // as in the table, from its second row on

    uint32_t Delay() const { return static_cast<uint32_t>(numbers[0]); }
};

struct Loopback {
    Settings settings;
    Child child;
    uint32_t epoch = 1;  // under way, or the coming one
    bool isStarted = false;
    bool hasWritten = false;  // samples of this epoch
    bool isLost = false;
    std::vector<uint8_t> outgoing, incoming;
    std::vector<uint16_t> acquired;
};

std::string ProgramBesideThis() {
    Dl_info info;
    std::string path;
    if (dladdr(reinterpret_cast<const void*>(&CorvantisPlayer), &info) != 0) path = info.dli_fname;
    return path.substr(0, path.find_last_of('/') + 1) + "corvantis-loopback";
}

bool Take(Settings& settings, const PlayerSetting& setting) {
    const auto* const row = std::find_if(
        kSettings.begin(), kSettings.end(),
        [&](const PlayerSettingInfo& info) { return std::strcmp(info.name, setting.name) == 0; });
    if (row == kSettings.end()) return false;
    const double number = setting.number;
    if (row == kSettings.begin()) {
        settings.program = setting.text;
    } else if (number >= row->least && number <= row->most && number == std::floor(number)) {
        settings.numbers[row - kSettings.begin() - 1] = number;
    } else {
        return false;
    }
    return true;
}

int32_t TakeAll(Settings& settings, const PlayerSetting* given, int32_t count,
                PlayerProblem* problem) {
    for (int32_t number = 0; number < count; ++number)
        if (!Take(settings, given[number]))
            return Say(problem, Player_BadSetting,
                       "the loop-back has no such setting, or not with this value", number);
    return Player_Success;
}

// Sends what waits, as far as the program takes it.
bool SendSome(Loopback& player) {
    while (!player.outgoing.empty()) {
        const ssize_t sent = player.child.Send(player.outgoing);
        if (sent < 0) return false;
        if (sent == 0) break;
        player.outgoing.erase(player.outgoing.begin(), player.outgoing.begin() + sent);
    }
    return true;
}

// Takes one answer out of what has come: its samples, if they are of this epoch. False if no whole
// one is there, or the program sends what it was never sent.
bool TakeFrame(Loopback& player) {
    FrameHeader header;
    if (player.incoming.size() < sizeof header) return false;
    std::memcpy(&header, player.incoming.data(), sizeof header);
    player.isLost = header.count > loopback::kMostSamples;
    const size_t bytes = header.count * sizeof(uint16_t);
    if (player.isLost || player.incoming.size() < sizeof header + bytes) return false;
    if (header.epoch == player.epoch) {
        const size_t held = player.acquired.size();
        player.acquired.resize(held + header.count);
        std::memcpy(player.acquired.data() + held, player.incoming.data() + sizeof header, bytes);
    }
    const auto end = static_cast<ptrdiff_t>(sizeof header + bytes);
    player.incoming.erase(player.incoming.begin(), player.incoming.begin() + end);
    return true;
}

bool ReceiveSome(Loopback& player) {
    std::array<uint8_t, 65536> bytes;
    while (player.acquired.size() < kQueue) {
        const ssize_t got = player.child.Receive(bytes);
        if (got < 0) return false;
        if (got == 0) break;
        player.incoming.insert(player.incoming.end(), bytes.begin(), bytes.begin() + got);
        while (TakeFrame(player)) continue;
    }
    return !player.isLost;
}

// Moves what can be moved. What came before the program ended is of no use any more.
int32_t Proceed(Loopback& player, PlayerProblem* problem) {
    if (!player.isLost && SendSome(player) && ReceiveSome(player)) return Player_Success;
    player.isLost = true;
    return Say(problem, Player_Lost, "the loop-back's program has ended");
}

template <class Call>
int32_t OnLoopback(void* player, PlayerProblem* problem, Call call) {
    try {
        return call(*static_cast<Loopback*>(player));
    } catch (const std::bad_alloc&) {
        return Say(problem, Player_OutOfMemory, "memory is out");
    }
}

const PlayerSettingInfo* ListSettings(int32_t* count) {
    *count = kSettings.size();
    return kSettings.data();
}

int32_t StartProgram(Loopback& player, PlayerProblem* problem) {
    const Settings& settings = player.settings;
    const std::string program = settings.program.empty() ? ProgramBesideThis() : settings.program;
    const std::string failure =
        player.child.Start(program, {std::to_string(static_cast<int64_t>(settings.numbers[1])),
                                     std::to_string(static_cast<int64_t>(settings.numbers[2]))});
    return failure.empty() ? int32_t{Player_Success} : Refuse(problem, failure);
}

int32_t Open(void*, const PlayerSetting* settings, int32_t count, void** player,
             PlayerProblem* problem) {
    try {
        auto opened = std::make_unique<Loopback>();
        int32_t result = TakeAll(opened->settings, settings, count, problem);
        if (result == Player_Success) result = StartProgram(*opened, problem);
        if (result == Player_Success) *player = opened.release();
        return result;
    } catch (const std::bad_alloc&) {
        return Say(problem, Player_OutOfMemory, "memory is out");
    }
}

// The program has its arguments once and for all: only the delay changes.
int32_t Change(void* player, const PlayerSetting* settings, int32_t count, PlayerProblem* problem) {
    return OnLoopback(player, problem, [&](Loopback& opened) {
        if (opened.isStarted || opened.hasWritten)
            return Refuse(problem, "settings do not change within an epoch");
        Settings taken = opened.settings;
        const int32_t result = TakeAll(taken, settings, count, problem);
        if (result == Player_Success) opened.settings = taken;
        return result;
    });
}

int32_t Start(void* player, const PlayerEpoch* epoch, int32_t* delay, PlayerProblem* problem) {
    return OnLoopback(player, problem, [&](Loopback& opened) {
        if (opened.isStarted) return Refuse(problem, "an epoch is under way");
        if (epoch->trigger != 0) return Refuse(problem, "a loop-back has no trigger");
        if (epoch->excitatory != nullptr)
            return Refuse(problem, "a loop-back has no amplifier for dynamic clamp");
        opened.isStarted = true;
        *delay = static_cast<int32_t>(opened.settings.Delay());
        return Proceed(opened, problem);
    });
}

void Queue(Loopback& player, const uint16_t* samples, uint32_t count) {
    const FrameHeader header{player.epoch, player.settings.Delay(), count};
    const size_t held = player.outgoing.size();
    player.outgoing.resize(held + sizeof header + count * sizeof *samples);
    std::memcpy(player.outgoing.data() + held, &header, sizeof header);
    std::memcpy(player.outgoing.data() + held + sizeof header, samples, count * sizeof *samples);
}

int32_t Write(void* player, const uint16_t* samples, int32_t count, int32_t* written,
              PlayerProblem* problem) {
    return OnLoopback(player, problem, [&](Loopback& opened) {
        const int32_t result = Proceed(opened, problem);
        if (result != Player_Success) return result;
        const bool full = opened.outgoing.size() > kQueue;
        *written = full ? 0 : std::min(count, int32_t{loopback::kMostSamples});
        opened.hasWritten = true;
        if (*written > 0) Queue(opened, samples, static_cast<uint32_t>(*written));
        return int32_t{Player_Success};
    });
}

int32_t Read(void* player, uint16_t* samples, int32_t count, int32_t* taken,
             PlayerProblem* problem) {
    return OnLoopback(player, problem, [&](Loopback& opened) {
        if (!opened.isStarted) return Refuse(problem, "no epoch is under way");
        const int32_t result = Proceed(opened, problem);
        if (result != Player_Success) return result;
        const auto end = std::min<ptrdiff_t>(count, std::ssize(opened.acquired));
        std::copy_n(opened.acquired.begin(), end, samples);
        opened.acquired.erase(opened.acquired.begin(), opened.acquired.begin() + end);
        *taken = static_cast<int32_t>(end);
        return int32_t{Player_Success};
    });
}

// What is still on its way belongs to an epoch of the past when it comes back.
int32_t Stop(void* player, PlayerProblem* problem) {
    return OnLoopback(player, problem, [&](Loopback& opened) {
        opened.isStarted = opened.hasWritten = false;
        ++opened.epoch;
        opened.acquired.clear();
        return Proceed(opened, problem);
    });
}

int64_t Now() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

int32_t Wait(void* player, int64_t microseconds, const uint16_t*, PlayerProblem* problem) {
    return OnLoopback(player, problem, [&](Loopback& opened) {
        const int64_t begin = Now();
        int32_t result = Proceed(opened, problem);
        for (int64_t passed = 0; result == Player_Success && passed < microseconds;) {
            opened.child.Wait(microseconds - passed);
            result = Proceed(opened, problem);
            passed = Now() - begin;
        }
        return result;
    });
}

void Close(void* player) { delete static_cast<Loopback*>(player); }

constexpr PlayerCalls kCalls = {
    .version = Player_Version,
    .simulated = 1,
    .settings = ListSettings,
    .open = Open,
    .change = Change,
    .start = Start,
    .write = Write,
    .read = Read,
    .stop = Stop,
    .wait = Wait,
    .close = Close,
};

}  // namespace

const PlayerCalls* CorvantisPlayer(void) { return &kCalls; }
