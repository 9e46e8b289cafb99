// A save that was killed at any byte: what was saved before comes back, and the new epoch as soon
// as it is complete.
#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

Bytes EpochBytes(const Bytes& file) {
    return {file.begin() + 580, file.begin() + static_cast<std::ptrdiff_t>(TableOf(file))};
}

// The file that a save has left: before, and the whole save.
struct Save {
    Bytes before, after;
    size_t start() const { return TableOf(before); }
    size_t epochSize() const { return TableOf(after) - start(); }

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

class CrashTest : public ToolTest {
  protected:
    // The bytes of the repaired epochs, after testing that the output is sound.
    static Bytes Repair(const Bytes& damaged, const std::string& options = "") {
        WriteFile("damaged.dat", damaged);
        EXPECT_LT(RunTool("repair damaged.dat -o repaired.dat --force" + options).code, 2);
        EXPECT_EQ(FileContent("damaged.dat"), damaged);
        const ToolRun check = RunTool("check repaired.dat");
        EXPECT_EQ(check.code, 0) << check.results << check.messages;
        return EpochBytes(FileContent("repaired.dat"));
    }
    // The long header and its empty texts in larger steps.
    static void ExpectEveryStateRepaired(const Save& save) {
        const Bytes old = EpochBytes(save.before), all = EpochBytes(save.after);
        for (size_t k = 0; k <= save.after.size() - save.start(); k += k > 8 && k < 900 ? 9 : 1) {
            ASSERT_EQ(Repair(save.KilledAfter(k)), k < save.epochSize() ? old : all) << k;
        }
        for (size_t k = 0; k <= 580; k += k > 530 && k < 550 ? 1 : 10) {
            ASSERT_EQ(Repair(save.KilledInHeaderAfter(k)), all) << k << " of the header";
        }
    }
    static Save FirstSave(const Preparation& prepare) {
        const std::vector<Bytes> steps = RecordSteps("recorded.dat", {prepare});
        return {steps[0], steps[1]};
    }
};

// In each shape, as the first epoch and behind others.
TEST_F(CrashTest, KeepsAllEpochsBeforeAndTheNewOneOnceItIsComplete) {
    const Preparation onePulse = [] { SetUpPulseEpoch(); }, twoPulses = [] { SetUpPulseEpoch(2); };
    for (const Preparation& prepare : {onePulse, twoPulses, Preparation(SetUpDynamicClamp),
                                       Preparation(SetUpSum), Preparation(SetUpWaves)}) {
        const auto steps = RecordSteps("recorded.dat", {prepare, onePulse, SetUpWaves, prepare});
        ExpectEveryStateRepaired({steps[0], steps[1]});
        ExpectEveryStateRepaired({steps[3], steps[4]});
    }
}

TEST_F(CrashTest, PartialEpochHoldsTheWholePointsThatArrived) {
    const Save pulses = FirstSave([] { SetUpPulseEpoch(2); });
    const size_t samples = 912 + 2 * 32;
    for (size_t k = samples; k < samples + 16; ++k) {
        const size_t points = (k - samples) / 4;
        Bytes expected = First(EpochBytes(pulses.after), points == 0 ? 0 : samples + 4 * points);
        if (points > 0) Put(expected, 576, Big32(static_cast<uint32_t>(points)));
        ASSERT_EQ(Repair(pulses.KilledAfter(k), " --keep-partial"), expected) << k;
    }
    // Conductances are cut to the same points.
    const Save clamp = FirstSave(SetUpDynamicClamp);
    const Bytes whole = EpochBytes(clamp.after), two(whole.begin() + 968, whole.begin() + 972);
    Bytes expected = Join({First(whole, 912 + 8), Hex("3F800000 40000000 BF800000 C0000000"), two});
    Put(expected, 576, Big32(2));
    EXPECT_EQ(Repair(clamp.KilledAfter(968 + 5), " --keep-partial"), expected);
}

// The table of 300 epochs is longer than the new epoch: its rest may pass for samples.
enum class Odd { kNothing, kSamplesFromTable, kWrongTable };
Save SaveOverLongTable(Odd odd) {
    constexpr uint32_t kCount = 300, kSize = 952, kStart = 580 + kCount * kSize;
    Bytes before = FileHeaderBytes(8, kCount, kStart), table, old;
    for (uint32_t i = 0; i < kCount; ++i) {
        before = Join({before, PulseEpochBytes({1, 2, 3, static_cast<uint16_t>(i)})});
        table = Join({table, Big32(580 + i * kSize)});
        old = Join({old, Big32(580 + i * kSize + (odd == Odd::kWrongTable && i > 0 ? 256 : 0))});
    }
    Bytes epoch = PulseEpochBytes({9, 8, 7, 6});
    epoch[0] = 1;
    // Then most of the new epoch's bytes are right before they are written.
    if (odd == Odd::kSamplesFromTable) {
        std::copy_n(table.begin() + kSize - 8, 7, epoch.begin() + kSize - 8);
    }
    Bytes after = Join({before, epoch, table, Big32(kStart)});
    Put(after, 536, Join({Big32(kCount + 1), Big32(kStart + kSize)}));
    return {Join({before, old}), after};
}

TEST_F(CrashTest, NeverTakesTheOldTableForSamples) {
    for (const Odd odd : {Odd::kNothing, Odd::kSamplesFromTable, Odd::kWrongTable}) {
        const Save save = SaveOverLongTable(odd);
        const Bytes old = EpochBytes(save.before), all = EpochBytes(save.after);
        const size_t size = save.epochSize();
        // Every byte near the epoch's end and the old table's, some elsewhere.
        for (size_t k = 4; k < save.after.size() - save.start(); ++k) {
            const bool isNear = (k > size - 20 && k < size + 12) || (k > 1190 && k < 1210);
            if (!isNear && k % 61 > 1) continue;
            // Without the old values, the new table's first one is what tells.
            const size_t known = odd == Odd::kWrongTable ? size + 4 : size;
            // Equal bytes in both files can make it complete before its end.
            const bool complete = k >= known || save.KilledAfter(k) == save.KilledAfter(known);
            ASSERT_EQ(Repair(save.KilledAfter(k)), complete ? all : old) << k << int(odd);
        }
    }
}

}  // namespace
}  // namespace corvantis_test
