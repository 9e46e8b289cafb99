// Everything between the interface's converters: the amplifier, the electrode and the cell.
//
// Units: commands and signals are converter counts, ITC18Simulator_CountsPerVolt of them a volt, so
// that a count keeps its exact meaning; mV, pA, nS, pF, MOhm, ms within, µs of durations.
// A preparation is a value: a copy goes on by itself and does the same. It knows no clock and no
// chance but its seed's, and is made, settled and played from any thread, one at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "simulator/cells/PreparationSettings.h"

namespace itc18 {

// The conductances of dynamic clamp at one point [nS].
struct ClampConductances {
    double excitatory = 0, inhibitory = 0;
};

struct DynamicClamp {
    int32_t latency;                                // [points], 0 to kLongestLatency
    double excitatoryReversal, inhibitoryReversal;  // [mV]
};

constexpr int32_t kLongestLatency = 1 << 20;

class Preparation {
  public:
    // The settings are free of contradiction. The cell is settled at a command of 0.
    explicit Preparation(const PreparationSettings& settings);
    Preparation(const Preparation& other);
    Preparation(Preparation&& other) noexcept;
    Preparation& operator=(const Preparation& other);
    Preparation& operator=(Preparation&& other) noexcept;
    ~Preparation();

    // The steady state at a constant command [counts], any number; where there is none, as in a
    // cell that fires at it, a state from which it begins to. Ends dynamic clamp.
    void Settle(double command);

    // Lets `microseconds` pass at a constant command [counts]. In dynamic clamp this is
    // one point, whose conductances [nS] make a current with the signal of `latency` points before;
    // without dynamic clamp they are not looked at.
    void Advance(double command, double microseconds, ClampConductances conductances = {});

    // What stands at the converter [counts], neither rounded nor limited to its range. Asking
    // changes nothing: noise is drawn while time passes.
    double Signal() const;

    // From the next point on the amplifier injects the current of conductances beside the command,
    // in current clamp, as far as the converter's range goes; in the other modes there is nowhere
    // to inject it. Before the first point the signal has been what it is now. False, and nothing
    // changed, for a latency out of range.
    bool StartDynamicClamp(const DynamicClamp& clamp);
    void EndDynamicClamp();

    // Takes other settings between two epochs. The cell's state stays while its model does; another
    // model begins settled at a command of 0. The noise goes on while the seed is the same.
    // Ends dynamic clamp.
    void Change(const PreparationSettings& settings);

    // The cell's own potential, which no amplifier sees.
    double MembranePotential() const;  // [mV]

  private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

}  // namespace itc18
