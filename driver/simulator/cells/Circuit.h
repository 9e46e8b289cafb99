// What the settings make of the amplifier and the electrode, in the cell's units.
#pragma once

#include "simulator/cells/Membrane.h"
#include "simulator/cells/PreparationSettings.h"

namespace itc18 {

// What moves the cell's potential: a current, into it alone or through a pipette that is charged
// too; a held pipette through a resistance, or without one.
enum class Path { kInjected, kPipetteToo, kResistance, kHeld };

// The amplifier and the electrode in the cell's units; by the cell's area where densities stand.
struct Circuit {
    Circuit(const PreparationSettings& settings, double area)
        : clampsVoltage(settings.mode == AmplifierMode::kVoltageClamp),
          picoamperesPerCount(settings.mode == AmplifierMode::kCurrentClamp
                                  ? settings.currentCommand / ITC18Simulator_CountsPerVolt
                                  : 0),
          millivoltsPerCount(settings.voltageCommand / ITC18Simulator_CountsPerVolt),
          countsPerUnit(ITC18Simulator_CountsPerVolt /
                        (clampsVoltage ? settings.currentOutput : settings.potentialOutput)),
          noise(clampsVoltage ? settings.currentNoise : settings.potentialNoise),
          membraneArea(area) {
        const double pipette = settings.pipetteCapacitance - settings.capacitanceCompensation;
        const double resistance =
            settings.accessResistance * (clampsVoltage ? 1 - settings.seriesCompensation / 100 : 1);
        pipetteCapacitance = DensityOf(pipette, area);
        accessConductance = resistance > 0 ? DensityOf(1000 / resistance, area) : 0;
        millivoltsPerPicoampere = (settings.accessResistance - settings.bridge) / 1000;
        junction = settings.junctionPotential;
        clampTime = settings.clampTime / 1000;
        if (clampsVoltage)
            path = accessConductance > 0 ? Path::kResistance : Path::kHeld;
        else if (pipetteCapacitance > 0 && accessConductance > 0)
            path = Path::kPipetteToo;
    }

    double CurrentOf(double density) const { return density * membraneArea / 100; }

    bool clampsVoltage;
    Path path = Path::kInjected;
    double picoamperesPerCount, millivoltsPerCount, countsPerUnit, noise, membraneArea;
    double pipetteCapacitance;       // what the amplifier does not charge [µF/cm²]
    double accessConductance;        // of what is not compensated [mS/cm²]; 0: no resistance
    double millivoltsPerPicoampere;  // of the bridge's error [mV]
    double junction;                 // [mV]
    double clampTime;                // [ms]
};

}  // namespace itc18
