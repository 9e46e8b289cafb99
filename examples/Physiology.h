// Is the recorded membrane the one that Hodgkin and Huxley described? Compares its responses to
// pulses of current with what has been published.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "Recording.h"

// The response of a resting membrane to one pulse of current.
struct PulseResponse {
    double current;      // [pA]
    double rest;         // mean potential before the pulse [mV]
    double peak;         // [mV]
    size_t spikes;       // while the pulse lasts
    size_t laterSpikes;  // after it
    double rate;         // of the spikes in the pulse, 0 for fewer than two [Hz]
};

struct Finding {
    std::string subject, found, expected, source;
    bool asExpected;
};

// The epoch's only entry plays a pulse from a holding level of 0 and records the potential [mV].
PulseResponse MeasurePulse(const Epoch& epoch, std::span<const double> potential);

// One finding for every published value; a pulse that was not recorded is not as expected.
std::vector<Finding> CompareWithLiterature(std::span<const PulseResponse> responses);
