// What can be set of the amplifier, the electrode and the cell, and the one table that names it.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Player.h"
#include "simulator/ITC18Simulator.h"
#include "simulator/SettingTable.h"

namespace itc18 {

enum class AmplifierMode : int32_t { kCurrentClamp, kVoltageClamp, kZeroCurrent };

enum class AmplifierFilter : int32_t { kNone, kLowPass, kBessel };

enum class GateRates : int32_t { kComputed, kTabulated };

enum class CellModel : int32_t {
    kSquidAxon,
    kPassive,
    kRegularSpiking,
    kFastSpiking,
    kConnorStevens,
    kConnorStevensWithoutA,
    kWangBuzsaki,
    kAdexBretteGerstner,
    kAdexTonic,
    kAdexAdaptation,
    kAdexInitialBurst,
    kAdexRegularBursting,
    kAdexDelayedAccelerating,
    kAdexTransient
};

// As they stand here: the squid axon behind an ideal electrode in current clamp, without noise.
// Names, units and ranges are in the table below.
struct PreparationSettings {
    AmplifierMode mode = AmplifierMode::kCurrentClamp;
    double currentCommand = ITC18Simulator_PicoamperesPerVolt;
    double voltageCommand = 20;
    double potentialOutput = ITC18Simulator_MillivoltsPerVolt;
    double currentOutput = 1000;
    AmplifierFilter filter = AmplifierFilter::kNone;
    double filterCutoff = 10000;
    double bridge = 0;
    double seriesCompensation = 0;
    double capacitanceCompensation = 0;
    double clampTime = 0;

    double accessResistance = 0;
    double pipetteCapacitance = 0;
    double junctionPotential = 0;
    double potentialNoise = 0;
    double currentNoise = 0;

    CellModel model = CellModel::kSquidAxon;
    double size = 1;
    double capacitance = 100;
    double resistance = 200;
    double restingPotential = -70;
    double channelConductance = 0;
    GateRates rates = GateRates::kComputed;

    double excitatoryConductance = 0;
    double excitatoryDeviation = 0;
    double excitatoryTime = 2.728;
    double excitatoryReversal = 0;
    double inhibitoryConductance = 0;
    double inhibitoryDeviation = 0;
    double inhibitoryTime = 10.49;
    double inhibitoryReversal = -75;

    double seed = 1;

    bool operator==(const PreparationSettings& other) const = default;
};

// Every setting of a preparation, in groups: amplifier, electrode, cell, synapses, noise.
std::span<const PlayerSettingInfo> PreparationSettingInfo();

// Takes one setting. After anything but kDone the settings are as before and the problem is a
// sentence that says what may be given instead.
Assignment Assign(PreparationSettings& settings, const PlayerSetting& setting,
                  std::string& problem);

// What two settings ask for that cannot be had together, as a sentence; empty if all is well. A
// preparation is only made of settings without contradiction.
std::string Contradiction(const PreparationSettings& settings);

}  // namespace itc18
