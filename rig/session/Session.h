// The library's session of a recording: the device, the data file, and one epoch after the other.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "plan/PlannedEpoch.h"

namespace corvantis::rig {

class Session {
  public:
    // Starts the library with a device. Throws a Failure.
    //   samples  of the longest epoch
    Session(int32_t device, int64_t samples);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void* Device() const;
    // Creates the data file, which must not exist. Throws a Failure.
    void CreateFile(const std::string& path, const std::string& comment);

    // Makes the epoch the current one and computes its stimulus, which draws its noise. Throws a
    // Failure.
    //   time  of its beginning [s]
    void Compute(const PlannedEpoch& epoch, double time);
    // Arms the device too.
    void Prepare(const PlannedEpoch& epoch, double time);
    std::span<const uint16_t> Stimulus() const;
    std::span<uint16_t> Response();
    // The sequence as the device has it.
    const uint32_t* Sequence() const;
    void SetComment(const std::string& comment);
    // Whether the epoch is in the file now; if not, it may be tried again.
    bool Save();

  private:
    std::vector<uint16_t> acquired_, stimulus_;
    uint16_t* acquiredSamples_;
    uint16_t* stimulusSamples_;
    bool hasFile_ = false;
};

}  // namespace corvantis::rig
