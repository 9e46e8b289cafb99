// Opening by what is known from before, which is compared and never trusted; saying much of many
// epochs at once.
#include "Readings.h"

namespace corvantis_test {
namespace {

// What there is to know of a recording.
struct Knowledge {
    CorvantisRecordingInfo info = {};
    std::vector<CorvantisPlace> places;
};

Knowledge KnowledgeOf(MemorySource& source) {
    Reading reading(source);
    Knowledge known;
    EXPECT_EQ(CorvantisInfo(reading.recording, &known.info), 0);
    for (int64_t epoch = 0; epoch < reading.Epochs(); ++epoch) {
        CorvantisEpochInfo info;
        if (CorvantisEpoch(reading.recording, epoch, &info, nullptr) != 0) continue;
        known.places.push_back({epoch, info.start, info.end, info.digest});
    }
    return known;
}

struct Recalled : Reading {
    Recalled(MemorySource& source, const Knowledge& known) : Reading(std::string("")) {
        const CorvantisSource given = source.Get();
        problem = {};
        code = CorvantisOpenKnown("memory", &given, &known.info, known.places.data(),
                                  std::ssize(known.places), &recording, &problem);
    }
};

RecordedFile Mixed() {
    std::vector<std::function<void()>> preparations;
    for (int number = 0; number < 30; ++number) {
        preparations.push_back([number] {
            SetUpNoise(number % 3 == 0 ? 5 : 0, 7, number % 4 + 1);
            epochhdr->epochTime = static_cast<float>(number);
        });
    }
    return RecordFile(preparations);
}

TEST(KnownPlaces, LeadToEpochsWithoutASearch) {
    const RecordedFile file = Mixed();
    Bytes cut = file.bytes;
    cut.resize(cut.size() - 70);  // of the table
    for (const Bytes& bytes : {file.bytes, cut}) {
        MemorySource source{bytes};
        const Knowledge known = KnowledgeOf(source);
        ASSERT_EQ(known.places.size(), 30U);
        source.bytesRead = 0;
        Recalled recalled(source, known);
        ASSERT_EQ(recalled.code, 0) << recalled.Text();
        EXPECT_EQ(recalled.Acquired(17), file.epochs[17].acquired);
        EXPECT_LT(source.bytesRead, 8000);
        Recalled others(source, {known.info, {known.places[3]}});
        for (const int64_t epoch : {3, 29, 0}) {
            EXPECT_EQ(others.Acquired(epoch), file.epochs[size_t(epoch)].acquired);
            EXPECT_EQ(others.Played(epoch), file.epochs[size_t(epoch)].played);
        }
    }
}

TEST(KnownPlaces, AreComparedWithTheFile) {
    const RecordedFile file = Mixed();
    MemorySource source{file.bytes};
    const Knowledge known = KnowledgeOf(source);
    const auto after = [&](size_t place) {
        MemorySource changed{file.bytes};
        changed.bytes[place] ^= 1;
        Recalled recalled(changed, known);
        if (recalled.code == 0) recalled.Acquired(12);
        return recalled.code;
    };
    const auto start = static_cast<size_t>(known.places[12].start);
    EXPECT_EQ(after(4), CORVANTIS_CHANGED);            // the file's header
    EXPECT_EQ(after(start + 2), CORVANTIS_CHANGED);    // the epoch's
    EXPECT_EQ(after(start + 607), CORVANTIS_CHANGED);  // its length
    EXPECT_EQ(after(size_t(known.places[11].start)), CORVANTIS_SUCCESS);
    MemorySource longer{file.steps[29]};
    EXPECT_EQ(Recalled(longer, known).code, CORVANTIS_CHANGED);
}

TEST(KnownPlaces, MayBeAnything) {
    const RecordedFile file = Mixed();
    MemorySource source{file.bytes};
    const Knowledge known = KnowledgeOf(source);
    PseudoRandom random;
    const int64_t odd[] = {INT64_MIN,     -1,       0, 580, 1492, source.Size() - 1,
                           source.Size(), INT64_MAX};
    const auto any = [&] { return odd[random.Next() % std::size(odd)]; };
    for (int round = 0; round < 2000; ++round) {
        Knowledge wrong = known;
        CorvantisPlace& place = wrong.places[12];
        int64_t* const values[] = {&place.start,       &place.end,       &place.epoch,
                                   &wrong.info.epochs, &wrong.info.size, &wrong.info.tablePosition};
        *values[random.Next() % std::size(values)] = any();
        *values[random.Next() % std::size(values)] = any();
        wrong.info.found = random.Next() % 3;
        const int closed = source.closed;
        {
            Recalled recalled(source, wrong);
            if (recalled.code == 0) {
                const Counts counts = recalled.Acquired(12);
                EXPECT_TRUE(counts.empty() || counts == file.epochs[12].acquired);
                recalled.Played(29);
            }
        }
        ASSERT_EQ(source.closed, closed + 1);
    }
}

TEST(Descriptions, SayWhatIsSaidOfEachEpochWhateverTheRoom) {
    RecordedFile file = Mixed();
    MemorySource source{file.bytes};
    source.bytes[size_t(KnowledgeOf(source).places[9].start) + 605] = 7;  // a sum beyond its end
    Reading reading(source);
    std::string words, damage;
    std::vector<int64_t> ends(30), damageEnds(30);
    for (int64_t first = 0, capacity = 1; first < 30;) {
        std::string room(size_t(capacity), '?'), more(room);
        std::array<uint8_t, 30> missing = {};
        std::array<CorvantisEpochInfo, 30> infos;
        int64_t described = -1;
        const CorvantisTexts texts[] = {
            {CORVANTIS_SAY_STIMULUS, room.data(), capacity, ends.data() + first},
            {CORVANTIS_SAY_DAMAGE, more.data(), capacity, damageEnds.data() + first}};
        ASSERT_EQ(CorvantisDescribe(reading.recording, first, 30 - first, texts, 2, infos.data(),
                                    nullptr, missing.data(), &described, &reading.problem),
                  0);
        for (int64_t i = 0; i < described; ++i) {
            EXPECT_EQ(missing[size_t(i)], first + i == 9 ? 1 : 0);
            CorvantisEpochInfo info = {};
            CorvantisEpoch(reading.recording, first + i, &info, nullptr);
            EXPECT_EQ(infos[size_t(i)].digest, first + i == 9 ? 0 : info.digest);
        }
        if (described > 0) words += room.substr(0, size_t(ends[size_t(first + described - 1)]));
        if (described > 0)
            damage += more.substr(0, size_t(damageEnds[size_t(first + described - 1)]));
        first += described;
        capacity = 2 * capacity + 1;
    }
    std::string expected;
    for (int64_t epoch = 0; epoch < 30; ++epoch) {
        for (int32_t entry = 0; entry < file.epochs[size_t(epoch)].entries && epoch != 9; ++entry) {
            char text[200];
            int64_t length = 0;
            ASSERT_EQ(CorvantisStimulusWords(reading.recording, epoch, entry, text, 200, &length,
                                             nullptr),
                      0);
            expected += (entry > 0 ? " | " : "") + std::string(text);
        }
    }
    EXPECT_EQ(words, expected);
    EXPECT_TRUE(words.starts_with("segmented noise 0.09375 V on 0.0021875 V, ")) << words;
    EXPECT_TRUE(damage.starts_with("found ")) << damage;
}

}  // namespace
}  // namespace corvantis_test
