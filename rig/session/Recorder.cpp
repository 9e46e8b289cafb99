// Playing, saving, and what is said when either fails.
#include "session/Recorder.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

#include "files/Failure.h"
#include "files/Path.h"
#include "session/Interruption.h"
#include "session/SealTest.h"
#include "text/Text.h"

namespace corvantis::rig {
namespace {

constexpr int64_t kLongestWait = 100000;  // at a time, to notice an interruption [µs]

PlayerEpoch AskedOf(const PlannedEpoch& epoch, const uint32_t* sequence) {
    const ITCEpochHeader& header = epoch.content.header;
    PlayerEpoch asked = {};
    asked.entries = epoch.Entries();
    asked.sequence = sequence;
    asked.interval = header.samplingInterval;
    asked.points = header.epochPoints;
    asked.trigger = epoch.waitsForTrigger ? 1 : 0;
    if (const reading::Stimulus* clamp = epoch.DynamicClamp()) {
        ITCGClampParameters reversals;
        std::memcpy(&reversals, clamp->record.data(), sizeof reversals);
        asked.latency = header.pointsLatency;
        asked.excitatory = epoch.excitatory.data();
        asked.inhibitory = epoch.inhibitory.data();
        asked.excitatoryReversal = double{reversals.excitatoryReversal};
        asked.inhibitoryReversal = double{reversals.inhibitoryReversal};
    }
    return asked;
}

// In the units of the entry.
std::vector<double> ResponseOf(const PlannedEpoch& epoch, std::span<const uint16_t> acquired,
                               size_t entry) {
    const reading::Scale scale = ResponseScaleOf(epoch, entry);
    std::vector<double> values;
    const auto entries = static_cast<size_t>(epoch.Entries());
    for (size_t k = entry; k < acquired.size(); k += entries) {
        values.push_back(reading::InUnits(static_cast<int16_t>(acquired[k]), scale));
    }
    return values;
}

std::optional<SealValues> SealOf(const PlannedEpoch& epoch, std::span<const uint16_t> acquired) {
    const SealStep& step = *epoch.seal;
    const std::vector<double> current = ResponseOf(epoch, acquired, step.entry);
    const auto start = static_cast<size_t>(step.start), points = static_cast<size_t>(step.points);
    const std::span<const double> all = current;
    double before = 0;
    for (const double value : all.first(start)) before += value / static_cast<double>(start);
    const double millivolts = reading::InUnits(step.amplitude, StimulusScaleOf(epoch, step.entry));
    return MeasureSeal(all.subspan(start, points), before, millivolts,
                       1e-3 * epoch.content.header.samplingInterval);
}

}  // namespace

Recorder::Recorder(const RecordingPlan& plan, const RecordingChoice& choice, Session& session,
                   OpenPlayer& player, const tool::Terminal& terminal)
    : plan_(plan), choice_(choice), session_(session), player_(player), terminal_(terminal) {
    if (choice.played.empty()) return;
    played_.open(tool::PathOf(choice.played), std::ios::binary);
    if (!played_) throw tool::SystemFailure(choice.played);
}

bool Recorder::Tell(const PlannedEpoch& epoch, std::string& why) {
    const std::vector<PlayerSetting> settings = PlayerSettings(epoch.settings);
    if (settings.empty()) return true;
    const Answer answer = player_.Change(settings);
    why = answer.text;
    return static_cast<bool>(answer);
}

bool Recorder::Play(const PlannedEpoch& epoch, std::string& why) {
    EpochHooks hooks;
    hooks.stopAsked = [] { return Interruptions() > 1; };
    const EpochResult result = PlayEpoch(player_, AskedOf(epoch, session_.Sequence()),
                                         session_.Stimulus(), session_.Response(), hooks);
    why = result.message;
    return result.end == EpochEnd::Complete;
}

// What is acquired cannot be acquired again: while there is hope, it is kept.
bool Recorder::Save(std::string& why) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration<double>(choice_.waitForRoom);
    bool isSaid = false;
    while (!session_.Save()) {
        if (Clock::now() >= end || Interruptions() > 1) {
            why = "it could not be written into " + choice_.file;
            return false;
        }
        if (!isSaid) {
            terminal_.Say("{}: cannot be written; is there room? Trying again for {:.0f} s\n",
                          choice_.file, choice_.waitForRoom);
        }
        isSaid = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    return true;
}

void Recorder::ShowSeal(const PlannedEpoch& epoch) {
    if (!epoch.seal) return;
    const std::optional<SealValues> values = SealOf(epoch, session_.Response());
    const std::string text =
        values ? SealText(*values) : std::string("seal test: no answer to the step");
    session_.SetComment(std::string(epoch.content.header.epochComment) + " " + text);
    if (!terminal_.quiet) terminal_.Say("{}\n", text);
}

void Recorder::Report(size_t index, const PlannedEpoch& epoch) {
    if (terminal_.quiet || epoch.seal) return;
    const std::string comment = reading::DisplayText(epoch.content.header.epochComment);
    terminal_.Say("epoch {}, of {}{}{}\n", index, plan_.epochs.size(), comment.empty() ? "" : ": ",
                  comment);
}

// Outputs stand at the holding levels already.
bool Recorder::Pause(const PlannedEpoch& epoch, std::string& why) {
    for (size_t entry = 0; entry < epoch.holding.size(); ++entry) {
        const char output = epoch.outputs[entry];
        levels_[output == 'D' ? 4 : output - '0'] = static_cast<uint16_t>(epoch.holding[entry]);
    }
    int64_t left = epoch.pause;
    do {
        const int64_t now = std::min(left, kLongestWait);
        const Answer answer = player_.Wait(now, levels_);
        if (!answer) {
            why = "in the pause before it: " + answer.text;
            return false;
        }
        left -= now;
    } while (left > 0 && Interruptions() == 0);
    time_ += 1e-6 * static_cast<double>(epoch.pause);
    return true;
}

// The device may refuse in mid-experiment.
bool Recorder::Prepare(const PlannedEpoch& epoch, std::string& why) {
    try {
        session_.Prepare(epoch, time_);
    } catch (const tool::Failure& failure) {
        why = failure.what();
        return false;
    }
    return true;
}

bool Recorder::EndEarly(size_t next, const std::string& what) {
    terminal_.Say("{}\n", what);
    if (next == plan_.first) {
        terminal_.Say("no epoch is in {}\n", choice_.file);
    } else {
        terminal_.Say("epochs {} to {}, of {}, are in {}\n", plan_.first, next - 1,
                      plan_.epochs.size(), choice_.file);
    }
    terminal_.Say("go on with: corvantis record --resume {} -o NEW\n", choice_.file);
    return false;
}

bool Recorder::RecordEpoch(size_t index, const PlannedEpoch& epoch) {
    std::string why;
    if (!Prepare(epoch, why) || !Play(epoch, why) || (ShowSeal(epoch), !Save(why))) {
        return EndEarly(index, fmt::format("epoch {} is lost: {}", index, why));
    }
    if (played_.is_open()) {
        const std::span<const uint16_t> samples = session_.Stimulus();
        const uint64_t count = samples.size();
        played_.write(reinterpret_cast<const char*>(&count), sizeof count);
        played_.write(reinterpret_cast<const char*>(samples.data()),
                      static_cast<std::streamsize>(samples.size_bytes()));
        if (!played_.flush()) throw tool::SystemFailure(choice_.played);
    }
    Report(index, epoch);
    return true;
}

bool Recorder::Run() {
    if (plan_.first > 0 && !terminal_.quiet) {
        terminal_.Say("epoch {} of the protocol is epoch 0 of {}\n", plan_.first, choice_.file);
    }
    // Settings stay, so those of epochs that were recorded before hold as well; and the pause is at
    // the holding levels of its epoch, which mean something else in another clamp.
    for (size_t k = 0; k < plan_.epochs.size(); ++k) {
        const PlannedEpoch epoch = PlanEpoch(plan_.protocol, plan_.epochs[k]);
        std::string why;
        if (!Tell(epoch, why)) {
            return EndEarly(std::max(k, plan_.first),
                            fmt::format("the settings of epoch {}: {}", k, why));
        }
        if (k < plan_.first) continue;
        if (Interruptions() == 0 && !Pause(epoch, why)) {
            return EndEarly(k, fmt::format("epoch {} is lost: {}", k, why));
        }
        if (Interruptions() > 0) return EndEarly(k, "interrupted");
        if (!RecordEpoch(k, epoch)) return false;
        time_ += 1e-6 * static_cast<double>(epoch.Microseconds());
    }
    return true;
}

}  // namespace corvantis::rig
