// How cost grows: waveforms of 1,000 to 10,000,000 points, and a file of very many epochs.
// Usage: corvantis-scale [EPOCHS]   (100,000 unless given; the file goes to TMPDIR)
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "Corvantis.h"

namespace {

constexpr int32_t kLargest = 10000000;
constexpr int32_t kEpochPoints = 100;

double CpuSeconds() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

int64_t LargestMemoryKilobytes() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// The median of five measurements, each of about ten million points.
double NanosecondsPerSample(int32_t points, const std::function<void()>& calculate) {
    std::vector<double> times;
    const int rounds = kLargest / points;
    for (int repetition = 0; repetition < 5; ++repetition) {
        const double start = CpuSeconds();
        for (int round = 0; round < rounds; ++round) calculate();
        times.push_back(1e9 * (CpuSeconds() - start) / (double(rounds) * points));
    }
    std::sort(times.begin(), times.end());
    return times[2];
}

template <class Record, class Create>
void PrintRow(const char* name, Record record, Create create) {
    static std::vector<uint16_t> samples(kLargest);
    std::fprintf(stderr, "%-22s", name);
    for (int32_t points = 1000; points <= kLargest; points *= 10) {
        record.points = points;
        std::fprintf(stderr, " %10.3f", NanosecondsPerSample(points, [&] {
                         create(reinterpret_cast<int16_t*>(samples.data()), &record);
                     }));
    }
    std::fprintf(stderr, "\n");
}

void PrintWaveforms() {
    epochhdr->samplingInterval = 100;
    std::fprintf(stderr, "ns per sample, points %11d %10d %10d %10d %10d\n", 1000, 10000, 100000,
                 1000000, kLargest);
    PrintRow("sine", ITCSineParameters{.amplitude = 12000, .mean = 100, .period = 37},
             ITCStmCreateSine);
    PrintRow("ramp", ITCRampParameters{.amplitude = 30000, .mean = 7}, ITCStmCreateRamp);
    PrintRow("segmented noise",
             ITCSegmentedNoiseParameters{.amplitude = 2000, .seed = 4, .segmentPoints = 1},
             ITCStmCreateSegmentedNoise);
    PrintRow(
        "filtered noise",
        ITCNoiseParameters{.amplitude = 2000, .seed = 4, .cutoffFrequency = 60, .filterOrder = 4},
        [](int16_t* samples, const ITCNoiseParameters* record) {
            ITCStmCreateNoise(reinterpret_cast<uint16_t*>(samples), record);
        });
}

void Check(int32_t result, const char* operation) {
    if (result == ITC_SUCCESS) return;
    std::fprintf(stderr, "corvantis-scale: %s: result %d\n", operation, result);
    std::exit(1);
}

// Calls once per epoch, and prints the mean time of each tenth.
void PrintTenths(const char* name, int32_t epochs, const std::function<void(int32_t)>& call) {
    std::fprintf(stderr, "%s, us per epoch by tenths:", name);
    double start = CpuSeconds();
    for (int32_t epoch = 0; epoch < epochs; ++epoch) {
        call(epoch);
        if ((epoch + 1) % (epochs / 10) != 0) continue;
        std::fprintf(stderr, " %.2f", 1e6 * (CpuSeconds() - start) / (epochs / 10));
        start = CpuSeconds();
    }
    std::fprintf(stderr, "\n");
}

// What the file format demands for every epoch, and nothing else: the whole table written behind
// it.
void PrintTableRewrite(const std::string& file, int32_t epochs) {
    std::FILE* stream = std::fopen(file.c_str(), "w+b");
    const std::vector<uint32_t> table(static_cast<size_t>(epochs));
    PrintTenths("table alone", epochs, [&](int32_t epoch) {
        std::rewind(stream);
        std::fwrite(table.data(), sizeof(uint32_t), static_cast<size_t>(epoch) + 1, stream);
        std::fflush(stream);
    });
    std::fclose(stream);
}

void PrintEpochs(int32_t epochs) {
    const char* folder = std::getenv("TMPDIR");
    const std::string file = std::string(folder == nullptr ? "/tmp" : folder) +
                             "/corvantis-scale-" + std::to_string(getpid());
    epochhdr->sequenceLength = 1;
    epochhdr->epochPoints = kEpochPoints;
    const ITCPulseParameters pulse = {.amplitude = 1000, .points = kEpochPoints};
    Check(ITCPulseParams(0, &pulse), "ITCPulseParams");
    PrintTableRewrite(file, epochs);
    Check(ITCCreateFile(file.c_str(), 1), "ITCCreateFile");
    PrintTenths("recording", epochs, [](int32_t) { Check(ITCSaveToFile(), "ITCSaveToFile"); });
    ITCCloseFile();
    Check(ITCOpenFile(file.c_str()), "ITCOpenFile");
    const int64_t memory = LargestMemoryKilobytes();
    PrintTenths("reading", epochs,
                [](int32_t epoch) { Check(ITCRetrieveEpoch(epoch), "ITCRetrieveEpoch"); });
    std::fprintf(stderr, "memory that reading added: %lld KiB\n",
                 static_cast<long long>(LargestMemoryKilobytes() - memory));
    ITCCloseFile();
    std::remove(file.c_str());
}

}  // namespace

int main(int argc, char** argv) {
    static std::vector<uint16_t> input(kLargest, 1);
    static std::vector<uint16_t> output(kLargest);
    static uint16_t* inputSamples = input.data();
    static uint16_t* outputSamples = output.data();
    int32_t capacity = kLargest;
    Check(ITCInitAnalysis(&inputSamples, &outputSamples, &capacity), "ITCInitAnalysis");
    const int32_t epochs = argc > 1 ? std::atoi(argv[1]) : 100000;
    PrintEpochs(std::max(epochs, 10));
    PrintWaveforms();
    return 0;
}
