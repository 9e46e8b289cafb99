// show-demo FILE: opens what record-demo recorded, in a process of its own, recomputes every
// stimulus, compares it with what was played and prints the experiment. Ends with 1 if anything is
// not as expected, with 2 if the recording cannot be read.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "DemoTable.h"
#include "OwnOutput.h"
#include "Physiology.h"
#include "Recording.h"
#include "Replay.h"

namespace {

bool IsPulseFromRest(const Epoch& epoch) {
    if (epoch.entries.size() != 1 || epoch.entries[0].stimulus.size() != 1) return false;
    const Component& component = epoch.entries[0].stimulus[0];
    return component.type == ITC_STIMULUS_PULSE && component.mean == 0 && component.prePoints > 0 &&
           component.points > 0 && int64_t{component.prePoints} + component.points <= epoch.points;
}

std::vector<PulseResponse> MeasurePulses(const std::vector<Replay>& replays) {
    std::vector<PulseResponse> responses;
    for (const Replay& replay : replays) {
        const Epoch& epoch = replay.epoch;
        if (!IsPulseFromRest(epoch)) continue;
        const Scale& scale = epoch.entries[0].responseScale;
        responses.push_back(MeasurePulse(epoch, Samples(epoch.acquired, epoch, 0, scale)));
    }
    return responses;
}

Finding Equality(std::string subject, std::string reason, bool some, bool equal) {
    const char* found = some ? (equal ? "identical" : "different") : "not recorded";
    return {std::move(subject), found, "identical", std::move(reason), some && equal};
}

Finding CompareRepeats(const std::vector<Replay>& replays) {
    bool some = false;
    bool equal = true;
    for (size_t k = 1; k < replays.size(); ++k) {
        if (replays[k].stimulus != replays[k - 1].stimulus) continue;
        some = true;
        equal = equal && replays[k].epoch.acquired == replays[k - 1].epoch.acquired;
    }
    return Equality("responses to frozen noise", "a model without noise or memory", some, equal);
}

// The recomputed stimulus against what the interface itself read back.
Finding CompareEcho(const std::vector<Replay>& replays) {
    bool some = false;
    bool equal = true;
    for (const Replay& replay : replays) {
        if (replay.epoch.entries.size() < 2) continue;
        some = true;
        for (size_t k = 1; k < replay.stimulus.size(); k += replay.epoch.entries.size())
            equal = equal && replay.stimulus[k] == replay.epoch.acquired[k];
    }
    return Equality("light command at its input", "output 1 is wired to input 1", some, equal);
}

std::vector<Finding> CompareAll(const std::vector<Replay>& replays) {
    std::vector<Finding> findings = CompareWithLiterature(MeasurePulses(replays));
    findings.push_back(CompareRepeats(replays));
    findings.push_back(CompareEcho(replays));
    return findings;
}

void ReportDifferences(const std::vector<Replay>& replays) {
    for (const Replay& replay : replays)
        if (!replay.Identical())
            std::fprintf(stderr,
                         "show-demo: epoch %d: %zu of %zu recomputed samples differ from those "
                         "played, the first at %zu\n",
                         replay.epoch.number, replay.Differences(), replay.stimulus.size(),
                         replay.firstDifference);
}

int ShowExperiment(const std::string& path) {
    const OwnOutput own(path + ".log");
    const Recording recording(path);
    const std::vector<Replay> replays = ReplayAll(recording, path + ".played");
    const std::vector<Finding> findings = CompareAll(replays);
    PrintComment(own.Stream(), recording.comment);
    PrintEpochs(own.Stream(), replays);
    PrintFindings(own.Stream(), findings);
    ReportDifferences(replays);
    const bool identical = std::ranges::all_of(replays, &Replay::Identical);
    return identical && std::ranges::all_of(findings, &Finding::asExpected) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::fputs("usage: show-demo FILE\n", stderr);
        return 2;
    }
    return ShowExperiment(argv[1]);
} catch (const std::exception& error) {
    std::fprintf(stderr, "show-demo: %s\n", error.what());
    return 2;
}
