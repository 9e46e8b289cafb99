// Recording, protocol, recording: the same stimuli as they were played; and recordings that end
// early.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "LibrarySession.h"
#include "protocol/FieldRules.h"

namespace {

using corvantis_test::TemporaryFolder;

std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

class Recording : public testing::Test {
  protected:
    int Run(const std::string& command) const {
        const int status = std::system(
            ("cd " + folder.path.string() + "; " + command + " >out.txt 2>messages.txt").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int Record(const std::string& arguments) const { return Run(RECORD_PROGRAM " " + arguments); }
    // A signal as soon as the recording says that epoch 1 is saved.
    int RunUntilEpoch1(const std::string& signal, const std::string& file) const {
        return Run("(" RECORD_PROGRAM " slow.json -o " + file +
                   " & pid=$!; until grep -q '^corvantis: epoch 1,' messages.txt || "
                   "! kill -0 $pid; do sleep 0.01; done; kill -" +
                   signal + " $pid; wait $pid)");
    }
    std::string Messages() const { return Content(folder.File("messages.txt")); }
    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(folder.File(name)) << text;
    }
    // Ends with 1 where noise begins by going on, which the file alone cannot vouch for.
    void ExpectSameAgain(const std::string& protocol, int remarks) const {
        ASSERT_EQ(Record(protocol + " -q -o a.dat --played a.played"), 0) << Messages();
        ASSERT_EQ(Run(PROTOCOL_PROGRAM " a.dat -o again.json"), remarks) << Messages();
        ASSERT_EQ(Record("again.json -q -o b.dat --played b.played --allow-wrapping"), 0)
            << Messages();
        ASSERT_GT(Content(folder.File("a.played")).size(), 100U);
        EXPECT_TRUE(Content(folder.File("a.played")) == Content(folder.File("b.played")));
        EXPECT_EQ(Content(folder.File("a.dat")).size(), Content(folder.File("b.dat")).size());
    }
    const TemporaryFolder folder;
};

constexpr char kAllTypes[] = R"({
"channels": {"cell": {"input": 0, "output": 0, "inputUnits": "mV", "outputUnits": "pA",
                      "ampGain": 0.01, "convFactor": 400, "ndf": 0.3, "ampMode": -1},
             "other": {"input": 1, "output": 1, "convFactor": 1, "outputUnits": "V"},
             "lines": {"input": "digital", "output": "digital"}},
"defaults": {"samplingInterval": 120, "epochPoints": 501, "temperature": 31.7, "pause": "10 ms",
             "userValue": [0.1, 0, 3]},
"epochs": [
 {"comment": "braces {{1}}", "stimuli": {
  "cell": {"type": "noise", "amplitude": "20 pA", "mean": 3, "seed": -1, "cutoffFrequency": 500,
           "filterOrder": 3, "prePoints": 7},
  "other": {"type": "segmented noise", "amplitude": 300, "seed": -5, "segmentPoints": 13}}},
 {"stimuli": {"cell": {"type": "summed", "components": [
  {"type": "sine", "amplitude": 100, "period": "2.4 ms", "prePoints": 3},
  {"type": "binary noise", "amplitude": 40, "seed": 77, "segmentPoints": 11, "points": 400},
  {"type": "ramp", "amplitude": -900, "points": 300}]}}},
 {"stimuli": {"cell": {"type": "segmented noise", "amplitude": 200, "seed": -1, "segmentPoints": 9},
  "other": {"type": "alternating voltage", "amplitude": 500, "halfPeriod": 25},
  "lines": {"type": "pulse", "amplitude": 5, "points": 9}}},
 {"pointsLatency": 6, "stimuli": {"cell": {"type": "dynamic clamp", "excitatoryReversal": "0 mV",
  "inhibitoryReversal": "-70.1 mV", "excitatory": {"peak": "1 nS", "rise": "0.5 ms",
  "decay": "3 ms", "rate": "100 Hz", "seed": 4}, "inhibitory": "0.3 nS"}}},
 {"stimuli": {"cell": {"type": "spatial", "points": 501}}},
 {"stimuli": {"cell": {"type": "noise", "amplitude": 99, "seed": 1, "cutoffFrequency": 50,
  "filterOrder": 1}}}]})";

TEST_F(Recording, OfEveryTypeIsRecordedAgainBitForBit) {
    Write("types.json", kAllTypes);
    ExpectSameAgain("types.json", 1);
    // As it was written, though times are stored as floats.
    const std::string again = Content(folder.File("again.json"));
    size_t pauses = 0;
    for (size_t at = 0; (at = again.find("\"pause\": \"0.01 s\"", at)) != std::string::npos; ++at) {
        ++pauses;
    }
    EXPECT_EQ(pauses, 6U) << again;
}

TEST_F(Recording, OfTheDemoIsRecordedAgainBitForBit) { ExpectSameAgain(DEMO_PROTOCOL, 0); }

TEST_F(Recording, IsWhatEveryExampleAsksFor) {
    for (const auto& file : std::filesystem::directory_iterator(PROTOCOL_EXAMPLES)) {
        if (file.path().extension() != ".json") continue;
        EXPECT_EQ(Record(file.path().string() + " --check"), 0) << file.path() << Messages();
    }
}

// 250 characters of 2 bytes each, which leave no room for a digest.
TEST_F(Recording, GivesAProtocolThatIsTakenHoweverLongItsComment) {
    Write("types.json", kAllTypes);
    ASSERT_EQ(Record("types.json -q -o a.dat"), 0) << Messages();
    std::string comment(ITC_COMMENT_LENGTH, '\0');
    for (size_t k = 0; k < 250; ++k) comment.replace(2 * k, 2, "\xC3\xA9");
    std::fstream file(folder.File("a.dat"), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(8);
    file << comment;
    file.close();
    EXPECT_EQ(Run(PROTOCOL_PROGRAM " a.dat -o again.json"), 1);
    EXPECT_NE(Messages().find("a.dat: its comment is shortened to 340 bytes"), std::string::npos)
        << Messages();
    EXPECT_EQ(Record("again.json --check"), 0) << Messages();
    Write("long.json", "{\n\"comment\": \"" + std::string(341, 'x') + "\"," + (kAllTypes + 1));
    EXPECT_EQ(Record("long.json --check"), 2);
    EXPECT_NE(Messages().find("long.json:2: comment: is of 341 bytes"), std::string::npos)
        << Messages();
}

// Paced in real time, so that the signal comes in mid-epoch: 0.4 s each.
TEST_F(Recording, EndsAfterTheEpochThatIsInterrupted) {
    Write("slow.json", R"({"rig": {"player": "simulated",
        "settings": {"interface": {"pacing": "realTime"}}},
        "channels": {"cell": {"input": 0, "output": 0}}, "epochs": [
        {"samplingInterval": 100, "repeats": 50, "stimuli": {"cell":
          {"type": "pulse", "amplitude": 8, "points": 4000}}}]})");
    EXPECT_EQ(RunUntilEpoch1("INT", "a.dat"), 1);
    std::smatch end;
    const std::string said = Messages();
    ASSERT_TRUE(std::regex_search(said, end, std::regex("epochs 0 to (\\d+), of 50, are in a.dat")))
        << said;
    EXPECT_NE(said.find("epoch " + end[1].str() + ", of 50"), std::string::npos) << said;
    // Killed, all that is saved is there.
    EXPECT_EQ(RunUntilEpoch1("KILL", "b.dat"), 128 + 9);
    EXPECT_EQ(Run(PROTOCOL_PROGRAM " b.dat"), 0) << Messages();
    EXPECT_NE(Content(folder.File("out.txt")).find("epochPoints"), std::string::npos);
}

// In an epoch of 55 s, which nobody waits for.
TEST_F(Recording, EndsAtOnceWhenInterruptedTwice) {
    Write("slow.json", R"({"rig": {"player": "simulated",
        "settings": {"interface": {"pacing": "realTime"}}},
        "channels": {"cell": {"input": 0, "output": 0}}, "epochs": [
        {"samplingInterval": 100, "repeats": 2, "stimuli": {"cell": {"type": "pulse", "points": 200}}},
        {"samplingInterval": 1000, "stimuli": {"cell": {"type": "pulse", "points": 55000}}}]})");
    EXPECT_EQ(RunUntilEpoch1("INT $pid; sleep 0.1; kill -INT", "a.dat"), 1);
    EXPECT_NE(Messages().find("epochs 0 to 1, of 3, are in a.dat"), std::string::npos);
}

TEST_F(Recording, NeverOverwritesAndSaysSimulated) {
    Write("types.json", kAllTypes);
    ASSERT_EQ(Record("types.json -q -o a.dat"), 0);
    const std::string before = Content(folder.File("a.dat"));
    EXPECT_EQ(before.substr(8, 10), "SIMULATED:");
    EXPECT_EQ(Content(folder.File("a.dat.protocol.json")), kAllTypes);
    EXPECT_EQ(Record("types.json -q -o a.dat"), 2);
    EXPECT_TRUE(Content(folder.File("a.dat")) == before);
}

TEST_F(Recording, GoesOnInANewFileWhereTheDiskWasFull) {
    Write("types.json", R"({"channels": {"cell": {"input": 0, "output": 0}}, "epochs": [
        {"samplingInterval": 100, "repeats": 6, "stimuli": {"cell":
          {"type": "pulse", "amplitude": 8, "points": 2000}}}]})");
    // Room for three epochs of some 5 KiB, in blocks of 512 bytes.
    EXPECT_EQ(Run("ulimit -f 32; " RECORD_PROGRAM " types.json -o a.dat --wait-for-room 0"), 1);
    EXPECT_NE(Messages().find("epoch 3 is lost"), std::string::npos) << Messages();
    EXPECT_NE(Messages().find("epochs 0 to 2, of 6, are in a.dat"), std::string::npos);
    EXPECT_NE(Messages().find("--resume a.dat"), std::string::npos);
    ASSERT_EQ(Record("--resume a.dat -o b.dat"), 0) << Messages();
    EXPECT_NE(Messages().find("epoch 3 of the protocol is epoch 0 of b.dat"), std::string::npos);
    EXPECT_EQ(Record("--resume b.dat -o c.dat"), 2);
    EXPECT_NE(Messages().find("last epoch already"), std::string::npos) << Messages();
}

TEST_F(Recording, KeepsItsEpochsWhereTheInterfaceIsLost) {
    Write("lost.json", R"({"rig": {"player": "simulated",
        "settings": {"interface": {"loseAt": 450}}},
        "channels": {"cell": {"input": 0, "output": 0}}, "epochs": [
        {"samplingInterval": 100, "repeats": 6, "stimuli": {"cell":
          {"type": "pulse", "amplitude": 8, "points": 2000}}}]})");
    EXPECT_EQ(Record("lost.json -o a.dat"), 1) << Messages();
    EXPECT_NE(Messages().find("epoch 2 is lost"), std::string::npos) << Messages();
    EXPECT_EQ(Run(PROTOCOL_PROGRAM " a.dat"), 0) << Messages();
    // Between two epochs as well it is said which is lost, and how to go on.
    Write("wait.json", R"({"rig": {"player": "simulated",
        "settings": {"interface": {"failCall": "wait", "failAt": 3}}},
        "channels": {"cell": {"input": 0, "output": 0}}, "epochs": [
        {"samplingInterval": 100, "repeats": 6, "stimuli": {"cell":
          {"type": "pulse", "amplitude": 8, "points": 200}}}]})");
    EXPECT_EQ(Record("wait.json -o b.dat"), 1) << Messages();
    EXPECT_NE(Messages().find("epoch 2 is lost: in the pause"), std::string::npos) << Messages();
    EXPECT_NE(Messages().find("--resume b.dat"), std::string::npos) << Messages();
}

// 200 and 10 MOhm, 100 pF: in another clamp the seal test would measure nothing of the kind, nor
// behind a pause in one, whose holding code would inject -1.4 nA.
TEST_F(Recording, TellsSettingsBeforeThePauseAndThoseOfEpochsBefore) {
    Write("clamps.json", R"({"rig": {"player": "simulated", "settings": {
        "cell": {"model": "passive"}, "electrode": {"accessResistance": 10},
        "interface": {"loseAt": 45}}},
        "channels": {"current": {"input": 0, "output": 0},
          "voltage": {"input": 0, "inputUnits": "pA", "ampGain": 0.001,
                      "output": 0, "outputUnits": "mV", "convFactor": 20, "holding": "-70 mV"}},
        "defaults": {"samplingInterval": 20}, "epochs": [
        {"stimuli": {"current": {"type": "pulse", "points": "20 ms"}}},
        {"pause": "100 ms", "settings": {"amplifier": {"mode": "voltageClamp"}},
         "sealTest": {"channel": "voltage", "step": "-5 mV", "points": "8 ms"}},
        {"sealTest": {"channel": "voltage", "step": "-5 mV", "points": "8 ms"}}]})");
    const std::regex right("seal test: (20[5-9]|210)[.0-9]* MOhm, (9[89]|100)[.0-9]* pF");
    EXPECT_EQ(Record("clamps.json -o a.dat"), 1) << Messages();
    EXPECT_TRUE(std::regex_search(Messages(), right)) << Messages();
    EXPECT_EQ(Record("--resume a.dat -o b.dat"), 0) << Messages();
    EXPECT_TRUE(std::regex_search(Messages(), right)) << Messages();
}

// Epochs of an odd number of deviates: the next one begins with what is left over, whatever its
// seed.
constexpr char kNoise[] = R"("channels": {"cell": {"input": 0, "output": 0}}, "epochs": [
{"samplingInterval": 100, "repeats": 3, "epochPoints": 2000, "stimuli": {"cell":
  {"type": "segmented noise", "amplitude": 300, "seed": -1, "segmentPoints": 80}}},
{"samplingInterval": 100, "epochPoints": 2000, "repeats": 2, "stimuli": {"cell":
  {"type": "noise", "amplitude": 300, "seed": 5, "cutoffFrequency": 500, "filterOrder": 1}}},
{"samplingInterval": 100, "repeats": 2, "epochPoints": 2000, "stimuli": {"cell":
  {"type": "binary noise", "amplitude": 300, "seed": -3, "segmentPoints": 7}}}]})";

TEST_F(Recording, GoesOnWithNoiseAsIfItHadNotEnded) {
    Write("whole.json", std::string("{") + kNoise);
    Write("lost.json", std::string(R"({"rig": {"player": "simulated",
        "settings": {"interface": {"loseAt": 1050}}},)") +
                           kNoise);
    ASSERT_EQ(Record("whole.json -q -o whole.dat --played whole.played"), 0) << Messages();
    ASSERT_EQ(Record("lost.json -q -o a.dat --played a.played"), 1) << Messages();
    const std::string resume = "--resume a.dat -q ";
    EXPECT_EQ(Record(resume + "--continue-noise -o b.dat"), 2) << Messages();
    ASSERT_EQ(Record(resume + "--continue-noise -o b.dat --played b.played"), 0) << Messages();
    EXPECT_TRUE(Content(folder.File("a.played")) + Content(folder.File("b.played")) ==
                Content(folder.File("whole.played")));
    EXPECT_EQ(Record("--resume b.dat -o c.dat"), 2);
    EXPECT_NE(Messages().find("last epoch already"), std::string::npos) << Messages();
    // Otherwise the file gives it back.
    ASSERT_EQ(Record(resume + "-o d.dat --played d.played"), 0) << Messages();
    EXPECT_NE(Messages().find("begins anew"), std::string::npos) << Messages();
    ASSERT_EQ(Run(PROTOCOL_PROGRAM " d.dat -o d.json"), 1) << Messages();
    ASSERT_EQ(Record("d.json -q -o e.dat --played e.played"), 0) << Messages();
    EXPECT_TRUE(Content(folder.File("d.played")) == Content(folder.File("e.played")));
}

TEST_F(Recording, NamesTheLineOfASettingThatThePlayerDoesNotKnow) {
    Write("p.json",
          "{\"rig\": {\"player\": \"simulated\", \"settings\": {\n\"interface\": "
          "{\"pacin\": \"fast\"}}},\n\"channels\": {\"c\": {\"input\": 0, \"output\": 0}}, "
          "\"epochs\": [{\"samplingInterval\": 50, \"stimuli\": {\"c\": {\"type\": "
          "\"pulse\", \"points\": 9}}}]}");
    EXPECT_EQ(Record("p.json --check"), 2);
    EXPECT_NE(Messages().find("p.json:2: rig.settings.interface.pacin: the player knows no setting "
                              "interface.pacin; is interface.pacing meant?"),
              std::string::npos)
        << Messages();
}

TEST(Schema, IsWhatTheDocumentsHold) {
    EXPECT_TRUE(corvantis::rig::SchemaText() == Content(PROTOCOL_SCHEMA))
        << "renew it by corvantis record --schema";
}

}  // namespace
