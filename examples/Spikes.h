// Spikes in a recorded membrane potential.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

// The points at which the potential [mV] has risen through 0.
std::vector<size_t> FindSpikes(std::span<const double> potential);
