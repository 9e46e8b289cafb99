// analyse-recording FILE: prints what was played and how the cell answered, epoch by epoch, of any
// data file. Ends with 1 if an epoch cannot be read, with 2 if the file cannot.
#include <cstdio>
#include <exception>
#include <string>

#include "Corvantis.h"
#include "Recording.h"
#include "Spikes.h"
#include "StimulusNames.h"

namespace {

constexpr int32_t kLastVersionWithPlatformNoise = 4;

void PrintHeading(const Recording& recording, const std::string& path) {
    std::printf("%s: format version %d, %d epochs\n", path.c_str(), recording.version,
                recording.epochs);
    if (!recording.comment.empty()) std::printf("%s\n", recording.comment.c_str());
    if (recording.version <= kLastVersionWithPlatformNoise)
        std::puts(
            "Note: up to version 4 filtered noise was drawn from the platform's rand. Such a\n"
            "stimulus can be recomputed only where rand gives the same numbers.");
    std::printf("\n%5s %8s  %-13s %10s %10s %7s %6s  %s\n", "epoch", "interval", "stimulus",
                "amplitude", "mean", "points", "spikes", "comment");
}

std::string Level(const Component& component, int32_t counts, const Scale& scale) {
    return component.hasLevels ? LevelText(counts, scale) : "-";
}

void PrintComponent(const Component& component, const Scale& scale) {
    const std::string points = component.hasPoints ? std::to_string(component.points) : "-";
    std::printf("%-13s %10s %10s %7s", StimulusName(component.type),
                Level(component, component.amplitude, scale).c_str(),
                Level(component, component.mean, scale).c_str(), points.c_str());
}

std::string SpikeCount(const Epoch& epoch, size_t index) {
    const Scale& scale = epoch.entries[index].responseScale;
    if (scale.unit != "mV") return "-";
    return std::to_string(FindSpikes(Samples(epoch.acquired, epoch, index, scale)).size());
}

// An entry's spikes stand beside its first component, the comment beside the first entry's.
void PrintEntry(const Epoch& epoch, size_t index) {
    const Entry& entry = epoch.entries[index];
    for (size_t k = 0; k < entry.stimulus.size(); ++k) {
        const bool opensEpoch = index == 0 && k == 0;
        if (opensEpoch) std::printf("%5d %5d us  ", epoch.number, epoch.interval);
        if (!opensEpoch) std::printf("%16s", "");
        PrintComponent(entry.stimulus[k], entry.stimulusScale);
        if (k == 0) std::printf(" %6s", SpikeCount(epoch, index).c_str());
        if (opensEpoch) std::printf("  %s", epoch.comment.c_str());
        std::puts("");
    }
}

bool PrintEpoch(int32_t number) try {
    const Epoch epoch = ReadEpoch(number);
    for (size_t index = 0; index < epoch.entries.size(); ++index) PrintEntry(epoch, index);
    return true;
} catch (const std::exception& error) {
    std::fprintf(stderr, "analyse-recording: epoch %d: %s\n", number, error.what());
    return false;
}

}  // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::fputs("usage: analyse-recording FILE\n", stderr);
        return 2;
    }
    const Recording recording(argv[1]);
    PrintHeading(recording, argv[1]);
    bool complete = true;
    for (int32_t number = 0; number < recording.epochs; ++number)
        complete = PrintEpoch(number) && complete;
    return complete ? 0 : 1;
} catch (const std::exception& error) {
    std::fprintf(stderr, "analyse-recording: %s\n", error.what());
    return 2;
}
