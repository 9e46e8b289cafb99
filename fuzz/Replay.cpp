// Runs a fuzz target on the files of a folder, without a fuzzer.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "ITCFileIO/StimulusTypes.h"
#include "Session.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int count, char** names) {
    if (count != 2) return 2;
    for (const auto& entry : std::filesystem::directory_iterator(names[1])) {
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(stream)), {});
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    size_t reached = 0;
    for (uint32_t type = 1; type <= corvantis::kLargestType; ++type)
        reached += corvantis_fuzz::reachedTypes.count(static_cast<int32_t>(type));
    std::fprintf(stderr, "%zu stimulus types of %u are reached\n", reached,
                 corvantis::kLargestType);
    return reached == corvantis::kLargestType ? 0 : 1;
}
