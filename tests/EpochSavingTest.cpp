// What a saved epoch adds to the data file, byte by byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"
#include "StimulusRecords.h"

namespace {

using namespace corvantis_test;

using EpochSaving = RecordingTest;

TEST_F(EpochSaving, AppendsEpochThenTableAndRewritesTheHeader) {
    ASSERT_EQ(Create(), ITC_SUCCESS);
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

struct StimulusCase {
    std::string name;
    std::function<int32_t()> install;
    uint32_t counted;  // bytes that positions advance for the record
    uint32_t onFile;   // bytes that it really takes
};

// Types 5 and 8 take no bytes on file but count all the same, so later epochs are recorded beyond
// their real start; the conductances of a dynamic clamp follow it, but not within a sum.
std::vector<StimulusCase> StimulusCases() {
    std::vector<StimulusCase> cases = {{"empty sum", [] { return InstallSum(0, 0); }, 1284, 1284}};
    for (const Entry& builder : kBuilders) {
        if (builder.type == 7) continue;
        const bool written = builder.type != 5 && builder.type != 8;
        const uint32_t size = builder.size + (builder.type == 11 ? 8 * kEpochPoints : 0);
        cases.push_back({"type " + std::to_string(builder.type),
                         [=] { return builder.give(0, {}); }, size, written ? size : 0});
    }
    for (const Entry& adder : kAdders) {
        const auto install = [=] {
            return std::max({InstallSum(0, 2), adder.give(0, {}), adder.give(0, {})});
        };
        cases.push_back({"sum of type " + std::to_string(adder.type), install,
                         1284 + 2 * adder.size, adder.type == 5 ? 1284 : 1284 + 2 * adder.size});
    }
    return cases;
}

TEST_F(EpochSaving, CountsEveryStimulusTypesBytes) {
    std::vector<float> conductance(kEpochPoints, 1.0F);
    ExcitatoryG = InhibitoryG = conductance.data();
    for (const StimulusCase& each : StimulusCases()) {
        SCOPED_TRACE(each.name);
        filehdr->numEpochs = 0;
        ASSERT_EQ(Create(), ITC_SUCCESS);
        SetUpAcquisition(1, kEpochPoints);
        ASSERT_EQ(each.install(), ITC_SUCCESS);
        const QuietOutput quiet;
        ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
        ASSERT_EQ(ITCSaveToFile(), ITC_SUCCESS);
        const uint32_t counted = 912 + each.counted + 2 * kEpochPoints;
        const uint32_t onFile = 912 + each.onFile + 2 * kEpochPoints;
        EXPECT_EQ(EpochPosition[2], 580 + 2 * counted);
        const Bytes file = FileContent(path);
        ASSERT_EQ(file.size(), 580 + 2 * onFile + 8);
        EXPECT_EQ(Word(file, 536), 2);
        EXPECT_EQ(Word(file, 540), 580 + 2 * onFile);
        EXPECT_EQ(Word(file, 580 + 2 * onFile), 580);
        EXPECT_EQ(Word(file, 580 + 2 * onFile + 4), 580 + counted);
        EXPECT_EQ(Word(file, 580 + onFile + 576), static_cast<uint32_t>(kEpochPoints));
        EXPECT_EQ(ITCCloseFile(), 0);
    }
    ExcitatoryG = InhibitoryG = nullptr;
}

}  // namespace
