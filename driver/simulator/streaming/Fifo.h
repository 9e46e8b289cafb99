// A buffer of samples that are taken in the order in which they were put.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace itc18 {

class Fifo {
  public:
    explicit Fifo(size_t capacity) : samples(capacity) {}

    size_t Held() const { return held; }
    size_t Free() const { return samples.size() - held; }
    void Clear() { first = held = 0; }

    // Puts as many as there is room for, and says how many.
    size_t Put(std::span<const uint16_t> source) {
        const size_t count = std::min(source.size(), Free());
        const size_t begin = Place(held);
        const size_t straight = std::min(count, samples.size() - begin);
        std::copy_n(source.data(), straight, samples.data() + begin);
        std::copy_n(source.data() + straight, count - straight, samples.data());
        held += count;
        return count;
    }

    // Takes as many as there are, and says how many.
    size_t Take(std::span<uint16_t> target) {
        const size_t count = std::min(target.size(), held);
        const size_t straight = std::min(count, samples.size() - first);
        std::copy_n(samples.data() + first, straight, target.data());
        std::copy_n(samples.data(), count - straight, target.data() + straight);
        first = Place(count);
        held -= count;
        return count;
    }

  private:
    // Of the sample that lies so many behind the first one.
    size_t Place(size_t behind) const {
        const size_t place = first + behind;
        return place < samples.size() ? place : place - samples.size();
    }

    std::vector<uint16_t> samples;
    size_t first = 0, held = 0;
};

}  // namespace itc18
