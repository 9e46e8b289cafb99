// Stimuli that may not come out as they were played, and why.
#include <algorithm>

#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

constexpr int32_t kPoints = 64;
constexpr uint16_t kWave[kPoints] = {};

template <class Record>
Preparation Epoch(int32_t (*builder)(int32_t, const Record*), const Record& record) {
    return [=] {
        SetUpAcquisition(1, kPoints);
        ASSERT_EQ(builder(0, &record), 0);
    };
}

void GenericAndNoise() {
    const ITCGenericParameters generic = {1, 2, 60, 2, 2, {}};
    const ITCSegmentedNoiseParameters noise = {500, 7, 3, 60, 2, 2, 20, {}};
    SetUpAcquisition(2, kPoints);
    ASSERT_EQ(ITCGenericParams(&generic), 0);
    ASSERT_EQ(ITCSegmentedNoiseParams(1, &noise), 0);
}

class CheckStimulusTest : public ToolTest {
  protected:
    // One on each line.
    static std::string Findings(Bytes file, size_t offset, const Bytes& change) {
        Put(file, offset, change);
        WriteFile("file.dat", file);
        std::string found;
        for (const auto& finding : PartOf("check --json --stimulus file.dat", "findings")) {
            found += std::string(finding["place"]) + ": " + std::string(finding["found"]) + "\n";
        }
        return found;
    }
};

TEST_F(CheckStimulusTest, SaysWhichCannotBeComputedForCertainAndWhy) {
    const Preparation epochs[] = {GenericAndNoise,
                                  Epoch(ITCSegmentedNoiseParams, {500, 7, 9, 60, 2, 2, 15, {}}),
                                  Epoch(ITCNoiseParams, {500, 7, -5, 60, 2, 2, 4, 1000, 1}),
                                  Epoch(ITCFilewaveParams, {kWave, kPoints}),
                                  Epoch(ITCTrigSeriesParams, {0, 1, 2, kPoints, 0, 0, {}}),
                                  Epoch(ITCPulseParams, {1000, 7, 60, 2, 2, {}})};
    const Bytes file = RecordSteps("file.dat", {std::begin(epochs), std::end(epochs)}).back();
    const size_t tail = file.size() - 24 - kPoints * 2 - 32 + 12;
    const std::string expected[] = {
        "epoch 0, entry 0, generic stimulus: no waveform: only the application knows its waveform",
        "epoch 1, entry 0, segmented noise stimulus: epoch 0 cannot be recomputed: the noise "
        "behind",
        "epoch 2, entry 0, noise stimulus: epoch 0 cannot be recomputed",
        "epoch 3, entry 0, file wave stimulus: no waveform: the wave was the application's",
        "epoch 4, entry 0, trigger series stimulus: no waveform: its parameters are not stored",
        "table of positions, epoch 4: ",
        "table of positions, epoch 5: ",
        "epoch 5, entry 0, pulse stimulus: its lengths do not fill the epoch"};
    const std::string found = Findings(file, tail, Big32(1));
    EXPECT_EQ(std::count(found.begin(), found.end(), '\n'), std::ssize(expected)) << found;
    for (const std::string& each : expected) EXPECT_TRUE(Contains(found, each)) << each;
    // Older versions, also one below zero, drew filtered noise otherwise.
    for (const uint8_t version : {4, 0xC8})
        EXPECT_TRUE(Contains(Findings(file, 0, {version}), "recording machine's own generator"));
}

}  // namespace
}  // namespace corvantis_test
