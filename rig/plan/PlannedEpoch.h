// One epoch as it will be played and stored: every amount in DAC codes and points.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "epochs/EpochLayout.h"
#include "plan/Occurrences.h"
#include "plan/Settings.h"
#include "units/Scale.h"

namespace corvantis::rig {

// A step of potential, by whose answer a seal is judged.
struct SealStep {
    size_t entry = 0;
    int32_t start = 0, points = 0;
    int32_t amplitude = 0;  // [DAC codes]
};

struct PlannedEpoch {
    reading::EpochContent content;
    std::string inputs, outputs;   // as ITCSetSeq has them
    std::vector<int32_t> holding;  // of each entry [DAC codes]
    std::vector<float> excitatory, inhibitory;
    int64_t pause = 0;  // before it, at the holding levels [µs]
    bool waitsForTrigger = false;
    Settings settings;  // that the player is told before
    std::optional<SealStep> seal;

    int32_t Entries() const { return content.header.sequenceLength; }
    int64_t Samples() const { return int64_t{content.header.epochPoints} * Entries(); }
    int64_t Microseconds() const {
        return int64_t{content.header.epochPoints} * content.header.samplingInterval;
    }
    bool IsDynamicClamp() const { return !excitatory.empty(); }
    const reading::Stimulus* DynamicClamp() const;
};

// Throws a Failure that names the line and the field.
PlannedEpoch PlanEpoch(const Protocol& protocol, const Occurrence& occurrence);

// The file header's part in units: what the library puts into every new file.
const ITCFileHeader& NewFileHeader();
reading::Scale StimulusScaleOf(const PlannedEpoch& epoch, size_t entry);
reading::Scale ResponseScaleOf(const PlannedEpoch& epoch, size_t entry);

}  // namespace corvantis::rig
