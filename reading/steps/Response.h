// What a response does: spikes, and its levels before, during and at the end of a step.
#pragma once

#include <cmath>
#include <cstdint>
#include <span>

namespace corvantis::reading {

// Upward crossings of a threshold in values that come piece by piece; the first value is none.
class SpikeCount {
  public:
    explicit SpikeCount(double threshold) : threshold_(threshold) {}
    void Take(double value) {
        const bool isAbove = value > threshold_;
        count_ += isAbove && !wasAbove_ ? 1 : 0;
        wasAbove_ = isAbove;
    }
    int64_t Get() const { return count_; }

  private:
    double threshold_;
    bool wasAbove_ = true;
    int64_t count_ = 0;
};

struct MeanOf {
    double sum = 0.0;
    int64_t count = 0;
    void Take(double value) {
        sum += value;
        ++count;
    }
    double Get() const { return sum / static_cast<double>(count); }
};

struct Farthest {
    double from;
    double value = from;
    void Take(double each) {
        if (std::fabs(each - from) > std::fabs(value - from)) value = each;
    }
};

}  // namespace corvantis::reading
