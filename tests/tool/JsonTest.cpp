// JSON of all kinds of files: held to its schema, and to values worked out by hand.
#include "SavedSteps.h"
#include "ShellRun.h"
#include "ToolRun.h"

namespace corvantis_test {
namespace {

using Json = nlohmann::json;

// A dynamic clamp, a sum and waves, of which two are not stored; a digital port; an epoch that is
// damaged, and one with gains that are no numbers or infinite.
class JsonTest : public ToolTest {
  protected:
    JsonTest() {
        RecordSteps("a.dat", {SetUpDynamicClamp, SetUpSum, SetUpWaves});
        WriteFile("b.dat", UnitsFileBytes());
        const Bytes epoch = PulseEpochBytes({1, 2, 3, 4});
        Bytes file = DataFileBytes({epoch, epoch, epoch});
        Put(file, 580 + 520, Hex("7FC00000 FF800000"));
        Put(file, 1532 + 580, Big32(9));
        WriteFile("c.dat", file);
        WriteFile("d.png", Hex("89504E47"));
    }
};

#if !defined(_WIN32)

TEST_F(JsonTest, FollowsItsSchema) {
    for (const std::string command : {"info", "info -e 0", "check", "check --stimulus"}) {
        EXPECT_EQ(RunShell("$C " + command +
                           " --json . d.png none.dat >.json 2>/dev/null; "
                           "/usr/bin/python3 -m jsonschema -i .json " CORVANTIS_SCHEMA " 2>&1")
                      .results,
                  "");
    }
}

#endif

TEST_F(JsonTest, SaysWhatStandsInTheFiles) {
    const Json all = Json::parse(RunTool("info --json . d.png none.dat").results);
    const std::pair<std::string, std::string> expected[] = {
        {"/summary", R"({"files":5,"epochs":7,"findings":2,"failures":2,"others":1})"},
        {"/recordings/0/file", R"("./a.dat")"},
        {"/recordings/0/epochs/0/entries/0/doubt/reason", R"("followedCell")"},
        {"/recordings/0/epochs/1/entries/0/problem",
         R"("component file wave: the wave was the application's and is not stored")"},
        {"/recordings/0/epochs/1/entries/0/stimulus/components/0/parameters",
         R"({"amplitude":1000,"mean":-5,"points":2,"tailPoints":1,"prePoints":1})"},
        {"/recordings/0/epochs/2/entries/1/stimulus/isStored", "false"},
        {"/recordings/1/epochs/0/entries/0/responseScale",
         R"({"countsPerVolt":3200.0,"gain":0.5,"factor":1.0,"unit":"mV","isWord":false,
             "formula":"counts / 3200 / 0.5 in mV"})"},
        {"/recordings/1/epochs/0/entries/0/stimulus/levels",
         R"({"amplitude":15.625,"mean":-0.078125})"},
        {"/recordings/1/epochs/0/entries/1/input", R"("digital")"},
        {"/recordings/1/epochs/0/entries/1/output", "1"},
        {"/recordings/1/epochs/0/entries/1/responseScale/isWord", "true"},
        {"/recordings/2/found", R"("table")"},
        {"/recordings/2/epochs/0/header/ampGain", "[0.0,null,null,0.0]"},
        {"/recordings/2/epochs/0/notFinite", R"({"ampGain[1]":"NaN","ampGain[2]":"-Infinity"})"},
        {"/recordings/2/epochs/1",
         R"({"number":1,"lastNumber":1,"position":1532,"problem":"found sequenceLength 9, expected 1 to 4"})"},
        {"/recordings/2/epochs/2/position", "2484"},
        {"/recordings/2/isClean", "false"},
        {"/recordings/2/findings",
         R"([{"offset":1532,"epoch":1,"weight":"fault","place":"epoch 1, 952 bytes",
              "found":"sequenceLength 9","expected":"1 to 4"}])"},
        {"/recordings/3/problem/code", R"("notARecording")"},
        {"/recordings/4",
         R"({"file":"none.dat","problem":{"code":"fileError",
             "text":"none.dat: No such file or directory"}})"}};
    for (const auto& [place, value] : expected) {
        EXPECT_EQ(all.at(Json::json_pointer(place)), Json::parse(value)) << place;
    }
}

}  // namespace
}  // namespace corvantis_test
