// Computing the stimulus of an epoch's entries from their records.
#pragma once

#include <cstdint>
#include <string>

#include "ITCUtilities/Memory.h"
#include "ITCUtilities/Random/NoiseGenerators.h"
#include "epochs/EpochLayout.h"

namespace corvantis::reading {

// Why an entry's stimulus cannot be computed, in words; empty if it can.
std::string WhyNotComputed(const EpochContent& content, size_t entry);

// One entry's samples, as many as the epoch has points, those that no stimulus covers being 0. The
// generators are to stand where its noise begins and are left where it ends. Null without memory,
// or where the record has no waveform after all.
OwnedBlock<uint16_t> ComputeEntry(const EpochContent& content, size_t entry, int8_t version,
                                  NoiseGenerators& generators);

// What one component of a sum adds to it, likewise; the generators are left behind that component.
OwnedBlock<uint16_t> ComputeComponent(const EpochContent& content, size_t entry, size_t component,
                                      int8_t version, NoiseGenerators& generators);

// Draws what the entry's noise draws.
void PassOver(const EpochContent& content, size_t entry, int8_t version,
              NoiseGenerators& generators);

}  // namespace corvantis::reading
