// Noise that begins with what earlier noise left, exported by another process than recorded it, and
// other stimuli that may not come out as they were played.
#include <algorithm>

#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

constexpr int32_t kPoints = 64;
using Set = std::vector<Preparation>;

template <class Record>
Preparation Install(int32_t (*builder)(int32_t, const Record*), const Record& record,
                    int32_t channel = 0) {
    return [=] { ASSERT_EQ(builder(channel, &record), 0); };
}

Preparation Segmented(int32_t seed, int32_t segmentPoints, int32_t channel = 0) {
    return Install(ITCSegmentedNoiseParams, {500, 7, seed, 60, 2, 2, segmentPoints, {}}, channel);
}
Preparation Filtered(int32_t seed, int32_t channel = 0) {
    return Install(ITCNoiseParams, {500, 7, seed, 60, 2, 2, 4, 1000, 1}, channel);
}
Preparation Binary(int32_t seed) {
    return Install(ITCBinaryNoiseParams, {500, 7, seed, 60, 2, 2, 20, {}});
}
Preparation Pulse() { return Install(ITCPulseParams, {1000, 7, 60, 2, 2, {}}); }

// An application's wave that no file holds, and three segments.
void SumWithWave() {
    static const std::vector<uint16_t> wave(kPoints, 9);
    ITCSummedParameters sum = {.count = 2, .componentType = {}, .components = {}};
    const ITCSegmentedNoiseParameters noise = {500, 7, 21, 60, 2, 2, 20, {}};
    const ITCFilewaveParameters record = {wave.data(), kPoints};
    ASSERT_EQ(ITCSummedParams(0, &sum), 0);
    ASSERT_EQ(ITCAddFilewaveParams(0, &record), 0);
    ASSERT_EQ(ITCAddSegmentedNoiseParams(0, &noise), 0);
}

// Only the application computes it.
void Generic() {
    const ITCGenericParameters record = {1, 2, 60, 2, 2, {}};
    ASSERT_EQ(ITCGenericParams(&record), 0);
}

// Each epoch computed once, its output stored as if it had been acquired.
void Record(const std::vector<Set>& epochs) {
    LibrarySession session;
    QuietOutput quiet;
    ASSERT_EQ(ITCCreateFile("file.dat", 1), 0);
    for (const Set& entries : epochs) {
        SetUpAcquisition(static_cast<int32_t>(entries.size()), kPoints);
        for (const Preparation& prepare : entries) prepare();
        const int32_t expected = epochhdr->stimType[0] == ITC_STIMULUS_GENERIC ? 2 : 0;
        ASSERT_EQ(ITCUpdateStm(), expected);
        session.input = session.output;
        ASSERT_EQ(ITCSaveToFile(), 0);
    }
}

class HistoryTest : public ToolTest {
  protected:
    // A process of its own records, so that no test leaves another one a deviate.
    static void RecordElsewhere(const std::vector<Set>& epochs) {
        const pid_t child = fork();
        if (child == 0) {
            Record(epochs);
            _exit(HasFailure() ? 1 : 0);
        }
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
    }
    static void Change(size_t offset, const Bytes& bytes) {
        Bytes file = FileContent("file.dat");
        Put(file, offset, bytes);
        WriteFile("file.dat", file);
    }
    // The messages of an export to played.csv.
    static std::string Export(size_t epoch) {
        return RunShell("$C export file.dat --raw --stimulus --force -o played.csv -e " +
                        std::to_string(epoch) + " 2>&1")
            .results;
    }
    // Behind the time, every entry's response, and its stimulus, empty where it cannot be had.
    static void ExpectPlayed(size_t entries) {
        const Bytes file = FileContent("played.csv");
        std::istringstream lines({file.begin(), file.end()});
        std::string line;
        for (int32_t row = -1; row < kPoints; ++row) {
            ASSERT_TRUE(std::getline(lines, line));
            std::vector<std::string> fields;
            for (std::istringstream rest(line + ","); std::getline(rest, line, ',');)
                fields.push_back(line);
            ASSERT_EQ(fields.size(), 1 + 2 * entries);
            for (size_t i = 1; row >= 0 && i <= entries; ++i)
                ASSERT_TRUE(fields[i + entries].empty() || fields[i + entries] == fields[i]) << row;
        }
    }
    static std::vector<std::string> StimulusFindings() {
        std::vector<std::string> found;
        for (const auto& finding : FindingsOf("file.dat", " --stimulus")) {
            found.push_back(std::string(finding["where"]) + ": " + std::string(finding["found"]));
        }
        return found;
    }
};

TEST_F(HistoryTest, ExportsWhatWasPlayedWhateverEarlierEpochsLeft) {
    const std::vector<std::pair<Set, bool>> epochs = {
        {{Segmented(3, 20)}, false},             // 3 deviates leave one
        {{Segmented(9, 15)}, true},              // 4
        {{Pulse()}, false},                      // begins with no deviate, and passes it on
        {{Filtered(4)}, true},                   // 64
        {{Segmented(5, 60)}, true},              // 1: uses it up
        {{Segmented(5, 60)}, false},             // 1
        {{Binary(8)}, false},                    // uniform numbers only
        {{Segmented(-8, 20)}, true},             // 3, the generator's next ones
        {{Filtered(4), Filtered(4, 1)}, false},  // 128
        {{Segmented(-2, 15)}, false},            // 4
        {{SumWithWave, Filtered(2, 1)}, false},  // 3, though nobody can compute the sum again
        {{Segmented(6, 20), Filtered(1, 1)}, true}};
    std::vector<Set> sets;
    for (const auto& [set, isDoubtful] : epochs) sets.push_back(set);
    RecordElsewhere(sets);
    for (size_t i = 0; i < epochs.size(); ++i) {
        SCOPED_TRACE(i);
        const std::string messages = Export(i);
        EXPECT_EQ(Contains(messages, "an earlier epoch left"), epochs[i].second) << messages;
        ExpectPlayed(sets[i].size());
    }
    // What a damaged epoch has drawn is not known.
    Change(580 + 583, {9});
    EXPECT_TRUE(Contains(Export(8), "and epoch 0 cannot be recomputed"));
}

TEST_F(HistoryTest, SaysWhichStimuliCannotBeRebuiltAndWhy) {
    static const uint16_t wave[kPoints] = {};
    RecordElsewhere(
        {{Generic, Segmented(3, 20, 1)},
         {Segmented(9, 15)},
         {Segmented(-5, 15)},
         {Install(ITCFilewaveParams, ITCFilewaveParameters{wave, kPoints})},
         {Install(ITCTrigSeriesParams, ITCTrigSeriesParameters{0, 1, 2, kPoints, 0, 0, {}})},
         {Pulse()}});
    const size_t size = FileContent("file.dat").size();
    Change(size - 24 - kPoints * 2 - 32 + 12, Big32(1));  // a tail that no builder would take
    const std::string expected[] = {
        "epoch 0, entry 0, generic stimulus: no waveform: only the application knows its waveform",
        "epoch 0, entry 1, segmented noise stimulus: another waveform the second time: an odd",
        "epoch 1, stimulus: its noise begins with a deviate that an earlier epoch left, and is",
        "epoch 2, stimulus: its noise begins with a deviate",
        "epoch 2, entry 0, segmented noise stimulus: another waveform the second time: its seed",
        "epoch 3, entry 0, file wave stimulus: no waveform: the wave was the application's",
        "epoch 4, entry 0, trigger series stimulus: no waveform: its parameters are not stored",
        "table of positions, epoch 4: ",
        "table of positions, epoch 5: ",
        "epoch 5, entry 0, pulse stimulus: its lengths do not fit the epoch"};
    std::vector<std::string> found = StimulusFindings();
    ASSERT_EQ(found.size(), std::size(expected));
    for (const std::string& each : expected) {
        const auto isExpected = [&](const std::string& text) { return text.starts_with(each); };
        EXPECT_TRUE(std::any_of(found.begin(), found.end(), isExpected)) << each;
    }
}

TEST_F(HistoryTest, NamesTheOlderGeneratorAlsoForSeedsBelowZero) {
    RecordElsewhere({{Filtered(-5)}, {Filtered(5)}});
    for (const uint8_t version : {4, 0xC8}) {
        Change(0, {version});
        const std::vector<std::string> found = StimulusFindings();
        ASSERT_EQ(found.size(), 2U);
        for (const std::string& each : found) {
            EXPECT_TRUE(Contains(each, "the recording machine's own generator")) << each;
        }
    }
}

}  // namespace
}  // namespace corvantis_test
