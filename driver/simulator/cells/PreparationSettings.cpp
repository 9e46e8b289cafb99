// The table of a preparation's settings.
#include "simulator/cells/PreparationSettings.h"

#include <array>

namespace itc18 {
namespace {

using Settings = PreparationSettings;

constexpr double kLargestSeed = 9007199254740991;  // every whole number up to it is a double

const std::array kRows{
    Choice<&Settings::mode>("amplifier.mode", "currentClamp|voltageClamp|zeroCurrent",
                            "what the amplifier holds; at zero current it only measures"),
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
                              "resistance whose drop is subtracted in current clamp"),
    Number<&Settings::seriesCompensation>(
        "amplifier.seriesCompensation", "%", 0, 100,
        "part of the access resistance that is compensated in voltage clamp"),
    Number<&Settings::capacitanceCompensation>(
        "amplifier.capacitanceCompensation", "pF", 0, 100,
        "of the pipette's capacitance that the amplifier charges"),
    Number<&Settings::clampTime>("amplifier.clampTime", "µs", 0, 10000,
                                 "time constant of the pipette's potential in voltage clamp"),

    Number<&Settings::accessResistance>("electrode.accessResistance", "MOhm", 0, 1000,
                                        "resistance between pipette and cell"),
    Number<&Settings::pipetteCapacitance>("electrode.pipetteCapacitance", "pF", 0, 100,
                                          "capacitance of the pipette to the bath"),
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
    Number<&Settings::capacitance>("cell.capacitance", "pF", 0.1, 1e4,
                                   "capacitance of the passive cell"),
    Number<&Settings::resistance>("cell.resistance", "MOhm", 0.1, 1e5,
                                  "resistance of the passive cell"),
    Number<&Settings::restingPotential>("cell.restingPotential", "mV", -200, 200,
                                        "resting potential of the passive cell"),
    Number<&Settings::channelConductance>(
        "cell.channelConductance", "pS", 0, 1e6,
        "of a single channel, whose opening is then left to chance; 0: countless channels"),
    Choice<&Settings::rates>(
        "cell.rates", "computed|tabulated",
        "rates of gates by their formulas, or faster by a table that agrees within 0.003 mV"),

    Number<&Settings::excitatoryConductance>("synapses.excitatoryConductance", "nS", 0, 1e4,
                                             "mean excitatory conductance"),
    Number<&Settings::excitatoryDeviation>("synapses.excitatoryDeviation", "nS", 0, 1e4,
                                           "its standard deviation"),
    Number<&Settings::excitatoryTime>("synapses.excitatoryTime", "ms", 0.01, 1e4,
                                      "its correlation time"),
    Number<&Settings::excitatoryReversal>("synapses.excitatoryReversal", "mV", -200, 200,
                                          "its reversal potential"),
    Number<&Settings::inhibitoryConductance>("synapses.inhibitoryConductance", "nS", 0, 1e4,
                                             "mean inhibitory conductance"),
    Number<&Settings::inhibitoryDeviation>("synapses.inhibitoryDeviation", "nS", 0, 1e4,
                                           "its standard deviation"),
    Number<&Settings::inhibitoryTime>("synapses.inhibitoryTime", "ms", 0.01, 1e4,
                                      "its correlation time"),
    Number<&Settings::inhibitoryReversal>("synapses.inhibitoryReversal", "mV", -200, 200,
                                          "its reversal potential"),

    WholeNumber<&Settings::seed>("noise.seed", "", 0, kLargestSeed,
                                 "whole number that decides all noise")};

}  // namespace

std::span<const PlayerSettingInfo> PreparationSettingInfo() {
    static const ToldSettings told(kRows);
    return told.settings;
}

Assignment Assign(Settings& settings, const PlayerSetting& setting, std::string& problem) {
    return AssignTo(settings, kRows, setting, problem);
}

std::string Contradiction(const Settings& settings) {
    if (settings.capacitanceCompensation > settings.pipetteCapacitance)
        return "amplifier.capacitanceCompensation is more than electrode.pipetteCapacitance: the "
               "amplifier would oscillate";
    return "";
}

}  // namespace itc18
