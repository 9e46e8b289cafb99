// The streaming calls: what they refuse, and their faults.
#include <algorithm>
#include <memory>
#include <new>
#include <string>

#include "Problem.h"
#include "simulator/Faults.h"
#include "simulator/streaming/Bench.h"
#include "simulator/streaming/Clock.h"
#include "simulator/streaming/Connection.h"

namespace {

using itc18::Bench;
using itc18::Device;
using player::Refuse;
using player::Say;

const char* FailureText(int32_t failure) {
    return failure == Player_Overflow
               ? "acquired samples were lost: the interface's input buffer was full"
               : "the interface had nothing left to play: its output buffer was empty";
}

// Nothing is thrown out of a call.
template <class Call>
int32_t Caught(PlayerProblem* problem, Call call) {
    try {
        return call();
    } catch (const std::bad_alloc&) {
        return Say(problem, Player_OutOfMemory, "memory is out");
    }
}

// Runs a call on what is connected to an open interface, unless it is one that is to fail.
template <class Call>
int32_t OnBench(void* structure, ITC18Simulator_Call kind, PlayerProblem* problem, Call call) {
    Device* const device = itc18::OpenDevice(structure);
    if (device == nullptr) return Refuse(problem, "the interface is not open");
    if (device->bench == nullptr) return Refuse(problem, "nothing is connected to the interface");
    if (device->lost) return Say(problem, Player_Lost, "the interface does not answer any more");
    if (const int32_t fault = itc18::TakeFault(kind))
        return Say(problem, fault, "the interface has refused a call, as it was told to");
    const int32_t result = Caught(problem, [&] { return call(*device, *device->bench); });
    device->lost = device->bench->lost;
    if (!device->lost) return result;
    return Say(problem, Player_Lost, "the interface was lost in mid-epoch");
}

// What is wrong with an epoch, or "".
std::string Unplayable(const Device& device, const Bench& bench, const PlayerEpoch& epoch) {
    const ITC18Simulator_State& state = device.state;
    const auto entries = static_cast<int32_t>(state.sequenceLength);
    if (bench.stream) return "an epoch is under way";
    if (!state.prepared) return "no acquisition is prepared";
    if (state.interval == 0) return "no sampling interval is set";
    if (epoch.sequence == nullptr || epoch.entries != entries ||
        !std::equal(state.sequence, state.sequence + entries, epoch.sequence))
        return "the interface holds another channel sequence";
    if (epoch.interval / entries != state.interval)
        return "the interface holds another sampling interval";
    if (epoch.points < 1) return "the epoch has no points";
    if (std::min(bench.settings.outputBuffer, bench.settings.inputBuffer) < entries)
        return "the interface's buffers do not hold one pass through the sequence";
    return "";
}

std::string UnplayableClamp(const PlayerEpoch& epoch) {
    if ((epoch.excitatory == nullptr) != (epoch.inhibitory == nullptr))
        return "dynamic clamp takes both conductances or none";
    const bool fits = epoch.latency >= 0 && epoch.latency <= itc18::kLongestLatency / epoch.entries;
    return epoch.excitatory == nullptr || fits ? "" : "the dynamic clamp's latency is out of range";
}

// How many samples a call may move that was asked for `count`.
size_t MostMoved(Bench& bench, int32_t count) {
    const auto most = static_cast<uint64_t>(bench.settings.mostMoved);
    const auto asked = static_cast<size_t>(std::max(count, 0));
    if (most == 0) return asked;
    if (bench.settings.seed == 0) return static_cast<size_t>(std::min<uint64_t>(asked, most));
    // Steele, Lea and Flood, "Fast splittable pseudorandom number generators", 2014.
    uint64_t mixed = bench.chance += 0x9E3779B97F4A7C15U;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    return static_cast<size_t>(std::min<uint64_t>(asked, (mixed ^ (mixed >> 31)) % (most + 1)));
}

bool IsStanding(const Bench& bench) { return bench.stream && bench.stream->stalled; }

int32_t Failure(const Bench& bench, PlayerProblem* problem) {
    if (!bench.stream || bench.stream->failure == Player_Success) return Player_Success;
    return Say(problem, bench.stream->failure, FailureText(bench.stream->failure));
}

}  // namespace

int32_t ITC18Simulator_Connect(void* device, const PlayerSetting* settings, int32_t count,
                               PlayerProblem* problem) {
    Device* const opened = itc18::OpenDevice(device);
    if (opened == nullptr) return Refuse(problem, "the interface is not open");
    if (opened->lost) return Say(problem, Player_Lost, "the interface does not answer any more");
    return Caught(problem, [&] { return itc18::Connect(*opened, settings, count, problem); });
}

void ITC18Simulator_Disconnect(void* device) {
    if (Device* const opened = itc18::OpenDevice(device)) opened->bench.reset();
}

int32_t ITC18Simulator_Change(void* device, const PlayerSetting* settings, int32_t count,
                              PlayerProblem* problem) {
    return OnBench(device, ITC18Simulator_CallChange, problem, [&](Device&, Bench& bench) {
        if (bench.stream || bench.output.Held() > 0)
            return Refuse(problem, "settings do not change within an epoch");
        return itc18::Change(bench, settings, count, problem);
    });
}

int32_t ITC18Simulator_Start(void* device, const PlayerEpoch* epoch, int32_t* delay,
                             PlayerProblem* problem) {
    return OnBench(device, ITC18Simulator_CallStart, problem, [&](Device& opened, Bench& bench) {
        if (epoch == nullptr || delay == nullptr) return Refuse(problem, "there is no epoch");
        std::string reason = Unplayable(opened, bench, *epoch);
        if (reason.empty()) reason = UnplayableClamp(*epoch);
        if (!reason.empty()) return Refuse(problem, reason);
        itc18::Begin(bench, opened.state, *epoch);
        opened.state.prepared = 0;
        *delay = static_cast<int32_t>(bench.settings.pipeline);
        return int32_t{Player_Success};
    });
}

int32_t ITC18Simulator_GetRoom(void* device, ITC18Simulator_Room* room, PlayerProblem* problem) {
    return OnBench(device, ITC18Simulator_CallGetRoom, problem, [&](Device&, Bench& bench) {
        if (room == nullptr) return Refuse(problem, "there is no place for the answer");
        itc18::Proceed(bench);
        const bool moves = !IsStanding(bench);
        room->writable = moves ? static_cast<int32_t>(bench.output.Free()) : 0;
        room->readable = moves ? static_cast<int32_t>(bench.input.Held()) : 0;
        return Failure(bench, problem);
    });
}

int32_t ITC18Simulator_Write(void* device, const uint16_t* samples, int32_t count, int32_t* written,
                             PlayerProblem* problem) {
    return OnBench(device, ITC18Simulator_CallWrite, problem, [&](Device&, Bench& bench) {
        if ((samples == nullptr && count != 0) || written == nullptr || count < 0)
            return Refuse(problem, "there is nothing to write");
        itc18::Proceed(bench);
        if (const int32_t failure = Failure(bench, problem)) return failure;
        const size_t most = IsStanding(bench) ? 0 : MostMoved(bench, count);
        *written = static_cast<int32_t>(bench.output.Put({samples, most}));
        itc18::Proceed(bench);
        return int32_t{Player_Success};
    });
}

int32_t ITC18Simulator_Read(void* device, uint16_t* samples, int32_t count, int32_t* taken,
                            PlayerProblem* problem) {
    return OnBench(device, ITC18Simulator_CallRead, problem, [&](Device&, Bench& bench) {
        if ((samples == nullptr && count != 0) || taken == nullptr || count < 0)
            return Refuse(problem, "there is nowhere to read to");
        if (!bench.stream) return Refuse(problem, "no epoch is under way");
        itc18::Proceed(bench);
        if (const int32_t failure = Failure(bench, problem)) return failure;
        const size_t most = IsStanding(bench) ? 0 : MostMoved(bench, count);
        *taken = static_cast<int32_t>(bench.input.Take({samples, most}));
        return int32_t{Player_Success};
    });
}

int32_t ITC18Simulator_Stop(void* device, PlayerProblem* problem) {
    return OnBench(device, ITC18Simulator_CallStop, problem, [](Device&, Bench& bench) {
        itc18::End(bench);
        return int32_t{Player_Success};
    });
}

int32_t ITC18Simulator_Wait(void* device, int64_t microseconds, const uint16_t* levels,
                            PlayerProblem* problem) {
    return OnBench(device, ITC18Simulator_CallWait, problem, [&](Device&, Bench& bench) {
        if (bench.stream) return Refuse(problem, "an epoch is under way");
        if (microseconds < 0) return Refuse(problem, "time does not go back");
        const int64_t end = itc18::ClockNow() + microseconds;
        if (levels != nullptr) std::copy_n(levels, bench.levels.size(), bench.levels.begin());
        itc18::Rest(bench, microseconds);
        if (bench.settings.pacing == itc18::Pacing::kRealTime) itc18::SleepUntil(end);
        return int32_t{Player_Success};
    });
}

int32_t ITC18Simulator_Trigger(void* device) {
    return OnBench(device, ITC18Simulator_Calls, nullptr, [](Device&, Bench& bench) {
        itc18::Trigger(bench);
        return int32_t{Player_Success};
    });
}

void ITC18Simulator_AdvanceClock(int64_t microseconds) { itc18::AdvanceClock(microseconds); }
