// A save that was killed at any byte: what was saved before comes back, and the new epoch as soon
// as it is complete.
#include <gtest/gtest.h>

#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

struct Shape {
    std::string name;
    Preparation prepare;
};

void PrintTo(const Shape& shape, std::ostream* out) { *out << shape.name; }

const std::vector<Shape> kShapes = {{"Plain", [] { SetUpPulseEpoch(); }},
                                    {"DynamicClamp", SetUpDynamicClamp},
                                    {"Sum", SetUpSum},
                                    {"TwoChannels", [] { SetUpPulseEpoch(2); }},
                                    {"Waves", SetUpWaves}};

// The file that a save has left: before, and the whole save.
struct Save {
    Bytes before, after;
    size_t start() const { return TableOf(before); }
    size_t end() const { return TableOf(after); }

    // Killed after so many bytes of epoch and table, the header not yet written.
    Bytes KilledAfter(size_t count) const {
        Bytes file = before;
        file.resize(std::max(file.size(), start() + count));
        std::copy_n(after.begin() + static_cast<std::ptrdiff_t>(start()), count,
                    file.begin() + static_cast<std::ptrdiff_t>(start()));
        return file;
    }
    Bytes KilledInHeaderAfter(size_t count) const {
        Bytes file = after;
        std::copy(before.begin() + static_cast<std::ptrdiff_t>(count), before.begin() + 580,
                  file.begin() + static_cast<std::ptrdiff_t>(count));
        return file;
    }
};

class Repairing {
  public:
    // The bytes of the repaired epochs, after testing that the output is sound.
    Bytes EpochsFrom(const Bytes& damaged, bool keepPartial = false) {
        WriteFile(damagedPath, damaged);
        std::vector<std::string> arguments = {"repair", damagedPath, "-o", repairedPath, "--force"};
        if (keepPartial) arguments.push_back("--keep-partial");
        EXPECT_LT(RunTool(arguments).code, 2);
        EXPECT_EQ(FileContent(damagedPath), damaged);
        const ToolRun check = RunTool({"check", repairedPath});
        EXPECT_EQ(check.code, 0) << check.results << check.messages;
        const Bytes repaired = FileContent(repairedPath);
        EXPECT_GE(repaired.size(), 580U);
        count = Word(repaired, 536);
        const auto table = static_cast<std::ptrdiff_t>(Word(repaired, 540));
        return {repaired.begin() + 580, repaired.begin() + table};
    }

    TemporaryFolder folder;
    std::string damagedPath = folder.File("damaged.dat");
    std::string repairedPath = folder.File("repaired.dat");
    uint32_t count = 0;
};

Bytes EpochBytes(const Bytes& file) {
    return {file.begin() + 580, file.begin() + static_cast<std::ptrdiff_t>(TableOf(file))};
}

class CrashTest : public testing::TestWithParam<Shape> {
  protected:
    // Saves of the shape as the first epoch, and behind others.
    std::vector<Save> Saves() const {
        const Preparation prepare = GetParam().prepare;
        const auto steps = RecordSteps(repairing.folder.File("recorded.dat"),
                                       {prepare, [] { SetUpPulseEpoch(); }, SetUpWaves, prepare});
        return {{steps[0], steps[1]}, {steps[3], steps[4]}};
    }
    Repairing repairing;
};

TEST_P(CrashTest, KeepsAllEpochsBeforeAndTheNewOneOnceItIsComplete) {
    for (const Save& save : Saves()) {
        const Bytes old = EpochBytes(save.before), all = EpochBytes(save.after);
        const size_t epochSize = save.end() - save.start();
        for (size_t k = 0; k <= save.after.size() - save.start(); ++k) {
            ASSERT_EQ(repairing.EpochsFrom(save.KilledAfter(k)), k < epochSize ? old : all)
                << k << " of " << epochSize;
        }
    }
}

TEST_P(CrashTest, KeepsAllEpochsWhateverPartOfTheHeaderWasWritten) {
    for (const Save& save : Saves()) {
        for (size_t k = 0; k <= 580; k += k > 530 && k < 550 ? 1 : 10) {
            ASSERT_EQ(repairing.EpochsFrom(save.KilledInHeaderAfter(k)), EpochBytes(save.after))
                << k;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, CrashTest, testing::ValuesIn(kShapes),
                         [](const auto& info) { return info.param.name; });

TEST(PartialEpochTest, HoldsTheWholePointsThatArrived) {
    Repairing repairing;
    const auto steps =
        RecordSteps(repairing.folder.File("recorded.dat"), {[] { SetUpPulseEpoch(2); }});
    const Save save = {steps[0], steps[1]};
    const size_t samples = 912 + 2 * 32;
    for (size_t k = samples; k < samples + 16; ++k) {
        const size_t points = (k - samples) / 4;
        const Bytes epochs = repairing.EpochsFrom(save.KilledAfter(k), true);
        ASSERT_EQ(repairing.count, points == 0 ? 0U : 1U) << k;
        if (points == 0) continue;
        Bytes expected = First(EpochBytes(save.after), samples + 4 * points);
        Put(expected, 576, Big32(static_cast<uint32_t>(points)));
        ASSERT_EQ(epochs, expected) << k;
    }
}

TEST(PartialEpochTest, CutsConductancesToTheSamePoints) {
    Repairing repairing;
    const auto steps = RecordSteps(repairing.folder.File("recorded.dat"), {SetUpDynamicClamp});
    const Save save = {steps[0], steps[1]};
    const Bytes whole = EpochBytes(save.after);
    Bytes expected = First(whole, 912 + 8);
    Put(expected, 576, Big32(2));
    const Bytes floats = Join({Hex("3F800000 40000000 BF800000 C0000000")});
    const auto firstSample = whole.begin() + 912 + 8 + 48;
    expected = Join({expected, floats, Bytes(firstSample, firstSample + 4)});
    EXPECT_EQ(repairing.EpochsFrom(save.KilledAfter(912 + 8 + 48 + 5), true), expected);
}

// The table of 300 epochs is longer than the new epoch: its rest may pass for samples.
class LongTableTest : public testing::Test {
  protected:
    // The last epoch is made of what the old table has in its place, so that most of its bytes are
    // right before they are written.
    static Save SaveOverLongTable(bool samplesFromTable) {
        Bytes before = FileHeaderBytes(8, kEpochs, kStart);
        Bytes table;
        for (uint32_t i = 0; i < kEpochs; ++i) {
            before = Join({before, PulseEpochBytes({1, 2, 3, static_cast<uint16_t>(i)})});
            table = Join({table, Big32(580 + i * kSize)});
        }
        Bytes epoch = PulseEpochBytes({9, 8, 7, 6});
        epoch[0] = 1;
        if (samplesFromTable) {
            for (size_t i = kSize - 8; i < kSize - 1; ++i) epoch[i] = table[i];
        }
        Bytes after = Join({before, epoch, table, Big32(kStart)});
        Put(after, 536, Join({Big32(kEpochs + 1), Big32(kStart + kSize)}));
        return {Join({before, table}), after};
    }

    static constexpr uint32_t kEpochs = 300, kSize = 952, kStart = 580 + kEpochs * kSize;
};

TEST_F(LongTableTest, NeverTakesTheOldTableForSamples) {
    Repairing repairing;
    for (const bool samplesFromTable : {false, true}) {
        const Save save = SaveOverLongTable(samplesFromTable);
        const Bytes old = EpochBytes(save.before), all = EpochBytes(save.after);
        // Every byte near the epoch's end and the old table's, some elsewhere.
        for (size_t k = 0; k < save.after.size() - save.start(); ++k) {
            const bool isNear = (k > kSize - 20 && k < kSize + 12) || (k > 1190 && k < 1210);
            if (!isNear && k % 61 > 2) continue;
            const Bytes epochs = repairing.EpochsFrom(save.KilledAfter(k));
            // Equal bytes in both files can make it complete before its end.
            const bool complete = save.KilledAfter(k) == save.KilledAfter(kSize) || k >= kSize;
            ASSERT_EQ(epochs, complete ? all : old) << k;
        }
    }
}

}  // namespace
}  // namespace corvantis_test
