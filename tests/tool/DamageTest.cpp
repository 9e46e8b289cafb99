// Files whose header, table or epochs are not what they should be: what check reports, and what
// repair makes of them.
#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

class DamageTest : public ToolTest {
  protected:
    static Bytes Epoch(uint16_t value) { return PulseEpochBytes({value, 20, 30, 40}); }
    static Bytes FileOf(const std::vector<Bytes>& epochs) {
        Bytes file(580), table;
        for (const Bytes& epoch : epochs) {
            table = Join({table, Big32(static_cast<uint32_t>(file.size()))});
            file = Join({file, epoch});
        }
        const auto end = static_cast<uint32_t>(file.size());
        Put(file, 0, FileHeaderBytes(8, static_cast<uint32_t>(epochs.size()), end));
        return Join({file, table});
    }
    // Each epoch has 952 bytes: they begin at 580, 1532 and 2484, the table at 3436.
    static Bytes ThreeEpochs() { return FileOf({Epoch(1), Epoch(2), Epoch(3)}); }

    static ToolRun Check(const Bytes& file) {
        WriteFile("file.dat", file);
        return RunTool("check file.dat");
    }
    // The repaired file, which check must find sound.
    static Bytes Repair(const Bytes& file) {
        WriteFile("file.dat", file);
        EXPECT_LT(RunTool("repair file.dat -o repaired.dat --force").code, 2);
        const ToolRun check = RunTool("check repaired.dat");
        EXPECT_EQ(check.code, 0) << check.results;
        return FileContent("repaired.dat");
    }
};

TEST_F(DamageTest, SoundFileIsCleanAndCopiedAsItIs) {
    EXPECT_EQ(Check(ThreeEpochs()).results, "file.dat: clean, 3 epochs in 3448 bytes\n");
    EXPECT_EQ(Repair(ThreeEpochs()), ThreeEpochs());
}

TEST_F(DamageTest, IsReportedAndMended) {
    struct Damage {
        std::string finding;  // part of check's output
        size_t offset;
        Bytes bytes;                 // that stand there
        std::vector<uint16_t> kept;  // first samples of the epochs that repair keeps
        size_t size = 3448;
        uint32_t count = 3;  // that the header states
    };
    const std::vector<uint16_t> all = {1, 2, 3};
    // What a save that failed leaves behind the table that it put back.
    const Bytes failed = Epoch(9), remains(failed.begin() + 12, failed.end());
    const Damage damages[] = {
        {"byte 536, file header, numEpochs: found 1, expected 3 epochs", 0, {}, all, 3448, 1},
        {"found -1, expected 3 epochs", 0, {}, all, 3448, 0xFFFFFFFF},
        // The second file of one run goes on counting where the first ended.
        {"numEpochs: found 4, expected 3 epochs", 0, {}, all, 3452, 4},
        {"byte 3448, table of positions: found 4 entries, expected 3", 0, {}, all, 3452, 4},
        {"byte 540, file header, epochTablePosition: found 2000, expected 3436", 540, Big32(2000),
         all},
        {"byte 3440, table of positions, epoch 1: found 4294967280, beyond the file's 3448 bytes, "
         "expected 1532, the epoch's start",
         3440, Big32(0xFFFFFFF0), all},
        {"byte 3440, table of positions, epoch 1: found 1540, 8 bytes behind it, expected 1532",
         3440, Big32(1540), all},
        {"byte 3448, 52 bytes that belong to nothing", 0, {}, all, 3500},
        {"byte 3448, 940 bytes that belong to nothing", 3448, remains, all, 4388},
        {"no whole table", 0, {}, all, 3440},
        {"byte 2484, epoch 2: found 946 bytes, ending in its samples (1 of 4 points)",
         0,
         {},
         {1, 2},
         3430},
        {"byte 1532, epoch 1, 952 bytes: found stimType[0] 0, expected a type",
         1532 + 605,
         {0},
         {1, 3}},
        {"found epochPoints -2147483644, expected 0 or more", 1532 + 576, {0x80}, {1, 3}},
        {"found sequenceLength 5, expected 1 to 4", 2484 + 583, {5}, {1, 2}},
        {"found sequenceLength 0, expected 1 to 4", 1532, Bytes(952), {1, 3}},
        {"byte 580, epoch 0, 952 bytes: found an epoch that ends at 1724, expected its end at 1532",
         580 + 579,
         {100},
         {2, 3}},
        {"byte 580, epoch 0, 952 bytes: found 2868 bytes, ending in its samples",
         580 + 577,
         {1},
         {2, 3}},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.finding);
        Bytes file = ThreeEpochs();
        file.resize(damage.size, 7);
        Put(file, damage.offset, damage.bytes);
        Put(file, 536, Big32(damage.count));
        const ToolRun check = Check(file);
        EXPECT_EQ(check.code, 1);
        EXPECT_NE(check.results.find(damage.finding), std::string::npos) << check.results;
        std::vector<Bytes> epochs;
        for (const uint16_t value : damage.kept) epochs.push_back(Epoch(value));
        EXPECT_EQ(Repair(file), FileOf(epochs));
    }
}

// Nothing tells it from an epoch of that length with foreign bytes behind it.
TEST_F(DamageTest, LengthThatIsTooShortLeavesBytesBehind) {
    Bytes file = ThreeEpochs();
    file[580 + 579] = 1;
    EXPECT_NE(Check(file).results.find("byte 1526, 6 bytes that belong to nothing"),
              std::string::npos);
    EXPECT_EQ(Repair(file),
              FileOf({First(Bytes(file.begin() + 580, file.end()), 946), Epoch(2), Epoch(3)}));
}

TEST_F(DamageTest, WavesWithoutBytesShiftEveryLaterPosition) {
    const Preparation onePulse = [] { SetUpPulseEpoch(); };
    const Bytes file = RecordSteps("file.dat", {onePulse, SetUpWaves, SetUpSum, onePulse}).back();
    const std::string found = Check(file).results;
    EXPECT_NE(found.find("epoch 2: found 2512, 44 bytes behind it"), std::string::npos) << found;
    EXPECT_NE(found.find("epoch 3: found 4760, 52 bytes behind it"), std::string::npos) << found;
    const Bytes mended = Repair(file);
    EXPECT_EQ(First(mended, TableOf(file)), First(file, TableOf(file)));
    EXPECT_EQ(Word(mended, TableOf(file) + 8), 2468U);
}

// Whatever byte is damaged, nothing breaks, and what repair writes is sound.
TEST_F(DamageTest, EveryDamagedByteIsSurvived) {
    const Bytes sound = RecordSteps("file.dat", {SetUpDynamicClamp, SetUpSum, SetUpWaves}).back();
    PseudoRandom random;
    for (int i = 0; i < 1000; ++i) {
        Bytes file = sound;
        for (uint32_t n = random.Next() % 3 + 1; n > 0; --n) {
            file[random.Next() % file.size()] = static_cast<uint8_t>(random.Next() >> 8);
        }
        if (random.Next() % 4 == 0) file.resize(580 + random.Next() % (file.size() - 580));
        file[0] = 8;
        ASSERT_LT(Check(file).code, 2);
        Repair(file);
        if (HasFailure()) FAIL() << "at " << i;
    }
}

}  // namespace
}  // namespace corvantis_test
