// Flattening settings, and holding them to what the player says of itself.
#include "plan/Settings.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace corvantis::rig {
namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

// Of a text that is a number alone, as {NAME} may become; its unit is in the player's table.
double NumberOf(std::string_view text) {
    double number = kNoNumber;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
    return end.ec == std::errc() && end.ptr == text.data() + text.size() ? number : kNoNumber;
}

Setting SettingOf(const Node& node, std::string name, const Names& names) {
    Setting setting = {node, std::move(name), "", kNoNumber};
    switch (node.GetKind()) {
        case Kind::kTruth:
            setting.text = node.value->truth ? "true" : "false";
            break;
        case Kind::kNumber:
            setting.number = node.value->number;
            setting.text = fmt::format("{}", setting.number);
            break;
        default:
            setting.text = Filled(node, names);
            setting.number = NumberOf(setting.text);
    }
    return setting;
}

void Flatten(const Node& object, const std::string& before, const Names& names,
             Settings& settings) {
    for (size_t k = 0; k < object.value->items.size(); ++k) {
        const Node item = object.Item(k);
        const std::string name = before + object.value->names[k];
        if (item.GetKind() == Kind::kObject) {
            Flatten(item, name + ".", names, settings);
        } else {
            settings.push_back(SettingOf(item, name, names));
        }
    }
}

const PlayerSettingInfo* Find(std::span<const PlayerSettingInfo> known, std::string_view name) {
    for (const PlayerSettingInfo& info : known) {
        if (name == info.name) return &info;
    }
    return nullptr;
}

[[noreturn]] void FailUnknown(const Setting& setting, std::span<const PlayerSettingInfo> known) {
    std::vector<std::string_view> names;
    for (const PlayerSettingInfo& info : known) names.emplace_back(info.name);
    const std::string_view nearest = Nearest(setting.name, names);
    setting.node.Fail(fmt::format("the player knows no setting {}{}", setting.name,
                                  nearest.empty() ? "" : fmt::format("; is {} meant?", nearest)));
}

bool IsChoice(std::string_view choices, std::string_view text) {
    while (!choices.empty()) {
        const size_t end = std::min(choices.find('|'), choices.size());
        if (choices.substr(0, end) == text) return true;
        choices = choices.substr(std::min(end + 1, choices.size()));
    }
    return false;
}

void CheckValue(const Setting& setting, const PlayerSettingInfo& info) {
    if (info.choices != nullptr) {
        const std::string_view choices = info.choices;
        if (choices.empty() || IsChoice(choices, setting.text)) return;
        setting.node.Fail(fmt::format("\"{}\" is none of {}", setting.text, choices));
    }
    if (setting.number >= info.least && setting.number <= info.most) return;
    const std::string_view unit = info.unit;
    setting.node.Fail(fmt::format("\"{}\" is no number alone from {:g} to {:g}{}", setting.text,
                                  info.least, info.most,
                                  unit.empty() ? "" : fmt::format(", which is in {}", unit)));
}

}  // namespace

Settings SettingsOf(const Node& object, const Names& names) {
    Settings settings;
    if (object) Flatten(object, "", names, settings);
    return settings;
}

std::vector<PlayerSetting> PlayerSettings(const Settings& settings) {
    std::vector<PlayerSetting> given;
    for (const Setting& setting : settings) {
        given.push_back({setting.name.c_str(), setting.text.c_str(), setting.number});
    }
    return given;
}

void CheckSettings(const Settings& settings, std::span<const PlayerSettingInfo> known) {
    for (const Setting& setting : settings) {
        const PlayerSettingInfo* info = Find(known, setting.name);
        if (info == nullptr) FailUnknown(setting, known);
        CheckValue(setting, *info);
    }
}

}  // namespace corvantis::rig
