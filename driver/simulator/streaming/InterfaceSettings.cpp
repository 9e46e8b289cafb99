// The table of the interface's settings.
#include "simulator/streaming/InterfaceSettings.h"

#include <array>

namespace itc18 {
namespace {

using Settings = InterfaceSettings;

constexpr double kLargestBuffer = 16777216;  // [samples]
constexpr double kLongestTime = 1e9;         // [ms]

const std::array kRows{
    Choice<&Settings::pacing>(
        "interface.pacing", "fast|realTime",
        "whether an epoch takes no longer than its calculation, or its own time"),
    WholeNumber<&Settings::pipeline>(
        "interface.pipeline", "samples", 0, 64,
        "delay between a written sample and the one that is read as it is played"),
    Choice<&Settings::skew>(
        "interface.skew", "false|true",
        "whether a pass's entries act one interval after the other, not together"),
    WholeNumber<&Settings::outputBuffer>("interface.outputBuffer", "samples", 4, kLargestBuffer,
                                         "written samples that the interface holds"),
    WholeNumber<&Settings::inputBuffer>("interface.inputBuffer", "samples", 4, kLargestBuffer,
                                        "acquired samples that the interface holds"),
    WholeNumber<&Settings::mostMoved>("interface.mostMoved", "samples", 0, kLargestBuffer,
                                      "the most that one call moves; 0: no limit"),
    WholeNumber<&Settings::seed>(
        "interface.seed", "", 0, 4294967295,
        "from which the limit of each call is drawn, 0 to mostMoved; 0: it is mostMoved"),
    Number<&Settings::triggerAfter>(
        "interface.triggerAfter", "ms", -1, 60000,
        "when an external trigger comes that an epoch waits for; -1: never"),
    Choice<&Settings::failCall>("interface.failCall", "none|change|start|room|write|read|stop|wait",
                                "the call that fails once"),
    WholeNumber<&Settings::failAt>("interface.failAt", "", 1, 1e9,
                                   "which of these calls fails, counted from now"),
    Number<&Settings::stallAt>("interface.stallAt", "ms", -1, kLongestTime,
                               "played time after which nothing moves for a while; -1: never"),
    Number<&Settings::stallFor>("interface.stallFor", "ms", -1, kLongestTime,
                                "how long nothing moves; -1: for ever"),
    Number<&Settings::loseAt>("interface.loseAt", "ms", -1, kLongestTime,
                              "played time after which the interface is lost; -1: never"),
};

}  // namespace

std::span<const PlayerSettingInfo> InterfaceSettingInfo() {
    static const ToldSettings told(kRows);
    return told.settings;
}

Assignment Assign(Settings& settings, const PlayerSetting& setting, std::string& problem) {
    return AssignTo(settings, kRows, setting, problem);
}

}  // namespace itc18
