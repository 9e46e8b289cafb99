// What goes between the loop-back's player and its program, over one socket, in the machine's own
// byte order: a header, then `count` samples. The answer is as long as the question.
#pragma once

#include <cstdint>

namespace loopback {

struct FrameHeader {
    uint32_t epoch;  // counted by the player; another one begins with a delay of zeros
    uint32_t delay;  // [samples]
    uint32_t count;  // samples that follow, 0 to kMostSamples
};

constexpr uint32_t kMostSamples = 4096;
constexpr uint32_t kMostDelay = 4096;

}  // namespace loopback
