// Two tables: the epochs, and the measurements beside what was expected.
#include "DemoTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "Spikes.h"

namespace {

// Everything of a line that stands right of the stimulus and left of the comparison.
struct Measurements {
    std::string current, spikes, lowest, highest;
};

std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

double LargestByMagnitude(const std::vector<double>& values) {
    return std::ranges::max(values, {}, [](double value) { return std::abs(value); });
}

// What is neither a current nor a potential has no place in their columns.
Measurements Measure(const Replay& replay, size_t index) {
    Measurements result{"-", "-", "-", "-"};
    const Epoch& epoch = replay.epoch;
    const Entry& entry = epoch.entries[index];
    if (epoch.points == 0) return result;
    const auto command = Samples(replay.stimulus, epoch, index, entry.stimulusScale);
    const auto potential = Samples(epoch.acquired, epoch, index, entry.responseScale);
    if (entry.stimulusScale.unit == "pA") result.current = Number(LargestByMagnitude(command));
    if (entry.responseScale.unit != "mV") return result;
    result.spikes = std::to_string(FindSpikes(potential).size());
    result.lowest = Number(std::ranges::min(potential));
    result.highest = Number(std::ranges::max(potential));
    return result;
}

using Line = std::array<std::string, 9>;

void PrintLine(FILE* stream, const Line& cells) {
    static constexpr const char* kGaps[] = {"", "  ", " ", " ", " ", " ", " ", " ", "  "};
    static constexpr int kWidths[] = {5, -37, 6, 8, 7, 6, 6, 6, 0};
    for (size_t k = 0; k < cells.size(); ++k)
        std::fprintf(stream, "%s%*s", kGaps[k], kWidths[k], cells[k].c_str());
    std::fputs("\n", stream);
}

void PrintEntry(FILE* stream, const Replay& replay, size_t index) {
    const Epoch& epoch = replay.epoch;
    const Measurements values = Measure(replay, index);
    PrintLine(stream, {index == 0 ? std::to_string(epoch.number) : "",
                       StimulusText(epoch, epoch.entries[index]), std::to_string(epoch.points),
                       std::to_string(epoch.interval), values.current, values.spikes, values.lowest,
                       values.highest, replay.differences[index] == 0 ? "identical" : "DIFFERENT"});
}

}  // namespace

void PrintComment(FILE* stream, const std::string& comment) {
    constexpr size_t kWidth = 100;
    std::string rest = comment;
    while (rest.size() > kWidth) {
        const size_t space = rest.rfind(' ', kWidth);
        const size_t end = space == std::string::npos ? kWidth : space;
        std::fprintf(stream, "%s\n", rest.substr(0, end).c_str());
        rest.erase(0, rest.find_first_not_of(' ', end));
    }
    std::fprintf(stream, "%s\n\n", rest.c_str());
}

void PrintEpochs(FILE* stream, std::span<const Replay> replays) {
    PrintLine(stream, {"", "", "", "interval", "peak", "", "V min", "V max", "stimulus"});
    PrintLine(stream, {"epoch", "stimulus", "points", "[us]", "[pA]", "spikes", "[mV]", "[mV]",
                       "recomputed"});
    for (const Replay& replay : replays)
        for (size_t index = 0; index < replay.epoch.entries.size(); ++index)
            PrintEntry(stream, replay, index);
    std::fputs("\n", stream);
}

void PrintFindings(FILE* stream, std::span<const Finding> findings) {
    std::fprintf(stream, "%-28s %-12s %s\n", "membrane and rig", "measured", "expected");
    for (const Finding& finding : findings)
        std::fprintf(stream, "%-28s %-12s %-12s %s; %s\n", finding.subject.c_str(),
                     finding.found.c_str(), finding.expected.c_str(),
                     finding.asExpected ? "as expected" : "NOT AS EXPECTED",
                     finding.source.c_str());
}
