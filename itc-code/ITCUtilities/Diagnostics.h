// Every line that the library prints on standard output; callers compare these texts.
#pragma once

#include <cstdint>

namespace corvantis {

inline constexpr char kInitializeModule[] = "itc-code/ITCInitialize";
inline constexpr char kFileAccessModule[] = "itc-code/ITCFileAccess";
inline constexpr char kFileIOModule[] = "itc-code/ITCFileIO";

void PrintLine(const char* text);
void PrintFailPoint(const char* module, int line);
void PrintStimulusType(uint32_t type);
void PrintUnrecognizedType(int line);
void PrintLatencyTooSmall(int32_t pointsLatency, uint32_t limit);
void PrintLatencyTooLarge(int32_t pointsLatency, uint32_t limit);

}  // namespace corvantis
