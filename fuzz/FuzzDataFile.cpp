// Any bytes as a data file: open, read every epoch in every way, recompute its stimulus.
#include <numeric>

#include "Session.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    corvantis_fuzz::StartLibrary();
    const corvantis_fuzz::MemoryFile file(data, size);
    const uint32_t choice = std::accumulate(data, data + size, uint32_t{0});
    corvantis_fuzz::ExerciseFile(file.Path(), choice);
    return 0;
}
