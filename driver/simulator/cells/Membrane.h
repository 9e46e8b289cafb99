// What every membrane is made of and gives: a conductance and a drive, per area.
//
// A membrane is a class with
//   potential                     [mV]
//   Area(), Capacitance()         [µm²], [µF/cm²]
//   Settle(stream)                everything but the potential at its steady state there; chance,
//   if
//                                 any, is drawn of the stream, null in a search
//   AdvanceGates(ms, stream, held) lets everything but the potential pass time; `held`
//                                 by a clamp
//   LoadOver(ms)                  what acts on the potential in a coming step of it
//   LeftAfter(x)                  e^-x
//   Outward()                     the current outwards at the potential [µA/cm²]
//   MoveTo(v, ms), JumpTo(v)      the potential after a step of it, or by force
//   TakeSpike()                   whether it has spiked since it was asked, if spikes are not in
//   its
//                                 potential
//   kRises, kRestsAnywhere        whether Outward() of the settled membrane rises with the
//   potential
//                                 throughout, and whether it has a steady state at any current
//   kLowest, kHighest             between which potentials [mV] steady states are looked for first
// Where a model is told in pF, nS and pA, an area of 100 µm² makes these µF/cm², mS/cm² and µA/cm².
#pragma once

namespace itc18 {

constexpr double kLowestSearched = -1000, kHighestSearched = 200;  // [mV]

struct MembraneSettings {
    double size;                // times the model's own membrane
    double channelConductance;  // [pS], 0: countless channels
    bool tabulated;             // gates by table
};

// The ionic current outwards is conductance * potential - drive.
struct Load {
    double conductance;  // [mS/cm²]
    double drive;        // [µA/cm²]
};

// A density [µA/cm²] or [mS/cm²] of a current [pA] or conductance [nS] over an area [µm²].
constexpr double DensityOf(double amount, double area) { return 100 * amount / area; }

}  // namespace itc18
