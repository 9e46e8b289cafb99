// Files whose header, table or epochs are not what they should be, or are odd: what check reports,
// and what repair and export make of them.
#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

class DamageTest : public ToolTest {
  protected:
    static Bytes Epoch(uint16_t value) { return PulseEpochBytes({value, 20, 30, 40}); }
    static Bytes FileOf(const std::vector<Bytes>& epochs) { return DataFileBytes(epochs); }
    // Each epoch has 952 bytes: they begin at 580, 1532 and 2484, the table at 3436.
    static Bytes ThreeEpochs() { return FileOf({Epoch(1), Epoch(2), Epoch(3)}); }
    // As samples of one epoch the bytes of others.
    static Bytes Holding(const Bytes& image) {
        Bytes epoch = Join({EpochHeaderBytes(100, 0, {3}), PulseBytes(), image});
        Put(epoch, 576, Big32(static_cast<uint32_t>(image.size() / 2)));
        return epoch;
    }

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
        {"byte 3448, table of positions: found 4 entries, expected 3", 0, {}, all, 3452, 4},
        {"byte 540, file header, epochTablePosition: found 2000, expected 3436", 540, Big32(2000),
         all},
        {"byte 3440, table of positions, epoch 1: found 4294967280, beyond the file's 3448 bytes, "
         "expected 1532, the epoch's start",
         3440, Big32(0xFFFFFFF0), all},
        {"byte 3440, table of positions, epoch 1: found 1540, 8 bytes behind it, expected 1532",
         3440, Big32(1540), all},
        {"byte 3448, 940 bytes that belong to nothing", 3448, remains, all, 4388},
        {"no whole table", 0, {}, all, 3440},
        {"byte 2484, epoch 2: found 946 bytes, ending in its samples (1 of 4 points)",
         0,
         {},
         {1, 2},
         3430},
        {"byte 1532, epoch 1, 952 bytes: found stimType[0] 0, expected", 1532 + 605, {0}, {1, 3}},
        {"found epochPoints -2147483644, expected 0 or more", 1532 + 576, {0x80}, {1, 3}},
        {"found sequenceLength 0, expected 1 to 4", 1532, Bytes(952), {1, 3}},
        {"byte 580, epoch 0, 952 bytes: found an epoch that ends at 1724, expected its end at 1532",
         580 + 579,
         {100},
         {2, 3}},
        {"byte 580, epoch 0, 952 bytes: found 2868 bytes, ending", 580 + 577, {1}, {2, 3}},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.finding);
        Bytes file = ThreeEpochs();
        file.resize(damage.size, 7);
        Put(file, damage.offset, damage.bytes);
        Put(file, 536, Big32(damage.count));
        const ToolRun check = Check(file);
        EXPECT_EQ(check.code, 1);
        EXPECT_TRUE(Contains(check.results, damage.finding)) << check.results;
        std::vector<Bytes> epochs;
        for (const uint16_t value : damage.kept) epochs.push_back(Epoch(value));
        EXPECT_EQ(Repair(file), FileOf(epochs));
    }
}

// Epochs that look like something else: like a table, a lost block, several epochs, none.
TEST_F(DamageTest, KeepsWhatHeaderAndTableAccountForAndItsNumbers) {
    Bytes timed = Epoch(2), unknown = Join({Epoch(3), Bytes(20, 9)});
    Put(timed, 0, Big32(580));
    unknown[605] = 15;
    const Bytes image = Join({Epoch(7), Epoch(8), Epoch(9), First(Epoch(6), 930)});
    const std::vector<Bytes> epochs = {
        Epoch(1), timed, EpochHeaderBytes(1, 4, {}), Holding(image), unknown, timed, Epoch(4)};
    const Bytes file = FileOf(epochs);
    const ToolRun check = Check(file);
    EXPECT_EQ(check.code, 0) << check.results;
    EXPECT_TRUE(Contains(check.results,
                         "epoch 4: note: found stimType[0] 15: stimulus type 15 is "
                         "not known"));
    EXPECT_EQ(Repair(file), file);
    // A length so short that what its samples hold begins where it seems to end.
    std::vector<Bytes> shortened = epochs;
    shortened[3] = First(epochs[3], 944);
    Put(shortened[3], 576, Bytes(4));
    Bytes damagedLength = file;
    Put(damagedLength, 580 + 952 + 952 + 912 + 576, Bytes(4));
    EXPECT_EQ(Repair(damagedLength), FileOf(shortened));
    // The next save was killed at its start.
    EXPECT_EQ(Repair(Join({First(file, TableOf(file)), Bytes(5, 1)})), file);
    WriteFile("file.dat", file);
    EXPECT_EQ(RunTool("export file.dat --all -o sound.csv --raw").code, 0);
    EXPECT_TRUE(Contains(RunTool("export file.dat -e 4 --raw").results, "0,2313\n0.0001,2313"));
    for (size_t i = 0, start = 580; i < epochs.size(); start += epochs[i++].size()) {
        SCOPED_TRACE(i);
        const std::string number = std::to_string(i);
        std::vector<Bytes> others = epochs;
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
        Bytes damaged = file;
        damaged[start + 583] = 9;
        EXPECT_EQ(Repair(damaged), FileOf(others));
        EXPECT_TRUE(Contains(RunTool("check file.dat").results,
                             "epoch " + number + ", " + std::to_string(epochs[i].size()) +
                                 " bytes: found sequenceLength 9"));
        const ToolRun exported = RunTool("export file.dat --all -o damaged.csv --raw --force");
        EXPECT_EQ(exported.code, 1);
        EXPECT_TRUE(Contains(exported.messages, "epoch " + number + " cannot be given"));
        if (i == 6) break;
        EXPECT_EQ(FileContent("damaged-6.csv"), FileContent("sound-6.csv"));
        // Where the header leads nowhere, the table at the end accounts for the same.
        Put(damaged, 540, Big32(0x7FFFFFFF));
        EXPECT_EQ(Repair(damaged), FileOf(others));
    }
}

TEST_F(DamageTest, SaysWhatATruncatedFileLacks) {
    const Bytes image = Join({Epoch(7), Epoch(8), Epoch(9)});
    const Bytes file = FileOf({Epoch(1), Holding(image), Epoch(2), Epoch(3)});
    WriteFile("file.dat", First(file, 5000));
    const ToolRun run = RunTool("export file.dat --all -o out.csv");
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(Contains(run.messages, "epoch 1 cannot be given")) << run.messages;
    EXPECT_TRUE(Contains(run.messages, "epochs 2 to 3 cannot be given: the file ends before"));
    EXPECT_EQ(Repair(First(file, 5000)), FileOf({Epoch(1)}));
    EXPECT_EQ(RunTool("repair file.dat -o out.dat").code, 1);
    // The first save of a new file, killed.
    Bytes first = First(FileOf({Holding(image)}), 4000);
    Put(first, 536, Bytes(8));
    EXPECT_EQ(Repair(first), FileOf({}));
}

// Without header and table only a search is left, for what looks like an epoch throughout.
TEST_F(DamageTest, SearchFindsEpochsAndSaysThatItDid) {
    Bytes filled = Epoch(7);
    filled[900] = 1;
    struct Case {
        Bytes image;
        bool isEpoch = false;
    };
    for (const Case& each :
         {Case{Join({filled, Epoch(8), Bytes(2)})}, Case{Join({Epoch(7), Bytes(2)})},
          Case{Join({Bytes(7000), Epoch(7), Epoch(8)}), true}}) {
        Bytes lost = Holding(each.image), file = FileOf({Epoch(1), lost, Epoch(2), Epoch(3)});
        file[580 + 952 + 583] = 9;
        file.resize(file.size() - 16);
        Put(file, 536, Bytes(8, 0x7F));
        std::vector<Bytes> found = {Epoch(1), Epoch(2), Epoch(3)};
        if (each.isEpoch) found = {Epoch(1), Epoch(7), Epoch(8), Epoch(2), Epoch(3)};
        EXPECT_EQ(Repair(file), FileOf(found));
        EXPECT_TRUE(Contains(RunTool("check file.dat").results, "an epoch by searching"));
    }
    // What the samples of a sound epoch hold is none, though the next one is damaged.
    Bytes file = FileOf({Holding(Join({Epoch(7), Epoch(8)})), Epoch(1), Epoch(2), Epoch(3)});
    file[580 + 944 + 1904 + 583] = 9;
    file.resize(file.size() - 16);
    Put(file, 536, Bytes(8, 0x7F));
    EXPECT_EQ(Repair(file), FileOf({Holding(Join({Epoch(7), Epoch(8)})), Epoch(2), Epoch(3)}));
}

// Saves that failed are counted, and so are the epochs of a file that was open before.
TEST_F(DamageTest, NumbersAreThoseOfTheTable) {
    struct Case {
        std::vector<uint32_t> table;
        std::vector<int64_t> numbers;
    };
    for (const Case& each :
         {Case{{580, 1532, 1532, 2484}, {0, 2, 3}}, Case{{580, 999, 580, 1532, 2484}, {2, 3, 4}}}) {
        Bytes file = First(ThreeEpochs(), 3436);
        for (const uint32_t position : each.table) file = Join({file, Big32(position)});
        Put(file, 536, Big32(static_cast<uint32_t>(each.table.size())));
        EXPECT_EQ(Check(file).code, 0);
        std::vector<int64_t> numbers;
        for (const auto& epoch : PartOf("info --json file.dat", "epochs")) {
            if (epoch["problem"].is_null()) numbers.push_back(epoch["number"]);
        }
        EXPECT_EQ(numbers, each.numbers);
        EXPECT_EQ(RunTool("export -e 1 file.dat").code, 1);
        EXPECT_EQ(Repair(file), ThreeEpochs());
    }
}

// With one value in the table, its bits can be the time of an epoch whose save was interrupted.
TEST_F(DamageTest, SaysBothReadingsOfATableOfOneValue) {
    Bytes timed = Epoch(2), file = Join({First(FileOf({Epoch(1)}), 1532), timed});
    Put(file, 1532, Big32(580));
    EXPECT_TRUE(Contains(Check(file).results, "or an epoch whose save was interrupted"));
    EXPECT_EQ(Repair(file), FileOf({Epoch(1)}));
    Put(timed, 0, Big32(580));
    EXPECT_EQ(Repair(Join({file, Big32(580), Big32(1532)})), FileOf({Epoch(1), timed}));
}

TEST_F(DamageTest, WavesWithoutBytesShiftEveryLaterPosition) {
    const Preparation onePulse = [] { SetUpPulseEpoch(); };
    Bytes file = RecordSteps("file.dat", {onePulse, SetUpWaves, SetUpSum, onePulse}).back();
    const std::string found = Check(file).results;
    EXPECT_TRUE(Contains(found, "epoch 2: found 2512, 44 bytes behind it")) << found;
    EXPECT_TRUE(Contains(found, "epoch 3: found 4760, 52 bytes behind it")) << found;
    const Bytes mended = Repair(file);
    EXPECT_EQ(First(mended, TableOf(file)), First(file, TableOf(file)));
    EXPECT_EQ(Word(mended, TableOf(file) + 8), 2468U);
    file[580 + 583] = 9;
    EXPECT_TRUE(Contains(Check(file).results, "epoch 0, 952 bytes"));
    file[580 + 583] = 1;
    file[2468 + 583] = 9;
    EXPECT_TRUE(Contains(Check(file).results, "epoch 2, 2240 bytes")) << Check(file).results;
}

// The last byte that a table's 32 bits reach, in the file and as recorded.
TEST_F(DamageTest, SavesUpToTheLastPositionAndNoFurther) {
    LibrarySession session;
    SetUpPulseEpoch();
    for (const int64_t beyond : {0, 1}) {
        for (const bool isRecorded : {false, true}) {
            ASSERT_EQ(ITCCreateFile("large.dat", 1), 0);
            filehdr->numEpochs = 0;
            const int64_t start = int64_t{UINT32_MAX} - 952 + beyond;
            EpochPosition[0] = isRecorded ? static_cast<uint32_t>(start) : 580;
            const int64_t real = isRecorded ? 580 : start;
            ASSERT_EQ(fseeko(ITCOpenFilePtr, real, SEEK_SET), 0);
            EXPECT_EQ(ITCSaveToFile(), beyond == 0 ? 0 : 7) << isRecorded;
        }
    }
}

}  // namespace
}  // namespace corvantis_test
