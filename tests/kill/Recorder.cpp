// Records the same epochs each time it is run, one byte on standard output for each that is saved.
// Usage: KillRecorder FILE EPOCHS
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "Corvantis.h"

namespace {

constexpr int32_t kMostPoints = 1500;

std::array<uint16_t, 2 * kMostPoints> input;
std::array<uint16_t, 2 * kMostPoints> output;
std::array<float, kMostPoints> conductance;

void Require(int32_t result) {
    if (result != ITC_SUCCESS) std::exit(1);
}

void SetUp(const char* sequence, int32_t points) {
    const int32_t entries = sequence[1] == '\0' ? 1 : 2;
    Require(ITCSetSeq(sequence, sequence) == ITC_NOT_STARTED ? ITC_SUCCESS : ITC_BAD_ARGUMENT);
    Require(ITCSetAcqParams(50 * entries, points, 0, 0));
}

void InstallPulse(int32_t channel, int32_t points) {
    const ITCPulseParameters pulse = {1000, 0, points - 20, 10, 10, {}};
    Require(ITCPulseParams(channel, &pulse));
}

void InstallSum(int32_t points) {
    const ITCNoiseParameters noise = {300, 0, points, points, 0, 0, 0, 500, 1};
    const ITCRampParameters ramp = {900, 0, points, 0, 0, {}};
    ITCSummedParameters sum = {};
    sum.count = 2;
    Require(ITCSummedParams(0, &sum));
    Require(ITCAddNoiseParams(0, &noise));
    Require(ITCAddRampParams(0, &ramp));
}

// The four shapes that an epoch has in the file, in turn and of different lengths.
void SetUpEpoch(int32_t number) {
    const int32_t points = 100 + number * 137 % (kMostPoints - 100);
    const ITCGClampParameters clamp = {0.0F, -70.0F};
    SetUp(number % 4 == 3 ? "01" : "0", points);
    switch (number % 4) {
        case 0:
            return InstallPulse(0, points);
        case 1:
            return Require(ITCGClampParams(0, &clamp, 6));
        case 2:
            return InstallSum(points);
        default:
            InstallPulse(0, points);
            InstallPulse(1, points);
    }
}

void FillSamples(int32_t number) {
    for (size_t i = 0; i < input.size(); ++i) {
        input[i] = static_cast<uint16_t>(i * 31 + static_cast<size_t>(number) * 17);
    }
    for (size_t i = 0; i < conductance.size(); ++i) {
        conductance[i] = static_cast<float>(i) * 0.25F + static_cast<float>(number);
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return 2;
    uint16_t* inputBuffer = input.data();
    uint16_t* outputBuffer = output.data();
    const int32_t capacity = static_cast<int32_t>(input.size());
    ExcitatoryG = conductance.data();
    InhibitoryG = conductance.data();
    Require(ITCInitAnalysis(&inputBuffer, &outputBuffer, &capacity));
    filehdr->version = ITC_FILE_VERSION;
    Require(ITCCreateFile(arguments[1], 1));
    for (int32_t number = 0; number < std::atoi(arguments[2]); ++number) {
        SetUpEpoch(number);
        FillSamples(number);
        epochhdr->epochTime = static_cast<float>(number);
        Require(ITCSaveToFile());
        if (write(STDOUT_FILENO, ".", 1) != 1) return 1;
    }
    return ITCCloseFile();
}
