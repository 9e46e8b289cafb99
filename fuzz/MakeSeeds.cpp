// Makes the first inputs of the fuzz targets: small recordings of every kind, their records, and
// sequences of calls.  Usage: MakeSeeds FOLDER
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "ITCFileIO/StimulusTypes.h"

namespace {

// Of pulses and the like 5 before, 5 at and 5 behind the amplitude.
constexpr uint32_t kAnyWord = 5;
constexpr uint32_t kPoints = 3 * kAnyWord;
// Four kinds of reading of six channels.
constexpr uint32_t kWaysToRead = 24;

void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string Word(uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<char>(value >> shift));
    return bytes;
}

// Every field of it the same; a sum of a pulse and noise.
std::string RecordBytes(uint32_t type) {
    std::string bytes;
    const uint32_t size = corvantis::TypeRow(type).record->fileSize;
    while (bytes.size() < size) bytes += Word(kAnyWord);
    if (type != ITC_STIMULUS_SUMMED) return bytes;
    bytes = Word(2) + "\x03\x02";
    bytes.resize(size);
    return bytes + RecordBytes(3) + RecordBytes(2);
}

std::string EpochBytes(uint32_t type, uint32_t entries) {
    std::string bytes(912, '\0');
    bytes.replace(572, 12, Word(100) + Word(kPoints) + Word(entries));
    bytes.replace(605, entries, std::string(entries, static_cast<char>(type)));
    for (uint32_t entry = 0; entry < entries; ++entry) {
        bytes += RecordBytes(type);
        if (type == ITC_STIMULUS_DYNAMIC_CLAMP) bytes.resize(bytes.size() + 8 * kPoints);
    }
    bytes.resize(bytes.size() + 2 * kPoints * entries);
    return bytes;
}

// Two epochs, with a given type on every sequence entry. The comment, any number, changes the sum
// of the bytes, by which FuzzDataFile chooses how to read the file.
std::string FileBytes(uint32_t type, uint32_t entries, char version, char comment) {
    const std::string epoch = EpochBytes(type, entries);
    const auto size = static_cast<uint32_t>(epoch.size());
    std::string header(580, '\0');
    header[0] = version;
    header[8] = comment;
    header.replace(536, 8, Word(2) + Word(580 + 2 * size));
    return header + epoch + epoch + Word(580) + Word(580 + size);
}

// The headers and the record behind them, each with the byte that picks its codec.
void WriteRecordSeeds(const std::filesystem::path& folder, uint32_t type) {
    const std::string file = FileBytes(type, 1, 8, 0);
    const std::pair<char, size_t> parts[] = {
        {'\0', 0}, {'\5', 580}, {'\10', 580}, {static_cast<char>(type), 580 + 912}};
    for (const auto& [codec, position] : parts) {
        WriteBytes(folder / (std::to_string(type) + "-" + std::to_string(codec)),
                   codec + file.substr(position));
    }
}

// Set up one or four entries of 16 points, install, update, save twice, read back.
void WriteCallSeed(const std::filesystem::path& folder, char type, char sequence) {
    std::string calls = {0, sequence, sequence, 1, 100, 0, 16, 0, 1, static_cast<char>(type - 1)};
    for (int i = 0; i < 48; ++i) calls.push_back(i % 4 == 0 ? 4 : 0);
    calls += {2, 3, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0};
    WriteBytes(folder / (std::to_string(type) + "-" + std::to_string(sequence)), calls);
}

}  // namespace

int main(int count, char** names) {
    if (count != 2) return 2;
    const std::filesystem::path folder = names[1];
    for (uint32_t type = 1; type <= corvantis::kLargestType; ++type) {
        for (uint32_t choice = 0; choice < 4 * kWaysToRead; ++choice) {
            const std::string name = std::to_string(type) + "-" + std::to_string(choice);
            const uint32_t entries = choice / 2 % 2 == 0 ? 1 : 4;
            const char version = choice % 2 == 0 ? 4 : 8;
            WriteBytes(folder / "FuzzDataFile" / name,
                       FileBytes(type, entries, version, static_cast<char>(choice / 4)));
        }
        WriteRecordSeeds(folder / "FuzzRecords", type);
        for (const char sequence : {0, 3}) {
            WriteCallSeed(folder / "FuzzCalls", static_cast<char>(type), sequence);
        }
    }
    return 0;
}
