// A table of settings, of which each is a field of one structure: what Player.h tells of them, and
// how they are taken.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "Player.h"

namespace itc18 {

enum class Assignment { kDone, kUnknownName, kBadValue };

enum class Numbers { kAny, kWhole };

template <class Settings>
struct SettingRow {
    const char* name;
    const char* unit;
    const char* meaning;
    const char* choices;  // null for a number
    double least, most;
    Numbers numbers;
    double (*get)(const Settings&) = nullptr;  // of a choice, its place among the choices
    void (*set)(Settings&, double) = nullptr;
};

template <class Owner, class Value>
Owner OwnerOf(Value Owner::*);

// The structure that a field belongs to.
template <auto kField>
using SettingsOf = decltype(OwnerOf(kField));

template <auto kField>
constexpr SettingRow<SettingsOf<kField>> WithField(SettingRow<SettingsOf<kField>> row) {
    using Settings = SettingsOf<kField>;
    using Field = std::remove_reference_t<decltype(std::declval<Settings&>().*kField)>;
    row.get = [](const Settings& settings) { return static_cast<double>(settings.*kField); };
    row.set = [](Settings& settings, double value) {
        settings.*kField = static_cast<Field>(value);
    };
    return row;
}

template <auto kField>
constexpr auto Number(const char* name, const char* unit, double least, double most,
                      const char* meaning) {
    return WithField<kField>({name, unit, meaning, nullptr, least, most, Numbers::kAny});
}

template <auto kField>
constexpr auto WholeNumber(const char* name, const char* unit, double least, double most,
                           const char* meaning) {
    return WithField<kField>({name, unit, meaning, nullptr, least, most, Numbers::kWhole});
}

// The field is an enumeration, or a truth value, in the order of the choices.
template <auto kField>
constexpr auto Choice(const char* name, const char* choices, const char* meaning) {
    return WithField<kField>({name, "", meaning, choices, 0, 0, Numbers::kWhole});
}

inline std::vector<std::string_view> ChoicesOf(const char* choices) {
    std::vector<std::string_view> found;
    std::string_view rest(choices);
    for (size_t bar = rest.find('|'); bar != std::string_view::npos; bar = rest.find('|')) {
        found.push_back(rest.substr(0, bar));
        rest.remove_prefix(bar + 1);
    }
    found.push_back(rest);
    return found;
}

inline std::string NumberText(double number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.16g", number);
    return text.data();
}

template <class Settings>
std::string DefaultText(const SettingRow<Settings>& row) {
    const double value = row.get(Settings{});
    if (row.choices == nullptr) return NumberText(value);
    return std::string(ChoicesOf(row.choices)[static_cast<size_t>(value)]);
}

template <class Settings>
Assignment AssignChoice(Settings& settings, const SettingRow<Settings>& row, const char* text,
                        std::string& problem) {
    const auto choices = ChoicesOf(row.choices);
    const auto found = std::find(choices.begin(), choices.end(), text == nullptr ? "" : text);
    if (found != choices.end()) {
        row.set(settings, static_cast<double>(found - choices.begin()));
        return Assignment::kDone;
    }
    problem = std::string(row.name) + " is one of " + row.choices;
    return Assignment::kBadValue;
}

template <class Settings>
Assignment AssignNumber(Settings& settings, const SettingRow<Settings>& row, double number,
                        std::string& problem) {
    const bool isWhole = row.numbers == Numbers::kWhole;
    if (number >= row.least && number <= row.most && (!isWhole || number == std::floor(number))) {
        row.set(settings, number);
        return Assignment::kDone;
    }
    problem = std::string(row.name) + " is a " + (isWhole ? "whole " : "") + "number from " +
              NumberText(row.least) + " to " + NumberText(row.most) +
              (*row.unit != 0 ? std::string(" ") + row.unit : "");
    return Assignment::kBadValue;
}

// Takes one setting. After anything but kDone the settings are as before and the problem is a
// sentence that says what may be given instead.
template <class Settings, size_t kCount>
Assignment AssignTo(Settings& settings, const std::array<SettingRow<Settings>, kCount>& rows,
                    const PlayerSetting& setting, std::string& problem) {
    const std::string_view name = setting.name == nullptr ? "" : setting.name;
    const auto* const row = std::find_if(rows.data(), rows.data() + kCount,
                                         [&](const auto& each) { return name == each.name; });
    if (row == rows.data() + kCount) {
        problem = "no setting is called " + std::string(name);
        return Assignment::kUnknownName;
    }
    return row->choices != nullptr ? AssignChoice(settings, *row, setting.text, problem)
                                   : AssignNumber(settings, *row, setting.number, problem);
}

// The settings as Player.h tells them, with the texts of their defaults.
template <size_t kCount>
struct ToldSettings {
    std::array<std::string, kCount> defaults;
    std::array<PlayerSettingInfo, kCount> settings{};

    template <class Settings>
    explicit ToldSettings(const std::array<SettingRow<Settings>, kCount>& rows) {
        for (size_t i = 0; i < kCount; ++i) {
            const SettingRow<Settings>& row = rows[i];
            defaults[i] = DefaultText(row);
            settings[i] = {row.name,  row.unit, row.meaning,        row.choices,
                           row.least, row.most, defaults[i].c_str()};
        }
    }
    ToldSettings(const ToldSettings&) = delete;  // the texts would move
};

}  // namespace itc18
