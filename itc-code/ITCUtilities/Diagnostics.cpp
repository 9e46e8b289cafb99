// The texts that the library prints on standard output.
#include "ITCUtilities/Diagnostics.h"

#include <cstdio>

namespace corvantis {

void PrintLine(const char* text) { std::printf("%s\n", text); }

void PrintFailPoint(const char* module, int line) {
    std::printf("Fail-point (%s:%i)\n", module, line);
}

void PrintStimulusType(uint32_t type) { std::printf("stim type %d\n", static_cast<int>(type)); }

void PrintUnrecognizedType(int line) {
    // No line end of its own: the fail-point follows on the same line, and readers match the pair.
    std::printf("FileIO: Unrecognized stimulus-type");
    PrintFailPoint(kFileIOModule, line);
}

void PrintLatencyTooSmall(int32_t pointsLatency, uint32_t limit) {
    // "%u" and then a letter l: the limit prints as "5l", and stays so for whoever parses it.
    std::printf("points-latency (%li) must be greater than pipeline-length (%ul)\n",
                static_cast<long>(pointsLatency), static_cast<unsigned>(limit));
}

void PrintLatencyTooLarge(int32_t pointsLatency, uint32_t limit) {
    std::printf("points-latency (%li) is too large; should be no more than %u\n",
                static_cast<long>(pointsLatency), static_cast<unsigned>(limit));
}

}  // namespace corvantis
