// Noise that begins with what earlier noise left, exported by another process than recorded it.
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "SavedSteps.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

constexpr int32_t kPoints = 64;
using Set = std::vector<Preparation>;

Preparation Segmented(int32_t seed, int32_t segmentPoints, int32_t channel = 0) {
    return [=] {
        const ITCSegmentedNoiseParameters record = {500, 7, seed, 60, 2, 2, segmentPoints, {}};
        ASSERT_EQ(ITCSegmentedNoiseParams(channel, &record), 0);
    };
}

Preparation Filtered(int32_t seed, int32_t channel = 0) {
    return [=] {
        const ITCNoiseParameters record = {500, 7, seed, 60, 2, 2, 4, 1000, 1};
        ASSERT_EQ(ITCNoiseParams(channel, &record), 0);
    };
}

Preparation Binary(int32_t seed) {
    return [=] {
        const ITCBinaryNoiseParameters record = {500, 7, seed, 60, 2, 2, 20, {}};
        ASSERT_EQ(ITCBinaryNoiseParams(0, &record), 0);
    };
}

Preparation Pulse(int32_t tail = 2) {
    return [=] {
        const ITCPulseParameters record = {1000, 7, 60, tail, 2, {}};
        ASSERT_EQ(ITCPulseParams(0, &record), 0);
    };
}

// Three segments, and an application's wave that no file holds.
void SumWithWave() {
    static const std::vector<uint16_t> wave(kPoints, 9);
    ITCSummedParameters sum = {.count = 2, .componentType = {}, .components = {}};
    const ITCSegmentedNoiseParameters noise = {500, 7, 21, 60, 2, 2, 20, {}};
    const ITCFilewaveParameters record = {wave.data(), kPoints};
    ASSERT_EQ(ITCSummedParams(0, &sum), 0);
    ASSERT_EQ(ITCAddSegmentedNoiseParams(0, &noise), 0);
    ASSERT_EQ(ITCAddFilewaveParams(0, &record), 0);
}

// Only the application computes it.
void Generic() {
    const ITCGenericParameters record = {1, 2, 60, 2, 2, {}};
    ASSERT_EQ(ITCGenericParams(&record), 0);
}

// Each epoch computed once, its output stored as if it had been acquired.
void Record(const std::string& path, const std::vector<Set>& epochs) {
    LibrarySession session;
    QuietOutput quiet;
    ASSERT_EQ(ITCCreateFile(path.c_str(), 1), 0);
    for (const Set& entries : epochs) {
        SetUpAcquisition(static_cast<int32_t>(entries.size()), kPoints);
        for (const Preparation& prepare : entries) prepare();
        const int32_t expected = epochhdr->stimType[0] == ITC_STIMULUS_GENERIC ? 2 : 0;
        ASSERT_EQ(ITCUpdateStm(), expected);
        session.input = session.output;
        ASSERT_EQ(ITCSaveToFile(), 0);
    }
}

class HistoryTest : public testing::Test {
  protected:
    // A process of its own records, so that no test leaves another one a deviate.
    void RecordElsewhere(const std::vector<Set>& epochs) {
        const pid_t child = fork();
        if (child == 0) {
            Record(path, epochs);
            _exit(HasFailure() ? 1 : 0);
        }
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
    }

    ToolRun Export(size_t epoch) {
        const std::string options = " --raw --stimulus -e " + std::to_string(epoch);
        ToolRun run = RunProgram("export " + path + options + " 2>" + remarks);
        const Bytes text = FileContent(remarks);
        run.messages.assign(text.begin(), text.end());
        return run;
    }

    // Points whose stimulus, as far as it can be had, is not what the epoch holds.
    static int64_t Differences(const std::string& csv) {
        int64_t differences = -1;  // the line of titles
        std::istringstream lines(csv);
        for (std::string line; std::getline(lines, line);) {
            std::vector<std::string> fields;
            std::istringstream columns(line);
            for (std::string field; std::getline(columns, field, ',');) fields.push_back(field);
            const size_t entries = fields.size() / 2;
            const auto responses = fields.begin() + 1, stimuli = responses + ssize_t(entries);
            const auto isPlayed = [](const std::string& response, const std::string& stimulus) {
                return stimulus.empty() || stimulus == response;
            };
            differences += std::equal(responses, stimuli, stimuli, isPlayed) ? 0 : 1;
        }
        return differences;
    }

    // What is found, with each epoch's number.
    std::vector<std::string> Findings() {
        std::vector<std::string> found;
        const auto json =
            nlohmann::json::parse(RunProgram("check --stimulus --json " + path).results);
        for (const auto& finding : json[0]["findings"]) {
            found.push_back(std::string(finding["where"]) + ": " + std::string(finding["found"]));
        }
        return found;
    }

    int64_t CountFindings(const std::string& text) {
        const std::vector<std::string> found = Findings();
        return std::count_if(found.begin(), found.end(), [&](const std::string& each) {
            return each.find(text) != std::string::npos;
        });
    }

    void ExpectPlayed(size_t epoch, bool isDoubtful) {
        const ToolRun run = Export(epoch);
        EXPECT_EQ(std::count(run.results.begin(), run.results.end(), '\n'), kPoints + 1);
        EXPECT_EQ(Differences(run.results), 0) << "epoch " << epoch;
        EXPECT_EQ(run.messages.find("an earlier epoch left") != std::string::npos, isDoubtful)
            << "epoch " << epoch << ": " << run.messages;
    }

    TemporaryFolder folder;
    std::string path = folder.File("file.dat");
    std::string remarks = folder.File("remarks");
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
    for (size_t epoch = 0; epoch < epochs.size(); ++epoch) {
        ExpectPlayed(epoch, epochs[epoch].second);
    }
    EXPECT_EQ(CountFindings("an earlier epoch left"), 5);
}

TEST_F(HistoryTest, SaysWhichEarlierEpochCannotBeRecomputed) {
    RecordElsewhere({{Generic, Segmented(3, 20, 1)}, {Segmented(9, 15)}});
    EXPECT_EQ(CountFindings("epoch 1, stimulus: its noise begins with a deviate"), 1);
    EXPECT_EQ(CountFindings("epoch 0 cannot be recomputed"), 1);
    EXPECT_NE(Export(1).messages.find("epoch 0 cannot be recomputed"), std::string::npos);
}

TEST_F(HistoryTest, NamesTheOlderGeneratorAlsoForSeedsBelowZero) {
    RecordElsewhere({{Filtered(-5)}, {Filtered(5)}});
    for (const uint8_t version : {4, 0xC8}) {
        Bytes file = FileContent(path);
        file[0] = version;
        WriteFile(path, file);
        EXPECT_EQ(CountFindings("the recording machine's own generator"), 2);
        EXPECT_EQ(CountFindings("its seed"), 0);
    }
}

// The tail one point too short, as no builder would take it.
TEST_F(HistoryTest, FindsRecordsThatDoNotFillTheirEpoch) {
    RecordElsewhere({{Pulse()}, {Pulse()}});
    Bytes file = FileContent(path);
    constexpr size_t kTail = 580 + 912 + 12;
    ASSERT_EQ(Word(file, kTail), 2U);
    Put(file, kTail, Big32(1));
    WriteFile(path, file);
    EXPECT_EQ(Findings(),
              std::vector<std::string>{
                  "epoch 0, entry 0, pulse stimulus: its lengths do not fit the epoch"});
    EXPECT_NE(Export(0).messages.find("doubtful pulse stimulus: its lengths"), std::string::npos);
    EXPECT_EQ(Export(1).messages, "");
}

}  // namespace
}  // namespace corvantis_test
