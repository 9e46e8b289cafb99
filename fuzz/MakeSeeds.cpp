// Makes the first inputs of the fuzz targets: small recordings of every kind, their records, and
// sequences of calls.  Usage: MakeSeeds FOLDER
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "Corvantis.h"

namespace {

constexpr int32_t kPoints = 16;

using Bytes = std::vector<char>;

void WriteBytes(const std::filesystem::path& path, const Bytes& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

Bytes ReadBytes(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void InstallOne(int32_t type, int32_t channel) {
    const ITCSineParameters sine = {1000, 10, 5, 0, 8, 4, 4, {}};
    const ITCNoiseParameters noise = {1000, 10, 7, 8, 4, 4, 3, 1000, 2};
    const ITCPulseParameters pulse = {1000, 10, 8, 4, 4, {}};
    const ITCRampParameters ramp = {1000, 10, 8, 4, 4, {}};
    const ITCGenericParameters generic = {1000, 10, 8, 4, 4, {}};
    const ITCTrigSeriesParameters trigger = {10, 1000, 3, 8, 4, 4, {}};
    const ITCSegmentedNoiseParameters segmented = {1000, 10, 7, 8, 4, 4, 2, {}};
    const ITCBinaryNoiseParameters binary = {1000, 10, 7, 8, 4, 4, 2, {}};
    const ITCGClampParameters clamp = {0.0F, -70.0F};
    const ITCCirclePulseParameters circle = {1, 2, 3, {4, 5, 6}, {7, 8, 9}, 8, 4, 4};
    const ITCAlternateVoltageParameters alternating = {2, 1000, 10, 8, 4, 4, {}};
    const ITCSpatialStmParameters spatial = {kPoints, {}};
    static const std::array<uint16_t, kPoints> wave = {};
    const ITCFilewaveParameters filewave = {wave.data(), kPoints};
    ITCSummedParameters sum = {};
    sum.count = 2;
    const std::array<std::function<int32_t()>, 15> builders = {
        [] { return 0; },
        [&] { return ITCSineParams(channel, &sine); },
        [&] { return ITCNoiseParams(channel, &noise); },
        [&] { return ITCPulseParams(channel, &pulse); },
        [&] { return ITCRampParams(channel, &ramp); },
        [&] { return ITCFilewaveParams(channel, &filewave); },
        [&] { return ITCGenericParams(&generic); },
        [&] { return ITCSummedParams(channel, &sum); },
        [&] { return ITCTrigSeriesParams(channel, &trigger); },
        [&] { return ITCSegmentedNoiseParams(channel, &segmented); },
        [&] { return ITCBinaryNoiseParams(channel, &binary); },
        [&] { return ITCGClampParams(channel, &clamp, 6); },
        [&] { return ITCCirclePulseParams(channel, &circle); },
        [&] { return ITCAltVoltageParams(channel, &alternating); },
        [&] { return ITCSpatialParams(channel, &spatial); }};
    builders.at(static_cast<size_t>(type))();
    if (type != ITC_STIMULUS_SUMMED) return;
    ITCAddPulseParams(static_cast<uint32_t>(channel), &pulse);
    ITCAddNoiseParams(static_cast<uint32_t>(channel), &noise);
}

// A recording of two epochs, with a given type on every sequence entry.
Bytes Record(const std::filesystem::path& path, int32_t type, int32_t entries, int8_t version) {
    std::array<float, kPoints> conductance = {};
    ExcitatoryG = conductance.data();
    InhibitoryG = conductance.data();
    std::memset(epochhdr, 0, sizeof *epochhdr);
    std::memset(filehdr, 0, sizeof *filehdr);
    filehdr->version = version;
    ITCCreateFile(path.c_str(), 1);
    epochhdr->samplingInterval = 100;
    epochhdr->epochPoints = kPoints;
    epochhdr->sequenceLength = entries;
    for (int32_t channel = 0; channel < entries; ++channel) InstallOne(type, channel);
    ITCSaveToFile();
    ITCSaveToFile();
    ITCCloseFile();
    for (uint32_t channel = 0; channel < ITC_CHANNELS; ++channel) ITCFreeParams(channel);
    return ReadBytes(path);
}

// The first epoch's header and the record behind it, each with the byte that picks its codec.
void WriteRecordSeeds(const std::filesystem::path& folder, const Bytes& file, int32_t type) {
    const std::array<std::pair<char, ptrdiff_t>, 4> parts = {
        {{0, 0}, {5, 580}, {8, 580}, {static_cast<char>(type), 580 + 912}}};
    for (const auto& [codec, position] : parts) {
        Bytes seed = {codec};
        seed.insert(seed.end(), file.begin() + position, file.end());
        WriteBytes(folder / ("type" + std::to_string(type) + "-" + std::to_string(codec)), seed);
    }
}

void WriteCallSeeds(const std::filesystem::path& folder) {
    // Set up one or four entries of 16 points, install, update, save twice, read back.
    for (uint8_t type = 1; type <= 12; ++type) {
        for (const uint8_t sequence : {uint8_t{0}, uint8_t{3}}) {
            Bytes calls = {
                0, static_cast<char>(sequence), static_cast<char>(sequence), 1, 100, 0, 16, 0};
            calls.push_back(static_cast<char>(type));
            for (int i = 0; i < 48; ++i) calls.push_back(i % 4 == 0 ? 4 : 0);
            for (const char call : {13, 14, 14, 15}) calls.push_back(call);
            calls.resize(calls.size() + 8);
            const std::string name = std::to_string(type) + "-" + std::to_string(sequence);
            WriteBytes(folder / name, calls);
        }
    }
}

}  // namespace

int main(int count, char** names) {
    if (count != 2 || ITCInitializeAnalysis(4096) != ITC_SUCCESS) return 2;
    const std::filesystem::path folder = names[1];
    std::filesystem::create_directories(folder);
    const std::filesystem::path scratch = folder / "scratch";
    for (int32_t type = 1; type <= ITC_STIMULUS_SPATIAL; ++type) {
        for (const int32_t entries : {1, 2, 4}) {
            for (const int8_t version : {int8_t{4}, int8_t{8}}) {
                // A start-up of its own: files are not to continue each other.
                if (ITCInitializeAnalysis(4096) != ITC_SUCCESS) return 2;
                const Bytes file = Record(scratch, type, entries, version);
                const std::string name = "type" + std::to_string(type) + "-entries" +
                                         std::to_string(entries) + "-version" +
                                         std::to_string(version);
                WriteBytes(folder / "FuzzDataFile" / name, file);
                if (entries == 1) WriteRecordSeeds(folder / "FuzzRecords", file, type);
            }
        }
    }
    std::filesystem::remove(scratch);
    WriteCallSeeds(folder / "FuzzCalls");
    return 0;
}
