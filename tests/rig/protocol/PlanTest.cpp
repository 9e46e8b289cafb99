// Protocols that cannot be, each with its line and field; and plans against codes worked by hand.
#include <gtest/gtest.h>

#include "files/Failure.h"
#include "plan/Levels.h"
#include "plan/PlannedEpoch.h"
#include "plan/StoredFields.h"
#include "protocol/Digest.h"
#include "protocol/FieldRules.h"

namespace {

using namespace corvantis;
using namespace corvantis::rig;

// Line 1 is the opening brace; a stimulus stands in line 4, behind it the rest of its epoch.
std::string WithStimulus(const std::string& stimulus, const std::string& rest = "") {
    return "{\"channels\": {\"cell\": {\"input\": 0, \"output\": 0, \"outputUnits\": \"pA\", "
           "\"convFactor\": 400, \"holding\": \"-20 pA\"}},\n"
           "// a comment\n\"epochs\": [{\"samplingInterval\": \"50 us\", \"stimuli\": {\n"
           "\"cell\": {\"type\": \"pulse\", " +
           stimulus + "}}" + rest + "}]}";
}

std::vector<PlannedEpoch> PlanAll(const std::string& text) {
    const Protocol protocol("p.json", text);
    std::vector<PlannedEpoch> epochs;
    for (const Occurrence& occurrence : OccurrencesOf(protocol)) {
        epochs.push_back(PlanEpoch(protocol, occurrence));
        epochs.back().settings.clear();  // they point into the protocol
    }
    return epochs;
}

std::string ProblemOf(const std::string& text) {
    try {
        PlanAll(text);
    } catch (const tool::Failure& failure) {
        return failure.what();
    }
    return {};
}

TEST(Protocol, SaysLineAndFieldOfWhatCannotBe) {
    const struct {
        std::string text, problem;
    } cases[] = {
        {"{\n\"epochs\": [}", "p.json:2: no JSON: "},
        {"{\"epoch\": []}", "p.json:1: epoch: no such field of protocol; is \"epochs\" meant?"},
        {"{\"epochs\": [\n{\"repeats\": 1,\n\"repeats\": 2}]}",
         "p.json:3: \"repeats\" stands here twice"},
        {"{\"epochs\": [\n{\"pause\": [\n1\n]}]}", "p.json:2: epochs[0].pause: is to be a number"},
        {"{\"epochs\": [\n{\"trigger\": 1\n}]}",
         "p.json:2: epochs[0].trigger: is to be true or false"},
        {"{\"epochs\": [{}]}", "p.json:1: epochs[0]: lacks stimuli"},
        {WithStimulus("\"amplitude\": \"3 mV\""),
         "p.json:4: epochs[0].stimuli.cell.amplitude: \"mV\" cannot be taken here; allowed are pA"},
        {WithStimulus("\"amplitud\": 3"),
         "p.json:4: epochs[0].stimuli.cell.amplitud: no such field of pulse; is \"amplitude\" "
         "meant?"},
        {WithStimulus("\"points\": \"3 pA\""),
         "p.json:4: epochs[0].stimuli.cell.points: \"pA\" cannot be taken here; allowed are s, ms"},
        {WithStimulus("\"amplitude\": \"{x}\""), "no family is called x"},
        {WithStimulus("\"amplitude\": \"much\""), "\"much\" is no amount"},
        {WithStimulus("\"points\": 4, \"tailPoints\": 1", ",\n\"epochPoints\": 9"),
         "p.json:4: epochs[0].stimuli.cell: its lengths are not the epoch's 9 points"},
        {WithStimulus("\"points\": 4", ",\n\"samplingInterval\": 3"), "stands here twice"},
        {WithStimulus("\"points\": 4",
                      ",\n\"families\": {\"a\": {\"start\": 0, \"step\": \"1 pA\", \"count\": 2}}"),
         "families.a.step: is to have the unit of start, which has none"},
    };
    for (const auto& [text, problem] : cases) {
        EXPECT_NE(ProblemOf(text).find(problem), std::string::npos) << problem << "\n"
                                                                    << ProblemOf(text);
    }
}

TEST(Protocol, RefusesStimuliThatNoFileKeeps) {
    std::string text = WithStimulus("");
    text.replace(text.find("\"pulse\", "), 9, "\"trigger series\"");
    EXPECT_NE(ProblemOf(text).find("its parameters are not stored"), std::string::npos);
}

int32_t Amplitude(const PlannedEpoch& epoch) {
    return WholeAt(epoch.content.stimuli[0].record.data(), offsetof(ITCPulseParameters, amplitude));
}

// 3200 codes a volt and 400 pA a volt: 8 codes a pA.
TEST(Plan, RoundsAmountsOnce) {
    const struct {
        const char* amount;
        int32_t code;
    } cases[] = {{"\"120 pA\"", 960},         {"\"0.12 nA\"", 960},     {"\"0.0625 pA\"", 1},
                 {"\"-0.0625 pA\"", -1},      {"\"0.06 pA\"", 0},       {"17", 17},
                 {"\"100 pA - 20 pA\"", 640}, {"\"10 pA + -1 pA\"", 72}};
    for (const auto& [amount, code] : cases) {
        const auto epochs =
            PlanAll(WithStimulus(std::string("\"points\": 4, \"amplitude\": ") + amount));
        EXPECT_EQ(Amplitude(epochs.at(0)), code) << amount;
    }
}

TEST(Plan, HoldsAndFillsWhatIsLeftOpen) {
    const auto epochs =
        PlanAll(WithStimulus("\"prePoints\": \"1 ms\", \"points\": 40", ", \"epochPoints\": 100"));
    ITCPulseParameters pulse;
    std::memcpy(&pulse, epochs.at(0).content.stimuli[0].record.data(), sizeof pulse);
    EXPECT_EQ(pulse.mean, -160);
    EXPECT_EQ(pulse.prePoints, 20);
    EXPECT_EQ(pulse.points, 40);
    EXPECT_EQ(pulse.tailPoints, 40);
}

std::vector<int32_t> Amplitudes(const std::string& rest) {
    std::vector<int32_t> found;
    for (const PlannedEpoch& epoch :
         PlanAll(WithStimulus("\"points\": 4, \"amplitude\": \"{a}\"", rest))) {
        found.push_back(Amplitude(epoch));
    }
    return found;
}

TEST(Plan, GoesThroughFamilies) {
    const std::string steps =
        R"(, "families": {"a": {"start": "-10 pA", "step": "5 pA", "count": 4)";
    EXPECT_EQ(Amplitudes(steps + "}}"), (std::vector<int32_t>{-80, -40, 0, 40}));
    std::vector<int32_t> shuffled = Amplitudes(steps + R"(, "order": "shuffled", "seed": 5}})");
    EXPECT_EQ(shuffled, Amplitudes(steps + R"(, "order": "shuffled", "seed": 5}})"));
    std::sort(shuffled.begin(), shuffled.end());
    EXPECT_EQ(shuffled, (std::vector<int32_t>{-80, -40, 0, 40}));
    // Before the pulse of 80 codes two of -40 each.
    EXPECT_EQ(Amplitudes(R"(, "families": {"a": {"values": [80]}}, "repeats": 2,
                           "leakSubtraction": {"divisor": -2})"),
              (std::vector<int32_t>{-40, -40, 80, -40, -40, 80}));
}

TEST(Plan, SeesWhatWouldWrap) {
    // 4000 pA on -20 pA are 31840 codes, 4200 pA 33440: beyond 32767.
    for (const auto& [amplitude, wrapped] : {std::pair{"4000 pA", 0}, {"4200 pA", 7}}) {
        const auto epochs = PlanAll(
            WithStimulus(std::string("\"points\": 7, \"amplitude\": \"") + amplitude + "\""));
        const Levels levels = LevelSurvey().Next(epochs.at(0)).at(0);
        EXPECT_EQ(levels.wrapped, wrapped);
        EXPECT_EQ(levels.most, amplitude[1] == '0' ? 31840 : 33440);
    }
}

// The examples of FIPS 180-4.
TEST(Digest, IsThePublishedOne) {
    EXPECT_EQ(Sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
}

}  // namespace
