// The table of a preparation's settings and what is done by it.
#include "simulator/cells/PreparationSettings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <vector>

namespace itc18 {
namespace {

using Settings = PreparationSettings;

struct Row {
    const char* name;
    const char* unit;
    const char* meaning;
    const char* choices;  // null for a number
    double least, most;
    double (*get)(const Settings&);  // of a choice, its place among the choices
    void (*set)(Settings&, double);
};

template <auto kField>
constexpr Row With(Row row) {
    using Field = std::remove_reference_t<decltype(std::declval<Settings>().*kField)>;
    row.get = [](const Settings& settings) { return static_cast<double>(settings.*kField); };
    row.set = [](Settings& settings, double value) {
        settings.*kField = static_cast<Field>(value);
    };
    return row;
}

template <auto kField>
constexpr Row Number(const char* name, const char* unit, double least, double most,
                     const char* meaning) {
    return With<kField>({name, unit, meaning, nullptr, least, most, nullptr, nullptr});
}

template <auto kField>
constexpr Row Choice(const char* name, const char* choices, const char* meaning) {
    return With<kField>({name, "", meaning, choices, 0, 0, nullptr, nullptr});
}

constexpr double kLargestSeed = 9007199254740991;  // every whole number up to it is a double

const std::array kRows{
    Choice<&Settings::mode>("amplifier.mode", "currentClamp|voltageClamp|zeroCurrent",
                            "what the amplifier holds; without current it only measures"),
    Number<&Settings::currentCommand>("amplifier.currentCommand", "pA/V", 0, 1e5,
                                      "what a volt of command injects in current clamp"),
    Number<&Settings::voltageCommand>("amplifier.voltageCommand", "mV/V", 0, 1000,
                                      "what a volt of command holds in voltage clamp"),
    Number<&Settings::potentialOutput>("amplifier.potentialOutput", "mV/V", 0.01, 1e4,
                                       "potential that a volt of signal stands for"),
    Number<&Settings::currentOutput>("amplifier.currentOutput", "pA/V", 0.01, 1e6,
                                     "current that a volt of signal stands for in voltage clamp"),
    Choice<&Settings::filter>("amplifier.filter", "none|lowPass|bessel",
                              "of the signal: one pole, or a Bessel filter of four"),
    Number<&Settings::filterCutoff>("amplifier.filterCutoff", "Hz", 1, 1e5,
                                    "where the filter's gain is -3 dB"),
    Number<&Settings::bridge>("amplifier.bridge", "MOhm", 0, 1000,
                              "whose drop is subtracted in current clamp"),
    Number<&Settings::seriesCompensation>(
        "amplifier.seriesCompensation", "%", 0, 100,
        "of the access resistance that voltage clamp does without"),
    Number<&Settings::capacitanceCompensation>("amplifier.capacitanceCompensation", "pF", 0, 100,
                                               "of the pipette that the amplifier charges"),
    Number<&Settings::clampTime>("amplifier.clampTime", "µs", 0, 10000,
                                 "time constant of the pipette's potential in voltage clamp"),

    Number<&Settings::accessResistance>("electrode.accessResistance", "MOhm", 0, 1000,
                                        "between pipette and cell"),
    Number<&Settings::pipetteCapacitance>("electrode.pipetteCapacitance", "pF", 0, 100,
                                          "of the pipette to the bath"),
    Number<&Settings::junctionPotential>("electrode.junctionPotential", "mV", -100, 100,
                                         "by which the pipette's potential exceeds the cell's"),
    Number<&Settings::potentialNoise>("electrode.potentialNoise", "mV", 0, 100,
                                      "standard deviation at each sample of a potential"),
    Number<&Settings::currentNoise>("electrode.currentNoise", "pA", 0, 1e4,
                                    "standard deviation at each sample of a current"),

    Choice<&Settings::model>(
        "cell.model",
        "squidAxon|passive|regularSpiking|fastSpiking|connorStevens|connorStevensWithoutA|"
        "wangBuzsaki|adexBretteGerstner|adexTonic|adexAdaptation|adexInitialBurst|"
        "adexRegularBursting|adexDelayedAccelerating|adexTransient",
        "whose membrane the cell has"),
    Number<&Settings::size>("cell.size", "", 0.01, 1000, "times the model's own membrane"),
    Number<&Settings::capacitance>("cell.capacitance", "pF", 0.1, 1e4, "of the passive cell"),
    Number<&Settings::resistance>("cell.resistance", "MOhm", 0.1, 1e5, "of the passive cell"),
    Number<&Settings::restingPotential>("cell.restingPotential", "mV", -200, 200,
                                        "of the passive cell"),
    Number<&Settings::channelConductance>(
        "cell.channelConductance", "pS", 0, 1e6,
        "of a single channel, where the cell has so many of them by chance open; 0: countless"),
    Choice<&Settings::rates>(
        "cell.rates", "computed|tabulated",
        "how the gates' rates are had; tabulated is faster and alike to 0.001 %"),

    Number<&Settings::excitatoryConductance>("synapses.excitatoryConductance", "nS", 0, 1e4,
                                             "mean"),
    Number<&Settings::excitatoryDeviation>("synapses.excitatoryDeviation", "nS", 0, 1e4,
                                           "standard deviation"),
    Number<&Settings::excitatoryTime>("synapses.excitatoryTime", "ms", 0.01, 1e4,
                                      "correlation time"),
    Number<&Settings::excitatoryReversal>("synapses.excitatoryReversal", "mV", -200, 200,
                                          "reversal potential"),
    Number<&Settings::inhibitoryConductance>("synapses.inhibitoryConductance", "nS", 0, 1e4,
                                             "mean"),
    Number<&Settings::inhibitoryDeviation>("synapses.inhibitoryDeviation", "nS", 0, 1e4,
                                           "standard deviation"),
    Number<&Settings::inhibitoryTime>("synapses.inhibitoryTime", "ms", 0.01, 1e4,
                                      "correlation time"),
    Number<&Settings::inhibitoryReversal>("synapses.inhibitoryReversal", "mV", -200, 200,
                                          "reversal potential"),

    Number<&Settings::seed>("noise.seed", "", 0, kLargestSeed,
                            "whole number that decides all noise")};

std::vector<std::string_view> ChoicesOf(const char* choices) {
    std::vector<std::string_view> found;
    std::string_view rest(choices);
    for (size_t bar = rest.find('|'); bar != std::string_view::npos; bar = rest.find('|')) {
        found.push_back(rest.substr(0, bar));
        rest.remove_prefix(bar + 1);
    }
    found.push_back(rest);
    return found;
}

std::string NumberText(double number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.16g", number);
    return text.data();
}

std::string DefaultText(const Row& row) {
    const double value = row.get(Settings{});
    if (row.choices == nullptr) return NumberText(value);
    return std::string(ChoicesOf(row.choices)[static_cast<size_t>(value)]);
}

Assignment AssignChoice(Settings& settings, const Row& row, const char* text,
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

Assignment AssignNumber(Settings& settings, const Row& row, double number, std::string& problem) {
    const bool isWhole = row.most != kLargestSeed || number == std::floor(number);
    if (number >= row.least && number <= row.most && isWhole) {
        row.set(settings, number);
        return Assignment::kDone;
    }
    problem = std::string(row.name) + " is a number from " + NumberText(row.least) + " to " +
              NumberText(row.most) + (*row.unit != 0 ? std::string(" ") + row.unit : "");
    return Assignment::kBadValue;
}

// The settings as Player.h tells them, with the texts of their defaults.
struct Told {
    std::array<std::string, kRows.size()> defaults;
    std::array<PlayerSettingInfo, kRows.size()> settings{};

    Told() {
        for (size_t i = 0; i < kRows.size(); ++i) {
            const Row& row = kRows[i];
            defaults[i] = DefaultText(row);
            settings[i] = {row.name,  row.unit, row.meaning,        row.choices,
                           row.least, row.most, defaults[i].c_str()};
        }
    }
};

}  // namespace

std::span<const PlayerSettingInfo> PreparationSettingInfo() {
    static const Told told;
    return told.settings;
}

Assignment Assign(Settings& settings, const PlayerSetting& setting, std::string& problem) {
    const std::string_view name = setting.name == nullptr ? "" : setting.name;
    const auto* const row = std::find_if(
        kRows.begin(), kRows.end(), [&](const Row& candidate) { return name == candidate.name; });
    if (row == kRows.end()) {
        problem = "no setting is called " + std::string(name);
        return Assignment::kUnknownName;
    }
    return row->choices != nullptr ? AssignChoice(settings, *row, setting.text, problem)
                                   : AssignNumber(settings, *row, setting.number, problem);
}

std::string Contradiction(const Settings& settings) {
    if (settings.capacitanceCompensation > settings.pipetteCapacitance)
        return "amplifier.capacitanceCompensation is more than electrode.pipetteCapacitance: the "
               "amplifier would oscillate";
    return "";
}

}  // namespace itc18
