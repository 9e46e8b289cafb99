// Reads a data file through the analysis interface.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// From converter counts to a physical unit.
struct Scale {
    double unitsPerCount;
    std::string unit;
};

// A stimulus record, or one component of a sum. What its type has not stands at 0.
struct Component {
    int32_t type;
    int32_t amplitude, mean;    // [DAC codes]
    int32_t prePoints, points;  // [samples]
    bool hasLevels, hasPoints;
};

// One sequence entry: what it played and what it recorded.
struct Entry {
    std::vector<Component> stimulus;  // more than one where the stimulus is a sum
    Scale stimulusScale;
    Scale responseScale;
};

struct Epoch {
    int32_t number;
    int32_t interval;  // one pass of the sequence [µs]
    int32_t points;    // per entry [samples]
    std::string comment;
    std::vector<Entry> entries;
    std::vector<uint16_t> acquired;  // interleaved

    double Milliseconds(double samples) const { return samples * interval / 1000; }
};

// An open data file. One at a time: the library holds a single file.
class Recording {
  public:
    explicit Recording(const std::string& path);
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    int32_t version;
    int32_t epochs;
    std::string comment;
};

// Of the recording that is open.
Epoch ReadEpoch(int32_t number);
// Interleaved, as Epoch::acquired.
std::vector<uint16_t> RecomputeStimulus(const Epoch& epoch);

// The samples of one entry in physical units.
std::vector<double> Samples(std::span<const uint16_t> interleaved, const Epoch& epoch, size_t entry,
                            const Scale& scale);

// For example "200 pA".
std::string LevelText(int32_t counts, const Scale& scale);

// For example "pulse 200 pA, 500 ms"; the components of a sum are joined by " + ".
std::string StimulusText(const Epoch& epoch, const Entry& entry);
