// A side file that keeps what was really played, epoch after epoch, so that the stimuli recomputed
// from the data file can be compared with it. Not portable: samples lie in the host's byte order.
#pragma once

#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <vector>

class PlayedSamplesWriter {
  public:
    explicit PlayedSamplesWriter(const std::string& path);
    void Append(std::span<const uint16_t> samples);

  private:
    std::ofstream file;
};

// One interleaved output buffer per play.
std::vector<std::vector<uint16_t>> ReadPlayedSamples(const std::string& path);
