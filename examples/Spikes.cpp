// Counting overshoots, as done by eye on the oscilloscope.
#include "Spikes.h"

std::vector<size_t> FindSpikes(std::span<const double> potential) {
    std::vector<size_t> points;
    for (size_t k = 1; k < potential.size(); ++k)
        if (potential[k - 1] < 0 && potential[k] >= 0) points.push_back(k);
    return points;
}
