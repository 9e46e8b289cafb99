// Makes the first inputs of the fuzz targets, small recordings of every kind and sequences of
// calls.  Usage: MakeSeeds FOLDER
#include <filesystem>
#include <fstream>

#include "SeedFiles.h"

namespace {

// Set up one or four entries of 16 points, install, update, save twice, read back.
std::string CallBytes(uint32_t type, char sequence) {
    std::string calls = {0, sequence, sequence, 1, 100, 100, 16, 0, 1, static_cast<char>(type - 1)};
    for (int i = 0; i < 48; ++i) calls.push_back(i % 4 == 0 ? 4 : 0);
    return calls + std::string({4, 12, 1, 0, 0, 2, 3, 3, 4, 0, 0, 0, 0, 0, 0, 0});
}

}  // namespace

int main(int count, char** names) {
    if (count != 2) return 2;
    const std::filesystem::path files = std::filesystem::path(names[1]) / "FuzzDataFile";
    const std::filesystem::path calls = std::filesystem::path(names[1]) / "FuzzCalls";
    const std::filesystem::path readings = std::filesystem::path(names[1]) / "FuzzReading";
    for (const auto& folder : {files, calls, readings}) std::filesystem::create_directories(folder);
    for (uint32_t type = 1; type <= corvantis::kLargestType; ++type) {
        const std::string name = std::to_string(type) + "-";
        // Two versions and two lengths of the sequence, each with the channels and components that
        // FuzzDataFile chooses by the sum of the bytes.
        for (uint32_t choice = 0; choice < 4 * 30; ++choice) {
            std::ofstream(files / (name + std::to_string(choice)), std::ios::binary)
                << corvantis_fuzz::FileBytes(type, choice & 2 ? 4 : 1, choice & 1 ? 8 : 4,
                                             choice / 4);
        }
        // The whole file at once, or in two parts, with some read or none that fails.
        for (uint32_t choice = 0; choice < 8; ++choice) {
            const char parts = choice & 4 ? 40 : 0;
            std::ofstream(readings / (name + std::to_string(choice)), std::ios::binary)
                << std::string({static_cast<char>(3 * (choice / 2)), parts})
                << corvantis_fuzz::FileBytes(type, choice & 2 ? 4 : 1, choice & 1 ? 8 : 4, 0);
        }
        for (const char sequence : {0, 3}) {
            std::ofstream(calls / (name + std::to_string(sequence)), std::ios::binary)
                << CallBytes(type, sequence);
        }
    }
    return 0;
}
