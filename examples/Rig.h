// The rig: the interface with its sample buffers, the amplifier's settings and the data file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "PlayedSamples.h"
#include "Protocol.h"

class Rig {
  public:
    // Starts the library, opens interface 0 and creates the data file, which must not exist yet,
    // and the side file of the played samples.
    explicit Rig(const std::string& path);
    ~Rig();
    Rig(const Rig&) = delete;
    Rig& operator=(const Rig&) = delete;

    // Sets the interface up, plays the plan's stimulus and appends the epoch to the data file.
    void Record(const EpochPlan& plan);

  private:
    void Play();

    std::vector<uint16_t> acquired;
    std::vector<uint16_t> stimulus;
    uint16_t* acquiredSamples;
    uint16_t* stimulusSamples;
    double clock = 0;  // time since the start of the recording [s]
    std::optional<PlayedSamplesWriter> played;
};
