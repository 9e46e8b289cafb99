// The table of the interface's settings.
#include "simulator/streaming/InterfaceSettings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <optional>
#include <string_view>

namespace itc18 {
namespace {

using Settings = InterfaceSettings;

constexpr double kEver = 1e9;  // [ms]

struct Row {
    PlayerSettingInfo info;
    double Settings::*place;
};

constexpr Row Number(const char* name, const char* unit, double least, double most,
                     const char* unless, double Settings::*place, const char* meaning) {
    return {{name, unit, meaning, nullptr, least, most, unless}, place};
}

constexpr Row Choice(const char* name, const char* choices, const char* unless,
                     double Settings::*place, const char* meaning) {
    return {{name, "", meaning, choices, 0, 0, unless}, place};
}

constexpr std::array kRows = {
    Choice("interface.pacing", "fast|real-time", "fast", &Settings::pacing,
           "whether an epoch takes no longer than its calculation, or its own time"),
    Number("interface.pipeline", "samples", 0, 64, "0", &Settings::pipeline,
           "delay between a written sample and the one that is read as it is played"),
    Choice("interface.skew", "false|true", "false", &Settings::skew,
           "whether a pass's entries act one interval after the other, not together"),
    Number("interface.outputBuffer", "samples", 4, 16777216, "262144", &Settings::outputBuffer,
           "written samples that the interface holds"),
    Number("interface.inputBuffer", "samples", 4, 16777216, "262144", &Settings::inputBuffer,
           "acquired samples that the interface holds"),
    Number("interface.mostMoved", "samples", 0, 16777216, "0", &Settings::mostMoved,
           "the most that one call moves; 0: no limit"),
    Number("interface.seed", "", 0, 4294967295, "0", &Settings::seed,
           "from which the limit of each call is drawn, 0 to mostMoved; 0: it is mostMoved"),
    Number("interface.triggerAfter", "ms", -1, kEver, "0", &Settings::triggerAfter,
           "when an external trigger comes that an epoch waits for; -1: never"),
    Choice("interface.failCall", "none|change|start|room|write|read|stop|wait", "none",
           &Settings::failCall, "the call that fails once"),
    Number("interface.failAt", "", 1, 1e9, "1", &Settings::failAt,
           "which of these calls fails, counted from now"),
    Number("interface.stallAt", "ms", -1, kEver, "-1", &Settings::stallAt,
           "played time after which nothing moves for a while; -1: never"),
    Number("interface.stallFor", "ms", -1, kEver, "-1", &Settings::stallFor,
           "how long nothing moves; -1: for ever"),
    Number("interface.loseAt", "ms", -1, kEver, "-1", &Settings::loseAt,
           "played time after which the interface is lost; -1: never"),
};

template <size_t... Index>
constexpr auto Infos(std::index_sequence<Index...>) {
    return std::array{kRows[Index].info...};
}

constexpr auto kInfos = Infos(std::make_index_sequence<kRows.size()>{});

// Which of the choices a text is.
std::optional<double> ChoiceOf(std::string_view choices, std::string_view text) {
    for (double number = 0;; ++number) {
        const size_t end = choices.find('|');
        if (choices.substr(0, end) == text) return number;
        if (end == choices.npos) return std::nullopt;
        choices.remove_prefix(end + 1);
    }
}

std::optional<double> ValueOf(const PlayerSettingInfo& info, const PlayerSetting& setting) {
    if (info.choices != nullptr)
        return ChoiceOf(info.choices, setting.text != nullptr ? setting.text : "");
    const bool fits = setting.number >= info.least && setting.number <= info.most;
    return fits ? std::optional(setting.number) : std::nullopt;
}

// Counts of samples are whole numbers; so are seeds.
bool IsWhole(const PlayerSettingInfo& info, double value) {
    return std::strcmp(info.unit, "ms") == 0 || value == std::floor(value);
}

std::string Rounded(double value) { return std::to_string(static_cast<int64_t>(value)); }

std::string Permitted(const PlayerSettingInfo& info) {
    const std::string name = std::string(info.name) + " is ";
    if (info.choices == nullptr)
        return name + "a number from " + Rounded(info.least) + " to " + Rounded(info.most) +
               (*info.unit != '\0' ? std::string(" ") + info.unit : "");
    std::string choices = info.choices;
    for (size_t bar = 0; (bar = choices.find('|')) != choices.npos;) choices.replace(bar, 1, ", ");
    return name + "one of " + choices;
}

}  // namespace

InterfaceSettings InterfaceSettings::Usual() {
    InterfaceSettings settings;
    for (const Row& row : kRows) {
        const PlayerSetting usual{row.info.name, row.info.unless,
                                  std::strtod(row.info.unless, nullptr)};
        settings.*row.place = ValueOf(row.info, usual).value_or(0);
    }
    return settings;
}

std::span<const PlayerSettingInfo> InterfaceSettingInfo() { return kInfos; }

Assignment Assign(InterfaceSettings& settings, const PlayerSetting& setting, std::string& problem) {
    const auto row = std::find_if(kRows.begin(), kRows.end(), [&](const Row& each) {
        return std::strcmp(each.info.name, setting.name) == 0;
    });
    if (row == kRows.end()) {
        problem = std::string("there is no setting ") + setting.name;
        return Assignment::kUnknownName;
    }
    const std::optional<double> value = ValueOf(row->info, setting);
    if (!value || !IsWhole(row->info, *value)) {
        problem = Permitted(row->info);
        return Assignment::kBadValue;
    }
    settings.*row->place = *value;
    return Assignment::kDone;
}

}  // namespace itc18
