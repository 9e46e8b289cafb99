// Whole operations of the library: computing the outputs, saving, retrieving, one field's getter.
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "Jobs.h"
#include "reference/Definitions.h"

namespace bench {
namespace {

constexpr int32_t kPoints = 250000;
constexpr int32_t kEntries = 4;
constexpr int32_t kShortPoints = 1000;
constexpr int32_t kShortEpochs = 64;
constexpr int32_t kEpochsPerFile = 8;
constexpr int32_t kInterval = 100;
constexpr uint32_t kShortSize = 912 + 32 + 2 * kShortPoints;

const ITCSineParameters kSine = {.amplitude = 9000, .mean = 3, .period = 41, .points = kPoints};
const ITCNoiseParameters kNoise = {.amplitude = 2000,
                                   .mean = 5,
                                   .seed = 7,
                                   .points = kPoints,
                                   .cutoffFrequency = 60,
                                   .filterOrder = 4};
const ITCSegmentedNoiseParameters kSegments = {
    .amplitude = 2000, .mean = 9, .seed = 11, .points = kPoints, .segmentPoints = 25};
const ITCRampParameters kRamp = {.amplitude = 20000, .mean = 1, .points = kPoints};

std::vector<uint16_t> input(size_t{kPoints} * kEntries, 0x1234);
std::vector<uint16_t> output(size_t{kPoints} * kEntries);
uint16_t* inputSamples = input.data();
uint16_t* outputSamples = output.data();

std::string Temporary(const char* name) {
    const char* folder = std::getenv("TMPDIR");
    return std::string(folder == nullptr ? "/tmp" : folder) + "/corvantis-benchmark-" +
           std::to_string(getpid()) + name;
}

// The files live as long as the program.
const std::string& RemovedAtExit(const char* name) {
    static std::array<std::string, 4> names;
    static size_t count = 0;
    names.at(count) = Temporary(name);
    if (count == 0) {
        std::atexit([] {
            for (const std::string& file : names) std::remove(file.c_str());
        });
    }
    return names.at(count++);
}

void SetUpLongEpoch() {
    *epochhdr = {};
    filehdr->version = 8;
    epochhdr->samplingInterval = kInterval;
    epochhdr->sequenceLength = kEntries;
    epochhdr->epochPoints = kPoints;
    ITCSineParams(0, &kSine);
    ITCNoiseParams(1, &kNoise);
    ITCSegmentedNoiseParams(2, &kSegments);
    ITCRampParams(3, &kRamp);
}

void StartFile(const std::string& file) {
    ITCCloseFile();
    filehdr->numEpochs = 0;
    ITCCreateFile(file.c_str(), 1);
}

void PlainUpdate() {
    std::array<std::vector<uint16_t>, kEntries> entries;
    std::array<uint16_t*, kEntries> samples;
    for (size_t c = 0; c < kEntries; ++c) {
        entries[c].resize(kPoints);
        samples[c] = entries[c].data();
    }
    definition::Sine(samples[0], kSine, kInterval);
    definition::SpectralNoise(samples[1], kNoise, kInterval);
    definition::SegmentedNoise(samples[2], kSegments);
    definition::Ramp(samples[3], kRamp);
    definition::Interleave(output.data(), samples.data(), kEntries, kPoints);
}

// Each form finds the file it works on open, whatever the form before it did.
enum class OpenFile { kNone, kSaving, kLong, kShort };
OpenFile openFile = OpenFile::kNone;

void SaveEpoch(const std::string& file) {
    static int epochs = 0;
    if (openFile != OpenFile::kSaving || epochs++ % kEpochsPerFile == 0) {
        SetUpLongEpoch();
        StartFile(file);
        openFile = OpenFile::kSaving;
    }
    ITCSaveToFile();
}

void Reopen(const std::string& file, OpenFile which) {
    if (openFile == which) return;
    ITCCloseFile();
    ITCOpenFile(file.c_str());
    openFile = which;
}

template <class Transfer>
std::function<void()> OnOwnStream(const std::string& file, const char* mode, Transfer transfer) {
    return [=, stream = std::fopen(file.c_str(), mode)] { transfer(stream); };
}

// As saving does: behind what is there already, in a file that starts anew every few epochs.
template <class Transfer>
std::function<void()> Appending(const std::string& file, Transfer transfer) {
    auto epochs = std::make_shared<int>(0);
    return OnOwnStream(file, "w+b", [=](FILE* stream) {
        if ((*epochs)++ % kEpochsPerFile == 0) {
            std::rewind(stream);
            if (ftruncate(fileno(stream), 0) != 0) std::perror("benchmarks");
        }
        transfer(stream);
        std::fflush(stream);
    });
}

auto WholeSamples() { return reinterpret_cast<int16_t*>(input.data()); }

void AddLongEpochJobs(Jobs& jobs) {
    const std::string& saved = RemovedAtExit("-saved");
    const std::string& other = RemovedAtExit("-other");
    const std::string& limit = RemovedAtExit("-limit");
    SetUpLongEpoch();
    jobs.push_back({"ITCUpdateStm, 4 entries",
                    kPoints,
                    PlainUpdate,
                    [] {
                        SetUpLongEpoch();
                        ITCUpdateStm();
                    },
                    {}});
    const size_t samples = size_t{kPoints} * kEntries;
    const std::function<void()> plainSave = Appending(other, [=](FILE* stream) {
        definition::WriteEpochHeader(stream, *epochhdr);
        definition::WriteShorts(stream, WholeSamples(), samples);
    });
    plainSave();
    jobs.push_back(
        {"ITCSaveToFile", kPoints, plainSave, [&] { SaveEpoch(saved); },
         Appending(limit, [=](FILE* stream) { std::fwrite(input.data(), 2, samples, stream); })});
    SaveEpoch(saved);
    jobs.push_back({"ITCRetrieveEpoch", kPoints,
                    OnOwnStream(other, "rb",
                                [=](FILE* stream) {
                                    std::rewind(stream);
                                    definition::ReadEpochHeader(stream, *epochhdr);
                                    definition::ReadShorts(stream, WholeSamples(), samples);
                                }),
                    [&] {
                        Reopen(saved, OpenFile::kLong);
                        ITCRetrieveEpoch(0);
                    },
                    OnOwnStream(other, "rb", [=](FILE* stream) {
                        std::rewind(stream);
                        std::fread(input.data(), 2, samples, stream);
                    })});
}

void RecordShortEpochs(const std::string& file) {
    StartFile(file);
    *epochhdr = {};
    epochhdr->sequenceLength = 1;
    epochhdr->epochPoints = kShortPoints;
    const ITCPulseParameters pulse = {.amplitude = 1000, .mean = 0, .points = kShortPoints};
    ITCPulseParams(0, &pulse);
    for (int32_t epoch = 0; epoch < kShortEpochs; ++epoch) ITCSaveToFile();
    ITCCloseFile();
}

// A different epoch each time.
template <class Get>
std::function<void()> FromNextEpoch(Get get) {
    auto epoch = std::make_shared<int32_t>(0);
    return [=] { get(*epoch = (*epoch + 1) % kShortEpochs); };
}

void AddGetterJob(Jobs& jobs) {
    const std::string& file = RemovedAtExit("-getter");
    RecordShortEpochs(file);
    FILE* stream = std::fopen(file.c_str(), "rb");
    static ITCEpochHeader header;
    static ITCPulseParameters pulse;
    jobs.push_back(
        {"per-epoch getter", 1, FromNextEpoch([=](int32_t epoch) {
             std::fseek(stream, 580 + epoch * long{kShortSize}, SEEK_SET);
             definition::ReadEpochHeader(stream, header);
             definition::ReadPulse(stream, pulse);
         }),
         FromNextEpoch([&](int32_t epoch) {
             Reopen(file, OpenFile::kShort);
             int32_t size = 0;
             ITCGetEpochSize(epoch, &size);
         }),
         FromNextEpoch([descriptor = fileno(std::fopen(file.c_str(), "rb"))](int32_t epoch) {
             char bytes[sizeof header + sizeof pulse];
             lseek(descriptor, 580 + epoch * long{kShortSize}, SEEK_SET);
             if (read(descriptor, bytes, sizeof bytes) < 0) std::perror("benchmarks");
         })});
}

}  // namespace

void StartLibrary() {
    static int32_t capacity = kPoints * kEntries;
    ITCInitAnalysis(&inputSamples, &outputSamples, &capacity);
}

void AddSessionJobs(Jobs& jobs) {
    AddLongEpochJobs(jobs);
    AddGetterJob(jobs);
}

}  // namespace bench
