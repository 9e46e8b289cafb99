// What a saved epoch adds to the data file, byte by byte.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

TEST(EpochSaving, AppendsEpochThenTableAndRewritesTheHeader) {
    LibrarySession session;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    ASSERT_EQ(ITCCreateFile(path.c_str(), 0), ITC_SUCCESS);
    EXPECT_EQ(ftell(ITCOpenFilePtr), 580);

    const Samples first{1, 0xFFFE, 3, 0x8000};
    SetUpPulseEpoch();
    Acquire(session, first);
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);  // flushed: complete without a close
    EXPECT_EQ(FileContent(path),
              Join({FileHeaderBytes(8, 1, 1532), PulseEpochBytes(first), Big32(580)}));

    const Samples second{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    SetUpPulseEpoch(3);
    Acquire(session, second);
    ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);  // 912 + 3 * 32 + 24 bytes
    EXPECT_EQ(FileContent(path), Join({FileHeaderBytes(8, 2, 2564), PulseEpochBytes(first),
                                       PulseEpochBytes(second), Big32(580), Big32(1532)}));
    EXPECT_EQ(ftell(ITCOpenFilePtr), 2564);
    EXPECT_EQ(EpochPosition[2], 2564);
    EXPECT_EQ(filehdr->numEpochs, 2);
}

constexpr int32_t kPoints = 50;

struct StimulusCase {
    const char* name;
    uint32_t counted;  // bytes that positions advance for the record
    uint32_t onFile;   // bytes that it really takes
    std::function<int32_t()> install;
};

int32_t InstallSum(int32_t count, const std::function<int32_t()>& add) {
    ITCSummedParameters sum{.count = count, .componentType = {}, .components = {}};
    const int32_t installed = ITCSummedParams(0, &sum);
    return installed != 0 ? installed : add();
}

std::vector<StimulusCase> StimulusCases() {
    static const uint16_t wave[kPoints] = {};
    static const ITCPulseParameters pulse{5, 0, 30, 10, 10, {}};
    static const ITCGClampParameters clamp{0, -70};
    const auto nothing = [] { return 0; };
    const auto twoPulses = [] {
        return ITCAddPulseParams(0, &pulse) + ITCAddPulseParams(0, &pulse);
    };
    const auto clampAndSine = [] {
        const ITCSineParameters sine{5, 0, 9, 0, 30, 10, 10, {}};
        return ITCAddGClampParams(0, &clamp) + ITCAddSineParams(0, &sine);
    };
    return {
        {"sine", 40, 40,
         [] {
             const ITCSineParameters record{5, 0, 9, 0, 30, 10, 10, {}};
             return ITCSineParams(0, &record);
         }},
        {"noise", 36, 36,
         [] {
             const ITCNoiseParameters record{5, 0, 1, 30, 10, 10, 3, 100, 1};
             return ITCNoiseParams(0, &record);
         }},
        {"pulse", 32, 32, [] { return ITCPulseParams(0, &pulse); }},
        {"ramp", 32, 32,
         [] {
             const ITCRampParameters record{5, 0, 30, 10, 10, {}};
             return ITCRampParams(0, &record);
         }},
        {"file wave", 8, 0,
         [] {
             const ITCFilewaveParameters record{wave, kPoints};
             return ITCFilewaveParams(0, &record);
         }},
        {"generic", 32, 32,
         [] {
             const ITCGenericParameters record{5, 0, 30, 10, 10, {}};
             return ITCGenericParams(&record);
         }},
        {"empty sum", 1284, 1284, [=] { return InstallSum(0, nothing); }},
        {"sum of pulses", 1284 + 64, 1284 + 64, [=] { return InstallSum(2, twoPulses); }},
        {"sum with a clamp", 1284 + 48, 1284 + 48, [=] { return InstallSum(2, clampAndSine); }},
        {"trigger series", 36, 0,
         [] {
             const ITCTrigSeriesParameters record{0, 5, 3, 30, 10, 10, {}};
             return ITCTrigSeriesParams(0, &record);
         }},
        {"segmented noise", 40, 40,
         [] {
             const ITCSegmentedNoiseParameters record{5, 0, 1, 30, 10, 10, 3, {}};
             return ITCSegmentedNoiseParams(0, &record);
         }},
        {"binary noise", 40, 40,
         [] {
             const ITCBinaryNoiseParameters record{5, 0, 1, 30, 10, 10, 3, {}};
             return ITCBinaryNoiseParams(0, &record);
         }},
        {"dynamic clamp", 8 + 8 * kPoints, 8 + 8 * kPoints,
         [] { return ITCGClampParams(0, &clamp, 6); }},
        {"circle pulse", 48, 48,
         [] {
             const ITCCirclePulseParameters record{1, 2, 3, {}, {}, 30, 10, 10};
             return ITCCirclePulseParams(0, &record);
         }},
        {"alternating voltage", 36, 36,
         [] {
             const ITCAlternateVoltageParameters record{2, 5, 0, 30, 10, 10, {}};
             return ITCAltVoltageParams(0, &record);
         }},
        {"spatial", 16, 16,
         [] {
             const ITCSpatialStmParameters record{kPoints, {}};
             return ITCSpatialParams(0, &record);
         }},
    };
}

// Types 5 and 8 take no bytes on file but count all the same, so later epochs are recorded beyond
// their real start.
TEST(EpochSaving, CountsEveryStimulusTypesBytes) {
    LibrarySession session;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    std::vector<float> conductance(kPoints, 1.0F);
    ExcitatoryG = InhibitoryG = conductance.data();
    for (const StimulusCase& each : StimulusCases()) {
        SCOPED_TRACE(each.name);
        filehdr->numEpochs = 0;
        ASSERT_EQ(ITCCreateFile(path.c_str(), 1), ITC_SUCCESS);
        SetUpAcquisition(1, kPoints);
        ASSERT_EQ(each.install(), ITC_SUCCESS);
        const QuietOutput quiet;
        ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
        ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
        const uint32_t counted = 912 + each.counted + 2 * kPoints;
        const uint32_t onFile = 912 + each.onFile + 2 * kPoints;
        EXPECT_EQ(EpochPosition[2], 580 + 2 * counted);
        const Bytes file = FileContent(path);
        ASSERT_EQ(file.size(), 580 + 2 * onFile + 8);
        EXPECT_EQ(Word(file, 536), 2);
        EXPECT_EQ(Word(file, 540), 580 + 2 * onFile);
        EXPECT_EQ(Word(file, 580 + 2 * onFile), 580);
        EXPECT_EQ(Word(file, 580 + 2 * onFile + 4), 580 + counted);
        EXPECT_EQ(Word(file, 580 + onFile + 576), static_cast<uint32_t>(kPoints));
        EXPECT_EQ(ITCCloseFile(), 0);
    }
    ExcitatoryG = InhibitoryG = nullptr;
}

TEST(EpochSaving, ConductancesFollowTheirRecord) {
    LibrarySession session;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    std::vector<float> excitatory{1, 2, 4}, inhibitory{0.5F, 0.25F, -70};
    const ITCGClampParameters clamp{0, -70};
    SetUpAcquisition(1, 3);
    ASSERT_EQ(ITCGClampParams(0, &clamp, 6), ITC_SUCCESS);
    ASSERT_EQ(ITCCreateFile(path.c_str(), 0), ITC_SUCCESS);
    uint32_t size = 1000;
    ExcitatoryG = excitatory.data();
    InhibitoryG = nullptr;
    EXPECT_EQ(ITCWriteStmParams(0, &size), ITC_STIMULUS_ERROR);
    EXPECT_EQ(size, 1000);
    InhibitoryG = inhibitory.data();
    EXPECT_EQ(ITCWriteStmParams(0, &size), ITC_SUCCESS);
    EXPECT_EQ(size, 1032);
    ExcitatoryG = InhibitoryG = nullptr;
    ASSERT_EQ(ITCCloseFile(), 0);
    const Bytes file = FileContent(path);
    EXPECT_EQ(Bytes(file.end() - 32, file.end()),
              Hex("00000000 C28C0000 3F800000 40000000 40800000 3F000000 3E800000 C28C0000"));
}

}  // namespace
