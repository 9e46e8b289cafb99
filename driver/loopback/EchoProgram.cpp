// The program behind the loop-back: sends every sample back on standard input's socket, late by a
// delay.
// Usage: corvantis-loopback DIE_AFTER HANG_AFTER, both in samples, -1: never
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <deque>
#include <vector>

#include "loopback/Frame.h"

namespace {

using loopback::FrameHeader;

constexpr int kSocket = 0;

struct Echo {
    int64_t dieAfter = -1, hangAfter = -1;
    int64_t echoed = 0;
    uint32_t epoch = 0;  // none has this number
    std::deque<uint16_t> line;
};

bool ReadWhole(void* target, size_t bytes) {
    auto* place = static_cast<char*>(target);
    while (bytes > 0) {
        const ssize_t got = read(kSocket, place, bytes);
        if (got <= 0) return false;
        place += got;
        bytes -= static_cast<size_t>(got);
    }
    return true;
}

bool WriteWhole(const void* source, size_t bytes) {
    const auto* place = static_cast<const char*>(source);
    while (bytes > 0) {
        const ssize_t sent = write(kSocket, place, bytes);
        if (sent <= 0) return false;
        place += sent;
        bytes -= static_cast<size_t>(sent);
    }
    return true;
}

// Says nothing more, until nobody is there to hear it.
void Hang() {
    char unheard[4096];
    while (read(kSocket, unheard, sizeof unheard) > 0) continue;
    std::exit(0);
}

void Delay(Echo& echo, const FrameHeader& header, std::vector<uint16_t>& samples) {
    if (header.epoch != echo.epoch) echo.line.assign(header.delay, 0);
    echo.epoch = header.epoch;
    for (uint16_t& sample : samples) {
        if (echo.echoed == echo.hangAfter) Hang();
        if (echo.echoed++ == echo.dieAfter) std::raise(SIGKILL);
        echo.line.push_back(sample);
        sample = echo.line.front();
        echo.line.pop_front();
    }
}

bool AnswerFrame(Echo& echo) {
    FrameHeader header;
    if (!ReadWhole(&header, sizeof header)) return false;
    if (header.count > loopback::kMostSamples || header.delay > loopback::kMostDelay) return false;
    std::vector<uint16_t> samples(header.count);
    const size_t bytes = samples.size() * sizeof(uint16_t);
    if (!ReadWhole(samples.data(), bytes)) return false;
    Delay(echo, header, samples);
    return WriteWhole(&header, sizeof header) && WriteWhole(samples.data(), bytes);
}

}  // namespace

int main(int argc, char** argv) {
    Echo echo;
    if (argc > 1) echo.dieAfter = std::strtoll(argv[1], nullptr, 10);
    if (argc > 2) echo.hangAfter = std::strtoll(argv[2], nullptr, 10);
    while (AnswerFrame(echo)) continue;
}
