// What is read of an epoch is what was acquired and played in it, whole or in parts.
#if defined(__STDCPP_THREADS__)
#include <thread>
#endif

#include "Readings.h"
#include "StimulusRecords.h"

namespace corvantis_test {
namespace {

using Preparations = std::vector<std::function<void()>>;

bool IsUnstored(int32_t type) { return type == 5 || type == 8; }
bool IsApplications(int32_t type) { return type == 6 || type == 12; }

// One epoch of every type that a builder makes, and what is hard to find one's way through.
Preparations EveryKind() {
    Preparations all;
    for (const Stimulus& stimulus : kStimuli) {
        if (stimulus.type == 7 || stimulus.type == 5) continue;
        all.push_back([&stimulus] {
            static Record record(stimulus);
            record = Record(stimulus);
            static std::vector<float> conductances(1000, 2.5F);
            ExcitatoryG = InhibitoryG = conductances.data();
            SetUpAcquisition(1, 1000);
            stimulus.build(0, record.words);
        });
    }
    all.push_back(SetUpFourEntries);
    all.push_back(SetUpUnstored);
    all.push_back([] { SetUpPulseEpoch(3); });
    return all;
}

TEST(ReadEpochs, AreWhatWasAcquiredAndPlayed) {
    const RecordedFile file = RecordFile(EveryKind());
    MemorySource source{file.bytes};
    Reading reading(source);
    ASSERT_EQ(reading.Epochs(), static_cast<int64_t>(file.epochs.size()));
    for (int64_t number = reading.Epochs(); number-- > 0;) {
        const RecordedEpoch& expected = file.epochs[static_cast<size_t>(number)];
        EXPECT_EQ(reading.Acquired(number), expected.acquired) << number;
        CorvantisStimulusRecord record;
        ASSERT_EQ(CorvantisParameters(reading.recording, number, 0, -1, &record, nullptr), 0);
        const Counts played = reading.Played(number);
        if (IsUnstored(record.type) || IsApplications(record.type)) {
            EXPECT_EQ(reading.code, CORVANTIS_NO_STIMULUS) << number;
            EXPECT_NE(reading.Text().find("entry 0 is a "), std::string::npos) << reading.Text();
        } else {
            EXPECT_EQ(played, expected.played) << number;
        }
    }
}

TEST(ReadEpochs, GiveAnyRangeOfAnyEntryWithAnyStride) {
    const RecordedFile file = RecordFile({[] { SetUpNoise(5, 4, 3); }});
    const RecordedEpoch& whole = file.epochs[0];
    MemorySource source{file.bytes};
    Reading reading(source);
    PseudoRandom random;
    for (int round = 0; round < 300; ++round) {
        const int32_t entry = static_cast<int32_t>(random.Next() % 4) - 1;
        const int32_t width = entry < 0 ? 3 : 1;
        const int64_t first = random.Next() % (kNoisePoints + 1);
        const int64_t count = random.Next() % static_cast<uint32_t>(kNoisePoints - first + 1);
        const int64_t stride = width + random.Next() % 3;
        Counts acquired(static_cast<size_t>(stride * (count + 1)), 99), played = acquired;
        ASSERT_EQ(CorvantisCounts(reading.recording, 0, entry, first, count, acquired.data(),
                                  stride, nullptr),
                  0);
        ASSERT_EQ(CorvantisStimulus(reading.recording, 0, entry, first, count, played.data(),
                                    stride, nullptr, nullptr),
                  0);
        for (int64_t i = 0; i < count * stride; ++i) {
            const int64_t k = i % stride, point = first + i / stride;
            const auto from = static_cast<size_t>(point * 3 + std::max(entry, 0) + k);
            const auto at = static_cast<size_t>(i);
            ASSERT_EQ(acquired[at], k < width ? whole.acquired[from] : 99);
            ASSERT_EQ(played[at], k < width ? whole.played[from] : 99);
        }
    }
    int16_t value;
    const struct {
        int64_t epoch;
        int32_t entry;
        int64_t first, count, stride;
    } refused[] = {{0, 3, 0, 1, 1},         {0, -2, 0, 1, 1},  {0, 0, -1, 1, 1},
                   {0, 0, 0, -1, 1},        {0, 0, 120, 1, 1}, {0, 0, INT64_MAX, 1, 1},
                   {0, 0, 1, INT64_MAX, 1}, {0, -1, 0, 1, 2},  {1, 0, 0, 1, 1},
                   {-1, 0, 0, 1, 1}};
    for (const auto& each : refused) {
        EXPECT_EQ(CorvantisCounts(reading.recording, each.epoch, each.entry, each.first, each.count,
                                  &value, each.stride, nullptr),
                  CORVANTIS_BAD_ARGUMENT);
    }
}

TEST(ReadEpochs, GiveTheSamePointsOfManyAtOnce) {
    const RecordedFile file = RecordFile({[] { SetUpPulseEpoch(2); }, [] { SetUpPulseEpoch(1); },
                                          [] { SetUpNoise(1, 4, 2); }, [] { SetUpPulseEpoch(2); }});
    MemorySource source{file.bytes};
    Reading reading(source);
    std::array<int16_t, 4 * 6> values;
    std::array<uint8_t, 4> missing;
    values.fill(99);
    ASSERT_EQ(CorvantisManyCounts(reading.recording, 0, 4, CORVANTIS_ALL_ENTRIES, 2, 2,
                                  values.data(), 6, missing.data(), nullptr),
              0);
    EXPECT_EQ(missing, (std::array<uint8_t, 4>{0, 1, 0, 0}));
    for (size_t i = 0; i < values.size(); ++i) {
        const auto& acquired = file.epochs[i / 6].acquired;
        EXPECT_EQ(values[i], i % 6 > 3 ? 99 : i / 6 == 1 ? 0 : acquired[4 + i % 6]) << i;
    }
    EXPECT_EQ(CorvantisManyCounts(reading.recording, 0, 2, CORVANTIS_ALL_ENTRIES, 0, 1,
                                  values.data(), 2, nullptr, nullptr),
              CORVANTIS_BAD_ARGUMENT);
}

TEST(ReadEpochs, HaveConductancesAndComponentsOfEachEntry) {
    const RecordedFile file = RecordFile({SetUpFourEntries});
    MemorySource source{file.bytes};
    Reading reading(source);
    std::vector<float> values(3);
    for (const int32_t entry : {1, 3}) {
        ASSERT_EQ(CorvantisConductance(reading.recording, 0, entry, CORVANTIS_INHIBITORY, 1, 3,
                                       values.data(), nullptr),
                  0);
        EXPECT_EQ(values, (std::vector<float>{-2.5F, 1e30F, 0}));
    }
    EXPECT_EQ(CorvantisConductance(reading.recording, 0, 0, CORVANTIS_EXCITATORY, 0, 1,
                                   values.data(), nullptr),
              CORVANTIS_BAD_ARGUMENT);
    CorvantisStimulusRecord record;
    ASSERT_EQ(CorvantisParameters(reading.recording, 0, 2, -1, &record, nullptr), 0);
    EXPECT_EQ(record.components, 256);
    ASSERT_EQ(CorvantisParameters(reading.recording, 0, 2, 255, &record, nullptr), 0);
    EXPECT_EQ(std::memcmp(record.record, &kPulse, sizeof kPulse), 0);
    EXPECT_EQ(CorvantisParameters(reading.recording, 0, 2, 256, &record, nullptr),
              CORVANTIS_BAD_ARGUMENT);
}

// A component shorter than the one before it, and noise that goes on behind the entry before.
TEST(ReadEpochs, GiveWhatEachComponentAddsToASum) {
    const auto prepare = [] {
        const ITCSegmentedNoiseParameters noise = {300, 7, -5, kNoisePoints, 0, 0, 7, {}};
        const ITCPulseParameters pulse = {100, -50, 40, 20, 10, {}};
        SetUpNoise(3, 9, 2);
        ASSERT_EQ(InstallSum(1, 3), 0);
        ASSERT_EQ(ITCAddSegmentedNoiseParams(1, &noise), 0);
        ASSERT_EQ(ITCAddPulseParams(1, &pulse), 0);
        ASSERT_EQ(ITCAddSegmentedNoiseParams(1, &noise), 0);
    };
    const RecordedFile file = RecordFile({prepare, prepare});
    MemorySource source{file.bytes};
    Reading reading(source);
    for (int64_t epoch = 0; epoch < 2; ++epoch) {
        std::vector<double> sum(kNoisePoints), added(kNoisePoints);
        for (int32_t component = 0; component < 3; ++component) {
            ASSERT_EQ(CorvantisComponentValues(reading.recording, epoch, 1, component, 0,
                                               kNoisePoints, added.data(), &reading.problem),
                      CORVANTIS_SUCCESS)
                << reading.Text();
            std::transform(sum.begin(), sum.end(), added.begin(), sum.begin(), std::plus<>());
        }
        const Counts& played = file.epochs[static_cast<size_t>(epoch)].played;
        CorvantisScaleInfo scale;
        CorvantisScale(reading.recording, epoch, 1, CORVANTIS_STIMULUS, &scale, nullptr);
        for (size_t i = 0; i < sum.size(); ++i) {
            const double expected = played[2 * i + 1] / scale.countsPerVolt * scale.factor;
            ASSERT_NEAR(sum[i], expected, 1e-9) << epoch << " " << i;
        }
    }
    double value = 0;
    EXPECT_EQ(CorvantisComponentValues(reading.recording, 0, 1, 3, 0, 1, &value, nullptr),
              CORVANTIS_BAD_ARGUMENT);
    EXPECT_EQ(CorvantisComponentValues(reading.recording, 0, -1, 0, 0, 1, &value, nullptr),
              CORVANTIS_BAD_ARGUMENT);
}

// Gains, factors and units of an entry by hand; 1600 counts, and -32768 of a word.
TEST(ReadEpochs, AreInUnitsByOneRule) {
    const struct {
        float scale, factor;
        const char* unit;
        uint32_t word;
        const char* expectedUnit;
        double response, stimulus;
        int32_t quantity = CORVANTIS_OTHER;
        double si = 1.0;
    } cases[] = {{3200, 0.01F, "mV", 0, "mV", 0.5 / double{0.01F}, 0.5 * double{0.01F},
                  CORVANTIS_POTENTIAL, 1e-3},
                 {3200, 2, "\xC2\xB5V", 0, "\xC2\xB5V", 0.25, 1, CORVANTIS_POTENTIAL, 1e-6},
                 {3200, 2, "fA", 0, "fA", 0.25, 1, CORVANTIS_CURRENT, 1e-15},
                 {3200, 2, "nS", 0, "nS", 0.25, 1, CORVANTIS_ADMITTANCE, 1e-9},
                 {3200, 2, "revS", 0, "revS", 0.25, 1},
                 {3200, 0, "mV", 0, "V", 0.5, 0.5},
                 {3200, INFINITY, "mV", 0, "V", 0.5, 0.5},
                 {3200, 400, "", 0, "V", 0.5, 0.5},
                 {0, 400, "pA", 0, "counts", 1600, 1600},
                 {3200, 400, "pA", 0x2400, "word", 1600, 1600},
                 {3200, 2, "sixteen letters.", 0x880, "sixteen letters.", 0.25, 1}};
    for (const auto& each : cases) {
        const RecordedFile file = RecordFile({[&] {
            const ITCPulseParameters level = {1600, 0, kPulseEpochPoints, 0, 0, {}};
            SetUpPulseEpoch();
            ASSERT_EQ(ITCPulseParams(0, &level), 0);
            filehdr->inputScale = filehdr->outputScale = each.scale;
            epochhdr->ampGain[0] = epochhdr->convFactor[0] = each.factor;
            epochhdr->channelSequence[0] = each.word;
            std::strncpy(epochhdr->inputUnits[0], each.unit, ITC_UNITS_LENGTH);
            std::strncpy(epochhdr->outputUnits[0], each.unit, ITC_UNITS_LENGTH);
        }});
        Bytes bytes = file.bytes;
        Put(bytes, 580 + 912 + 32, BigSamples({1600, 1600, 1600, 1600}));
        MemorySource source{bytes};
        Reading reading(source);
        double response = 0, stimulus = 0;
        ASSERT_EQ(CorvantisValues(reading.recording, 0, 0, 3, 1, &response, 0, nullptr), 0);
        ASSERT_EQ(
            CorvantisStimulusValues(reading.recording, 0, 0, 3, 1, &stimulus, 0, nullptr, nullptr),
            0);
        CorvantisScaleInfo scale;
        for (const int32_t direction : {CORVANTIS_RESPONSE, CORVANTIS_STIMULUS}) {
            ASSERT_EQ(CorvantisScale(reading.recording, 0, 0, direction, &scale, nullptr), 0);
            EXPECT_STREQ(scale.unit, each.expectedUnit);
            EXPECT_EQ(scale.quantity, each.quantity);
            EXPECT_EQ(scale.si, each.si);
        }
        EXPECT_EQ(response, each.response) << scale.formula;
        EXPECT_EQ(stimulus, each.stimulus) << scale.formula;
    }
}

TEST(ReadEpochs, GiveParametersAsJsonIntoRoomEnough) {
    const RecordedFile file = RecordFile({[] { SetUpPulseEpoch(); }});
    MemorySource source{file.bytes};
    Reading reading(source);
    char text[300] = "before";
    int64_t length = 0;
    const auto ask = [&](int64_t capacity) {
        return CorvantisStimulusJson(reading.recording, 0, 0, text, capacity, &length, nullptr);
    };
    EXPECT_EQ(ask(20), CORVANTIS_BAD_ARGUMENT);
    EXPECT_STREQ(text, "before");
    EXPECT_EQ(ask(length), CORVANTIS_BAD_ARGUMENT);
    ASSERT_EQ(ask(length + 1), CORVANTIS_SUCCESS);
    EXPECT_EQ(std::strlen(text), static_cast<size_t>(length));
    EXPECT_TRUE(std::string_view(text).starts_with("{\"type\":3,\"name\":\"pulse\",")) << text;
}

TEST(ReadEpochs, GiveFieldsByNameAsColumns) {
    Preparations preparations;
    for (int number = 0; number < 5; ++number) {
        preparations.push_back([number] {
            SetUpPulseEpoch();
            epochhdr->epochTime = static_cast<float>(number) / 4;
            epochhdr->userValue[23] = static_cast<float>(number);
            epochhdr->digitalOutput = static_cast<uint16_t>(65535 - number);
            std::strcpy(epochhdr->epochComment, number % 2 == 0 ? "even" : "odd");
        });
    }
    RecordedFile file = RecordFile(preparations);
    file.bytes[580 + 2 * (912 + 32 + 8) + 605] = 7;  // its type becomes a sum: beyond the epoch
    MemorySource source{file.bytes};
    Reading reading(source);
    const CorvantisField* fields = nullptr;
    int32_t count = 0;
    ASSERT_EQ(CorvantisFields(CORVANTIS_EPOCH_HEADER, &fields, &count), 0);
    struct Row {
        float time;
        float users[24];
        uint16_t word;
        char comment[512];
    } rows[4];
    std::vector<CorvantisColumn> columns;
    const auto ask = [&](const char* name, void* to) {
        const auto* field = std::find_if(fields, fields + count,
                                         [&](auto& each) { return !strcmp(each.name, name); });
        columns.push_back({field, to, sizeof(Row)});
    };
    ask("epochTime", &rows[0].time);
    ask("userValue", &rows[0].users);
    ask("digitalOutput", &rows[0].word);
    ask("epochComment", &rows[0].comment);
    std::array<uint8_t, 4> missing;
    ASSERT_EQ(CorvantisColumns(reading.recording, 1, 4, columns.data(), 4, missing.data(), nullptr),
              0);
    EXPECT_EQ(missing, (std::array<uint8_t, 4>{0, 1, 0, 0}));
    EXPECT_EQ(rows[3].time, 1.0F);
    EXPECT_EQ(rows[2].users[23], 3.0F);
    EXPECT_EQ(rows[0].word, 65534);
    EXPECT_EQ(rows[1].word, 0);
    EXPECT_STREQ(rows[2].comment, "odd");
    EXPECT_EQ(
        CorvantisColumns(reading.recording, 1, 4, columns.data(), 4, nullptr, &reading.problem),
        CORVANTIS_DAMAGED);
    EXPECT_NE(reading.Text().find("memory: epoch 2 at byte 2484: found "), std::string::npos)
        << reading.Text();
}

// Noise that goes on behind noise: every order, and threads that share a recording.
TEST(ReadEpochs, AreRecomputedInAnyOrderByAnyNumberOfThreads) {
    for (const int8_t version : {int8_t{8}, int8_t{4}}) {
        PseudoRandom random;
        Preparations preparations = {[] { SetUpNoise(9, 8); }};
        for (int i = 0; i < 60; ++i) {
            const int32_t seed = std::array{5, -5, 0, INT32_MIN}[random.Next() % 4];
            const int32_t segment = std::array{8, 7, 120, 1}[random.Next() % 4];
            const int32_t entries = static_cast<int32_t>(random.Next() % 4) + 1;
            preparations.push_back([=] {
                SetUpNoise(seed, segment, entries);
                const ITCNoiseParameters filtered = {300, 0, seed, 111, 5, 4, 3, 1000, 2};
                if (entries == 2) ITCNoiseParams(1, &filtered);
                const ITCBinaryNoiseParameters binary = {300, 0, seed, 120, 0, 0, segment, {}};
                if (entries == 3) ITCBinaryNoiseParams(0, &binary);
            });
        }
        DropSpareDeviate();
        const RecordedFile file = RecordFile(preparations, version);
        MemorySource source{file.bytes};
        Reading shared(source), inOrder(source);
        for (size_t number = 0; number < file.epochs.size(); ++number) {
            EXPECT_EQ(inOrder.Played(static_cast<int64_t>(number)), file.epochs[number].played);
        }
        const auto compare = [&](uint32_t seed) {
            std::mt19937 choose(seed);
            for (int round = 0; round < 150; ++round) {
                const auto number = static_cast<size_t>(choose() % file.epochs.size());
                const RecordedEpoch& epoch = file.epochs[number];
                Counts played(epoch.played.size());
                const int32_t code = CorvantisStimulus(
                    shared.recording, static_cast<int64_t>(number), CORVANTIS_ALL_ENTRIES, 0,
                    epoch.points, played.data(), 0, nullptr, nullptr);
                EXPECT_TRUE(code == 0 && played == epoch.played) << number;
                Counts last(static_cast<size_t>(epoch.points));
                CorvantisStimulus(shared.recording, static_cast<int64_t>(number), epoch.entries - 1,
                                  0, epoch.points, last.data(), 0, nullptr, nullptr);
                EXPECT_EQ(last.back(), epoch.played.back());
            }
        };
#if defined(__STDCPP_THREADS__)
        std::vector<std::thread> threads;
        for (uint32_t seed = 0; seed < 4; ++seed) threads.emplace_back(compare, seed);
        for (std::thread& thread : threads) thread.join();
#else
        compare(0);
#endif
    }
}

TEST(ReadEpochs, SayWhatAStimulusRestsOn) {
    const auto generic = [] {
        const ITCGenericParameters wave = {1, 2, kNoisePoints, 0, 0, {}};
        SetUpNoise(5, 8, 2);
        ASSERT_EQ(ITCGenericParams(&wave), 0);
    };
    const RecordedFile file =
        RecordFile({[] { SetUpNoise(-5, 8); }, [] { SetUpNoise(5, 8); }, [] { SetUpNoise(-5, 8); },
                    [] { SetUpNoise(5, 40); }, [] { SetUpNoise(5, 8); }, generic,
                    [] { SetUpNoise(5, 8); }, [] { SetUpPulseEpoch(); }, SetUpFourEntries});
    MemorySource source{file.bytes};
    Reading reading(source);
    const struct {
        int32_t reason;
        int64_t epoch;
    } expected[] = {{CORVANTIS_BEGAN_BEFORE_FILE, -1}, {CORVANTIS_BEGAN_BEFORE_FILE, -1},
                    {CORVANTIS_RESTS_ON_ORDER, 1},     {CORVANTIS_RESTS_ON_ORDER, 1},
                    {CORVANTIS_NO_DOUBT, -1},          {CORVANTIS_RESTS_ON_ORDER, 4},
                    {CORVANTIS_BEHIND_UNKNOWN, 5},     {CORVANTIS_NO_DOUBT, -1},
                    {CORVANTIS_FOLLOWED_CELL, -1}};
    for (int64_t number = 0; number < reading.Epochs(); ++number) {
        CorvantisDoubt doubt;
        CorvantisStimulus(reading.recording, number, CORVANTIS_ALL_ENTRIES, 0, 0, nullptr, 0,
                          &doubt, nullptr);
        EXPECT_EQ(doubt.reason, expected[number].reason) << number << doubt.text;
        EXPECT_EQ(doubt.epoch, expected[number].epoch) << number;
        EXPECT_EQ(doubt.text[0] == '\0', doubt.reason == CORVANTIS_NO_DOUBT);
    }
}

}  // namespace
}  // namespace corvantis_test
