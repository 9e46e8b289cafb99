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
    // Failed after so many bytes, and killed when it had cut them back and put back so many values.
    Bytes KilledInUndoing(size_t count, size_t values) const {
        Bytes file = First(KilledAfter(count), before.size());
        const size_t restored = std::min(before.size(), start() + 4 * values);
        std::copy_n(before.begin(), restored, file.begin());
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
    // The long header and its empty texts in larger steps. While the file is no longer than the old
    // table reached, the new epoch is not believed.
    static void ExpectEveryStateRepaired(const Save& save, size_t step = 9) {
        const Bytes old = EpochBytes(save.before), all = EpochBytes(save.after);
        const size_t size = save.epochSize(), oldEnd = save.before.size() - save.start();
        for (size_t k = 0; k <= save.after.size() - save.start();
             k += (k > 8 && k + 20 < size) || k > size + 20 ? step : 1) {
            ASSERT_EQ(Repair(save.KilledAfter(k)), k < size || k <= oldEnd ? old : all) << k;
            if (k % 2 != 0) continue;
            ASSERT_EQ(Repair(save.KilledInUndoing(k, k / 2 % 5)), old) << k << " undone";
        }
        for (size_t k = 530; k <= 550; ++k) {
            ASSERT_EQ(Repair(save.KilledInHeaderAfter(k)), all) << k << " of the header";
        }
    }
    static Save FirstSave(const Preparation& prepare) {
        const std::vector<Bytes> steps = RecordSteps("recorded.dat", {prepare});
        return {steps[0], steps[1]};
    }
};

// Saves that failed, here for want of a stimulus, are counted: two numbers share a place.
Preparation AfterFailure(const Preparation& prepare) {
    return [prepare] {
        SetUpPulseEpoch();
        ITCFreeParams(0);
        const QuietOutput quiet;
        EXPECT_EQ(ITCSaveToFile(), 7);
        prepare();
    };
}

// In each shape, as the first epoch and behind others.
TEST_F(CrashTest, KeepsAllEpochsBeforeAndTheNewOneOnceItIsComplete) {
    const Preparation onePulse = [] { SetUpPulseEpoch(); }, twoPulses = [] { SetUpPulseEpoch(2); };
    for (const Preparation& prepare : {onePulse, twoPulses, Preparation(SetUpDynamicClamp),
                                       Preparation(SetUpSum), Preparation(SetUpWaves)}) {
        const auto steps =
            RecordSteps("recorded.dat", {prepare, onePulse, AfterFailure(SetUpWaves), prepare});
        ExpectEveryStateRepaired({steps[0], steps[1]});
        ExpectEveryStateRepaired({steps[3], steps[4]});
    }
}

// The table of 300 epochs is longer than the new epoch: what is left of it may pass for samples.
TEST_F(CrashTest, NeverTakesTheOldTableForSamples) {
    const Preparation onePulse = [] { SetUpPulseEpoch(); };
    const Preparation withoutEntries = [] {
        SetUpPulseEpoch();
        epochhdr->sequenceLength = 0;
    };
    for (const Preparation& odd :
         {onePulse, AfterFailure(onePulse), AfterFailure(withoutEntries), Preparation(SetUpSum)}) {
        std::vector<Preparation> epochs(301, onePulse);
        epochs[1] = odd;
        const auto steps = RecordSteps("recorded.dat", epochs);
        ExpectEveryStateRepaired({steps[300], steps[301]}, 61);
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

}  // namespace
}  // namespace corvantis_test
