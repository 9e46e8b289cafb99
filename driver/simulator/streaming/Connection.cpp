// The settings of interface and preparation together: which there are, and how they are taken.
#include "simulator/streaming/Connection.h"

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Problem.h"
#include "simulator/Faults.h"

namespace itc18 {
namespace {

struct Settings {
    InterfaceSettings own;
    PreparationSettings preparation;
};

std::vector<PlayerSettingInfo> AllInfos() {
    const auto prepared = PreparationSettingInfo();
    const auto own = InterfaceSettingInfo();
    std::vector<PlayerSettingInfo> infos(prepared.begin(), prepared.end());
    infos.insert(infos.end(), own.begin(), own.end());
    return infos;
}

bool IsOwn(std::string_view name) { return name.starts_with("interface."); }

bool Take(Settings& settings, const PlayerSetting& setting, std::string& problem) {
    if (setting.name == nullptr) {
        problem = "a setting has no name";
        return false;
    }
    const Assignment assignment = IsOwn(setting.name)
                                      ? Assign(settings.own, setting, problem)
                                      : Assign(settings.preparation, setting, problem);
    return assignment == Assignment::kDone;
}

// PlayerResult: all are taken, or what is wrong is said.
int32_t Take(Settings& settings, const PlayerSetting* given, int32_t count,
             PlayerProblem* problem) {
    std::string text;
    for (int32_t number = 0; number < count; ++number) {
        if (Take(settings, given[number], text)) continue;
        return player::Say(problem, Player_BadSetting, text, number);
    }
    text = Contradiction(settings.preparation);
    if (text.empty()) return Player_Success;
    return player::Say(problem, Player_BadSetting, text);
}

void SetFailingCall(const InterfaceSettings& settings) {
    if (settings.failCall == FailingCall::kNone) return;
    const auto behindNone = static_cast<int32_t>(settings.failCall) - 1;
    SetFault(ITC18Simulator_CallChange + behindNone, settings.failAt, Player_Refused);
}

void TakeOwn(Bench& bench, const InterfaceSettings& changed) {
    const InterfaceSettings& old = bench.settings;
    if (changed.outputBuffer != old.outputBuffer)
        bench.output = Fifo(static_cast<size_t>(changed.outputBuffer));
    if (changed.inputBuffer != old.inputBuffer)
        bench.input = Fifo(static_cast<size_t>(changed.inputBuffer));
    if (changed.seed != old.seed) bench.chance = static_cast<uint64_t>(changed.seed);
    if (changed.stallAt != old.stallAt) bench.hasStalled = false;
    if (changed.failCall != old.failCall || changed.failAt != old.failAt) SetFailingCall(changed);
    bench.settings = changed;
}

}  // namespace

int32_t Connect(Device& device, const PlayerSetting* settings, int32_t count,
                PlayerProblem* problem) {
    Settings taken{{}, {}};
    const int32_t result = Take(taken, settings, count, problem);
    if (result != Player_Success) return result;
    device.bench = std::make_shared<Bench>(taken.own, taken.preparation);
    for (int32_t kind = ITC18Simulator_CallChange; kind < ITC18Simulator_Calls; ++kind)
        SetFault(kind, 0, 0);
    SetFailingCall(taken.own);
    return Player_Success;
}

int32_t Change(Bench& bench, const PlayerSetting* settings, int32_t count, PlayerProblem* problem) {
    Settings taken{bench.settings, bench.preparationSettings};
    const int32_t result = Take(taken, settings, count, problem);
    if (result != Player_Success) return result;
    bench.preparation.Change(taken.preparation);
    bench.preparationSettings = taken.preparation;
    TakeOwn(bench, taken.own);
    return Player_Success;
}

}  // namespace itc18

const PlayerSettingInfo* ITC18Simulator_Settings(int32_t* count) {
    static const std::vector<PlayerSettingInfo> infos = itc18::AllInfos();
    *count = static_cast<int32_t>(infos.size());
    return infos.data();
}
