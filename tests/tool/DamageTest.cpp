// Files whose header, table or epochs are not what they should be: what check reports, and what
// repair makes of them.
#include <gtest/gtest.h>

#include <functional>

#include "SavedSteps.h"
#include "Survey.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

class DamageTest : public testing::Test {
  protected:
    // Three epochs of pulses, each 952 bytes: at 580, 1532 and 2484, the table at 3436.
    static Bytes ThreeEpochs() {
        return Join({FileHeaderBytes(8, 3, 3436), Epoch(1), Epoch(2), Epoch(3), Big32(580),
                     Big32(1532), Big32(2484)});
    }
    static Bytes Epoch(uint16_t value) { return PulseEpochBytes({value, 20, 30, 40}); }
    ToolRun Check(const Bytes& file) {
        WriteFile(path, file);
        return RunTool({"check", path});
    }
    // The repaired file, which check must find sound.
    Bytes Repair(const Bytes& file) {
        WriteFile(path, file);
        EXPECT_LT(RunTool({"repair", path, "-o", repaired, "--force"}).code, 2);
        const ToolRun check = RunTool({"check", repaired});
        EXPECT_EQ(check.code, 0) << check.results;
        return FileContent(repaired);
    }
    static Bytes FileOf(const std::vector<Bytes>& epochs) {
        Bytes file(580), table;
        for (const Bytes& epoch : epochs) {
            table = Join({table, Big32(static_cast<uint32_t>(file.size()))});
            file = Join({file, epoch});
        }
        const Bytes header = FileHeaderBytes(8, static_cast<uint32_t>(epochs.size()),
                                             static_cast<uint32_t>(file.size()));
        Put(file, 0, header);
        return Join({file, table});
    }

    TemporaryFolder folder;
    std::string path = folder.File("file.dat");
    std::string repaired = folder.File("repaired.dat");
};

TEST_F(DamageTest, SoundFileIsCleanAndCopiedAsItIs) {
    const ToolRun check = Check(ThreeEpochs());
    EXPECT_EQ(check.code, 0);
    EXPECT_EQ(check.results, path + ": clean, 3 epochs in 3448 bytes\n");
    EXPECT_EQ(Repair(ThreeEpochs()), ThreeEpochs());
}

struct Damage {
    std::string name;
    std::function<void(Bytes&)> apply;
    std::string finding;         // part of check's output
    std::vector<uint16_t> kept;  // first samples of the epochs that repair keeps
};

void PrintTo(const Damage& damage, std::ostream* out) { *out << damage.name; }

class DamageCaseTest : public DamageTest, public testing::WithParamInterface<Damage> {};

TEST_P(DamageCaseTest, IsReportedAndMended) {
    Bytes file = ThreeEpochs();
    GetParam().apply(file);
    const ToolRun check = Check(file);
    EXPECT_EQ(check.code, 1);
    EXPECT_NE(check.results.find(GetParam().finding), std::string::npos) << check.results;
    std::vector<Bytes> epochs;
    for (const uint16_t value : GetParam().kept) epochs.push_back(Epoch(value));
    EXPECT_EQ(Repair(file), FileOf(epochs)) << check.results;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DamageCaseTest,
    testing::Values(
        Damage{"CountTooLow",
               [](Bytes& f) { Put(f, 536, Big32(1)); },
               "byte 536, file header, numEpochs: found 1, expected 3 epochs",
               {1, 2, 3}},
        Damage{"CountNegative",
               [](Bytes& f) { Put(f, 536, Big32(0xFFFFFFFF)); },
               "found -1, expected 3 epochs",
               {1, 2, 3}},
        Damage{"TablePositionInsideAnEpoch",
               [](Bytes& f) { Put(f, 540, Big32(2000)); },
               "byte 540, file header, epochTablePosition: found 2000, expected 3436",
               {1, 2, 3}},
        Damage{"TableEntryBeyondTheFile",
               [](Bytes& f) { Put(f, 3440, Big32(0xFFFFFFF0)); },
               "byte 3440, table of positions, epoch 1: found 4294967280, beyond the file's 3448 "
               "bytes, expected 1532, the epoch's start",
               {1, 2, 3}},
        Damage{"TableEntryOff",
               [](Bytes& f) { Put(f, 3440, Big32(1540)); },
               "byte 3440, table of positions, epoch 1: found 1540, 8 bytes behind it, expected "
               "1532",
               {1, 2, 3}},
        Damage{"BytesBehindTheTable",
               [](Bytes& f) { f.resize(3500, 7); },
               "byte 3448, 52 bytes that belong to nothing",
               {1, 2, 3}},
        Damage{"TruncatedTable", [](Bytes& f) { f.resize(3440); }, "no whole table", {1, 2, 3}},
        Damage{"TruncatedEpoch",
               [](Bytes& f) { f.resize(3430); },
               "byte 2484, epoch 2: found 946 bytes, ending in its samples (1 of 4 points)",
               {1, 2}},
        Damage{"ImpossibleType",
               [](Bytes& f) { f[1532 + 605] = 15; },
               "byte 1532, 952 bytes that belong to nothing: found stimType[0] 15, expected a type",
               {1, 3}},
        Damage{"ImpossiblePoints",
               [](Bytes& f) { f[1532 + 576] = 0x80; },
               "found epochPoints -2147483644, expected 0 or more",
               {1, 3}},
        Damage{"ImpossibleLength",
               [](Bytes& f) { f[2484 + 583] = 5; },
               "found sequenceLength 5, expected 1 to 4",
               {1, 2}},
        Damage{"ZeroedEpoch",
               [](Bytes& f) { std::fill_n(f.begin() + 1532, 952, 0); },
               "found sequenceLength 0, expected 1 to 4",
               {1, 3}},
        Damage{"LengthThatSwallowsTheNextEpoch",
               [](Bytes& f) { f[579 + 580] = 100; },
               "byte 580, 952 bytes that belong to nothing: found an epoch that ends at",
               {2, 3}},
        Damage{"LengthThatSwallowsEverything",
               [](Bytes& f) { f[577 + 580] = 1; },
               "byte 580, 952 bytes that belong to nothing",
               {2, 3}}),
    [](const auto& info) { return info.param.name; });

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
    const auto steps = RecordSteps(
        path, {[] { SetUpPulseEpoch(); }, SetUpWaves, SetUpSum, [] { SetUpPulseEpoch(); }});
    const ToolRun check = Check(steps.back());
    EXPECT_EQ(check.code, 1);
    EXPECT_NE(check.results.find("epoch 2: found 2512, 44 bytes behind it"), std::string::npos)
        << check.results;
    EXPECT_NE(check.results.find("epoch 3: found 4760, 52 bytes behind it"), std::string::npos)
        << check.results;
    const Bytes mended = Repair(steps.back());
    const size_t table = TableOf(steps.back());
    EXPECT_EQ(First(mended, table), First(steps.back(), table));
    EXPECT_EQ(Word(mended, table + 8), 2468U);
}

TEST_F(DamageTest, SecondFileOfOneRunLosesTheCountOfTheFirst) {
    LibrarySession session;
    QuietOutput quiet;
    SetUpPulseEpoch();
    for (const char* name : {"first.dat", "second.dat"}) {
        EXPECT_EQ(ITCCreateFile(folder.File(name).c_str(), 1), 0);
        EXPECT_EQ(ITCSaveToFile(), 0);
        EXPECT_EQ(ITCSaveToFile(), 0);
    }
    fflush(ITCOpenFilePtr);
    const Bytes second = FileContent(folder.File("second.dat"));
    const ToolRun check = Check(second);
    EXPECT_NE(check.results.find("numEpochs: found 4, expected 2 epochs"), std::string::npos);
    EXPECT_NE(check.results.find("table of positions: found 4 entries, expected 2"),
              std::string::npos);
    const Bytes mended = Repair(second);
    EXPECT_EQ(Word(mended, 536), 2U);
    EXPECT_EQ(Bytes(mended.begin() + 580, mended.end() - 8),
              Bytes(second.begin() + 580, second.begin() + 2484));
}

// What a save that failed leaves behind the table that it put back.
TEST_F(DamageTest, RemainsOfAFailedSaveAreNotTakenForAnEpoch) {
    Bytes file = ThreeEpochs();
    const Bytes failed = Epoch(9);
    file.insert(file.end(), failed.begin() + 12, failed.end());
    EXPECT_NE(Check(file).results.find("byte 3448, 940 bytes that belong to nothing"),
              std::string::npos);
    EXPECT_EQ(Repair(file), ThreeEpochs());
}

// Whatever byte is damaged, nothing breaks, and what repair writes is sound.
TEST_F(DamageTest, EveryDamagedByteIsSurvived) {
    const Bytes sound = RecordSteps(path, {SetUpDynamicClamp, SetUpSum, SetUpWaves}).back();
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

// In whichever piece of it the value lies.
TEST_F(DamageTest, ATablesValuesNeverDecrease) {
    for (const uint32_t spoiled : {130, 129, 65, 64, 63, 1, 0}) {
        Bytes file = FileHeaderBytes(8, 130, 580);
        for (uint32_t i = 0; i < 130; ++i) file = Join({file, Big32(580 + 912 * i)});
        if (spoiled < 130) Put(file, 580 + 4 * spoiled, Big32(579));
        WriteFile(path, file);
        const corvantis::DataFile opened(path);
        EXPECT_EQ(corvantis::IsTable(opened, 580, 130), spoiled == 130) << spoiled;
        EXPECT_FALSE(corvantis::IsTable(opened, 580, 131));
    }
}

}  // namespace
}  // namespace corvantis_test
