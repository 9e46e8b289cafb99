// Files that are damaged, foreign, growing or changing under the reader, and sources that fail.
#include "Readings.h"

namespace corvantis_test {
namespace {

RecordedFile FivePulses() {
    return RecordFile({[] { SetUpPulseEpoch(1); }, [] { SetUpPulseEpoch(2); },
                       [] { SetUpPulseEpoch(3); }, [] { SetUpPulseEpoch(2); },
                       [] { SetUpPulseEpoch(1); }});
}

// Everything that can be asked, each answer right or refused; how many were refused.
int AskForAll(Reading& reading, const RecordedFile& file) {
    int refused = 0;
    const auto hold = [&](bool isRight) {
        refused += reading.code == CORVANTIS_SUCCESS ? 0 : 1;
        EXPECT_TRUE(isRight || reading.code == CORVANTIS_FILE_ERROR ||
                    reading.code == CORVANTIS_CHANGED)
            << reading.code << reading.Text();
    };
    for (int64_t number = reading.Epochs(); number-- > 0;) {
        const RecordedEpoch& epoch = file.epochs[static_cast<size_t>(number)];
        hold(reading.Acquired(number) == epoch.acquired);
        hold(reading.Played(number) == epoch.played);
    }
    int64_t findings = 0;
    reading.code = CorvantisFindings(reading.recording, &findings, &reading.problem);
    hold(findings == 0);
    return refused;
}

TEST(FailingSources, GiveErrorsAndNeverWrongSamples) {
    DropSpareDeviate();
    const RecordedFile noise =
        RecordFile({[] { SetUpNoise(3, 40); }, [] { SetUpNoise(-3, 40); },
                    [] { SetUpPulseEpoch(2); }, [] { SetUpNoise(4, 8, 4); }});
    RecordedFile walked = noise;  // without its table, which the walk does not miss
    Put(walked.bytes, Word(noise.bytes, 540), Bytes(16));
    for (const auto fault : {MemorySource::Fault::kFails, MemorySource::Fault::kShort}) {
        for (const RecordedFile& file : {noise, FivePulses()}) {
            int64_t nth = 1;
            for (bool wasReached = true; wasReached; ++nth) {
                MemorySource source{file.bytes};
                source.faultyRead = nth;
                source.fault = fault;
                Reading reading(source);
                if (reading.recording == nullptr) {
                    EXPECT_EQ(source.closed, 1);
                    EXPECT_NE(reading.Text().find("memory: byte "), std::string::npos);
                    continue;
                }
                AskForAll(reading, file);
                wasReached = source.reads >= nth;
                source.faultyRead = 0;
                EXPECT_EQ(AskForAll(reading, file), 0) << "after the fault of read " << nth;
            }
            EXPECT_GT(nth, 10);
        }
    }
}

TEST(Sources, AreAskedForFewBytes) {
    constexpr uint32_t kEpochs = 20'000, kEpochSize = 912 + 32 + 8;
    Bytes bytes = PulseFileBytes();
    const Bytes epoch(bytes.begin() + 580, bytes.begin() + 580 + kEpochSize);
    bytes.resize(580);
    Bytes table;
    for (uint32_t i = 0; i < kEpochs; ++i) {
        const Bytes position = Big32(580 + i * kEpochSize);
        table.insert(table.end(), position.begin(), position.end());
        bytes.insert(bytes.end(), epoch.begin(), epoch.end());
    }
    Put(bytes, 536, Join({Big32(kEpochs), Big32(580 + kEpochs * kEpochSize)}));
    bytes.insert(bytes.end(), table.begin(), table.end());
    MemorySource source{bytes};
    Reading reading(source);
    ASSERT_EQ(reading.Epochs(), kEpochs);
    EXPECT_EQ(reading.Acquired(kEpochs / 2), (Counts{1, 2, 3, 4}));
    EXPECT_LT(source.bytesRead, 65536);
    CorvantisRecordingInfo info;
    ASSERT_EQ(CorvantisInfo(reading.recording, &info), 0);
    EXPECT_EQ(info.found, CORVANTIS_BY_TABLE);
}

TEST(ChangedFiles, AreNoticed) {
    const RecordedFile file = FivePulses();
    const size_t second = 580 + 912 + 32 + 8;
    MemorySource source{file.bytes};
    Reading reading(source);
    ASSERT_EQ(reading.Acquired(1), file.epochs[1].acquired);
    source.bytes[second + 4] = 'x';  // its comment
    reading.Acquired(1);
    EXPECT_EQ(reading.code, CORVANTIS_CHANGED);
    source.bytes.resize(second + 1000);
    for (const int64_t number : {int64_t{1}, int64_t{4}}) {
        reading.Acquired(number);
        EXPECT_EQ(reading.code, CORVANTIS_CHANGED) << reading.Text();
    }
    EXPECT_EQ(CorvantisRefresh(reading.recording, nullptr), CORVANTIS_CHANGED);
}

// Damage by hand, and which numbers are then missing.
TEST(DamagedFiles, KeepTheNumbersOfTheirEpochs) {
    const RecordedFile file = FivePulses();
    const uint32_t table = Word(file.bytes, 540);
    const size_t third = Word(file.bytes, table + 8);
    const auto with = [&](size_t place, const Bytes& piece) {
        Bytes bytes = file.bytes;
        Put(bytes, place, piece);
        return bytes;
    };
    const struct {
        Bytes bytes;
        int64_t epochs;
        std::vector<int64_t> missing;
    } cases[] = {
        {with(third + 576, Big32(0x7FFFFFFF)), 5, {2}},
        {with(Word(file.bytes, table + 4), Bytes(third - Word(file.bytes, table + 4) + 912, 0xFF)),
         5,
         {1, 2}},
        {with(third + 605, {99}), 5, {}},  // unknown, but the table says where it ends
        {with(table + 8, Big32(0x12345678)), 5, {}},
        {with(table + 12, Big32(0)), 5, {}},
        {with(536, Big32(6)), 5, {}},
        {with(536, Big32(3)), 5, {}},
        {with(540, Big32(999)), 5, {}},
        {First(file.bytes, third + 1000), 5, {2, 3, 4}},
        {First(file.bytes, table), 5, {}},
    };
    for (const auto& each : cases) {
        MemorySource source{each.bytes};
        Reading reading(source);
        ASSERT_EQ(reading.code, 0) << reading.Text();
        EXPECT_EQ(reading.Epochs(), each.epochs);
        std::vector<int64_t> missing;
        for (int64_t number = 0; number < reading.Epochs(); ++number) {
            const Counts acquired = reading.Acquired(number);
            if (reading.code == CORVANTIS_DAMAGED) {
                missing.push_back(number);
                EXPECT_NE(reading.Text().find("epoch " + std::to_string(number)),
                          std::string::npos);
            } else {
                EXPECT_EQ(acquired, file.epochs[static_cast<size_t>(number)].acquired) << number;
            }
        }
        EXPECT_EQ(missing, each.missing);
        int64_t findings = 0;
        EXPECT_EQ(CorvantisFindings(reading.recording, &findings, nullptr), 0);
        EXPECT_GT(findings, 0);
    }
}

// Of no segment at all, though its length is negative: it leaves no deviate to the next noise.
TEST(DamagedFiles, DrawNothingForNegativeLengths) {
    const auto noise = [](uint32_t points) {
        return Join({EpochHeaderBytes(100, 20, {9}), Big32(300), Big32(0), Big32(5), Big32(points),
                     Bytes(8), Big32(5), Bytes(12), Bytes(40)});
    };
    MemorySource source{DataFileBytes({noise(-6U), noise(20)})}, alone{DataFileBytes({noise(20)})};
    Reading behind(source), first(alone);
    EXPECT_EQ(behind.Played(0), Counts(20));
    EXPECT_EQ(behind.Played(1), first.Played(0));
    EXPECT_EQ(behind.doubt.reason, CORVANTIS_NO_DOUBT);
}

TEST(ForeignFiles, AreRefusedInWords) {
    const TemporaryFolder folder;
    const struct {
        Bytes bytes;
        const char* words;
    } cases[] = {{Join({Hex("89504E47 0D0A1A0A"), Bytes(5000, 77)}), "looks like a PNG picture"},
                 {Bytes(5000, 'a'), "looks like a text"},
                 {{}, "is empty"},
                 {Join({Hex("504B0304"), Bytes(100)}), "looks like a ZIP archive"},
                 {Join({{9}, Bytes(579)}), "format version 9 is newer than 8"}};
    for (const auto& each : cases) {
        WriteFile(folder.File("foreign"), each.bytes);
        const Reading reading(folder.File("foreign"));
        EXPECT_EQ(reading.recording, nullptr);
        EXPECT_NE(reading.Text().find(each.words), std::string::npos) << reading.Text();
    }
    EXPECT_NE(Reading(folder.path.string()).Text().find("is a directory"), std::string::npos);
    EXPECT_EQ(Reading(folder.File("none")).code, CORVANTIS_FILE_ERROR);
}

// A save writes the epoch over the old table, a new table behind it, then the header: the file as
// it is after any number of these bytes.
TEST(GrowingFiles, NeverShowAnEpochThatIsNotComplete) {
    const RecordedFile file = FivePulses();
    for (size_t saved = 0; saved < 5; ++saved) {
        const Bytes& before = file.steps[saved];
        const Bytes& after = file.steps[saved + 1];
        const size_t place = saved == 0 ? 580 : Word(before, 540);
        // Meets all of the moments, one after the other.
        MemorySource followed{before};
        Reading following(followed);
        for (size_t written = 0; written <= after.size() - place + 2; ++written) {
            MemorySource source{before};
            Reading reading(source);
            const size_t arrived = std::min(place + written, after.size());
            source.bytes.resize(std::max(before.size(), arrived));
            std::copy(after.begin() + place, after.begin() + arrived, source.bytes.begin() + place);
            const bool isHeaderPart = written > after.size() - place;
            if (isHeaderPart) std::copy_n(after.begin() + 536, 4, source.bytes.begin() + 536);
            if (written == after.size() - place + 2) source.bytes = after;
            for (size_t number = 0; number < saved; ++number) {
                ASSERT_EQ(reading.Acquired(static_cast<int64_t>(number)),
                          file.epochs[number].acquired)
                    << saved << " " << written << reading.Text();
            }
            const auto least = static_cast<int64_t>(saved);
            followed.bytes = source.bytes;
            for (Reading* each : {&reading, &following}) {
                ASSERT_EQ(CorvantisRefresh(each->recording, &each->problem), 0)
                    << saved << " " << written << each->Text();
                ASSERT_GE(each->Epochs(), least);
                ASSERT_LE(each->Epochs(), least + (isHeaderPart ? 1 : 0));
                for (int64_t number = 0; number < each->Epochs(); ++number) {
                    ASSERT_EQ(each->Acquired(number),
                              file.epochs[static_cast<size_t>(number)].acquired)
                        << saved << " " << written << each->Text();
                }
            }
            source.bytes = after;
            ASSERT_EQ(CorvantisRefresh(reading.recording, &reading.problem), 0);
            ASSERT_EQ(reading.Epochs(), least + 1);
            ASSERT_EQ(reading.Acquired(least), file.epochs[saved].acquired);
        }
    }
}

}  // namespace
}  // namespace corvantis_test
