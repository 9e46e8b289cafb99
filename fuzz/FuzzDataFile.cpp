// Any bytes as a data file: open, read every epoch in every way, recompute its stimulus.
#include "Session.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    corvantis_fuzz::StartLibrary();
    const corvantis_fuzz::MemoryFile file(data, size);
    corvantis_fuzz::ExerciseFile(file.Path());
    return 0;
}
