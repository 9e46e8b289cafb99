// The steps of a membrane's potential with an electrode in it, each exact for loads that stand
// still.
#pragma once

#include <algorithm>
#include <cmath>

#include "simulator/cells/Membrane.h"

namespace itc18 {

inline void Relax(double& value, double target, double rate, double milliseconds) {
    value = target + (value - target) * std::exp(-rate * milliseconds);
}

// Pipette and cell as two capacitances with a conductance between them; all by the cell's area.
struct PipetteAndCell {
    double access;         // [mS/cm²], above 0
    double pipette, cell;  // capacitances [µF/cm²], above 0
    Load load;             // of the cell, its conductance above 0
    double current;        // into the pipette [µA/cm²]

    // Both potentials go to where the current leaves them, as two modes. The slow mode's rate is
    // had of the product of both, since their difference from the mean would cancel.
    void Advance(double& pipettePotential, double& potential, double milliseconds) const {
        const double ofCell = (load.conductance + access) / cell, toCell = access / cell;
        const double ofPipette = access / pipette;
        const double mean = (ofCell + ofPipette) / 2, half = (ofCell - ofPipette) / 2;
        const double distance = std::sqrt(half * half + toCell * ofPipette);
        const double fast = mean + distance;
        const double slow = load.conductance / cell * ofPipette / fast;
        const double restOfCell = (load.drive + current) / load.conductance;
        const double restOfPipette = restOfCell + current / access;
        const double v = potential - restOfCell, p = pipettePotential - restOfPipette;
        const double slowV = ((fast - ofCell) * v + toCell * p) / (fast - slow);
        const double slowP = (ofPipette * v + (fast - ofPipette) * p) / (fast - slow);
        const double slowLeft = std::exp(-slow * milliseconds);
        const double fastLeft = std::exp(-fast * milliseconds);
        potential = restOfCell + slowV * slowLeft + (v - slowV) * fastLeft;
        pipettePotential = restOfPipette + slowP * slowLeft + (p - slowP) * fastLeft;
    }
};

}  // namespace itc18
