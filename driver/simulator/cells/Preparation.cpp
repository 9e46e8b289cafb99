// How amplifier, electrode and cell pass time together.
#include "simulator/cells/Preparation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <tuple>
#include <type_traits>
#include <variant>
#include <vector>

#include "simulator/cells/Cell.h"
#include "simulator/cells/Circuit.h"
#include "simulator/cells/Electrode.h"
#include "simulator/cells/OutputFilter.h"
#include "simulator/cells/SynapticNoise.h"

namespace itc18 {
namespace {

// Longest integration step [µs]. Compared with a tenth of it the squid axon's first spike of a
// train moves by less than 0.1 µs and its firing rate by 20 parts in a million.
constexpr double kLongestStep = 5;

constexpr double kMostCounts = 32768;  // a converter's range

enum StreamNumber : uint64_t { kOfSynapses, kOfChannels, kOfRecording };

struct Streams {
    explicit Streams(double seed)
        : synapses(static_cast<uint64_t>(seed), kOfSynapses),
          channels(static_cast<uint64_t>(seed), kOfChannels),
          recording(static_cast<uint64_t>(seed), kOfRecording) {}

    RandomStream synapses, channels, recording;
};

}  // namespace

struct Preparation::Parts {
    explicit Parts(const PreparationSettings& given)
        : settings(given),
          cell(MakeCell(given)),
          circuit(given, AreaOf(cell)),
          filter(given.filter, given.filterCutoff),
          streams(given.seed),
          excitatory(Excitatory(given)),
          inhibitory(Inhibitory(given)),
          hasSynapses(MayOpen(given)) {
        const double capacitance =
            std::visit([](const auto& membrane) { return membrane.Capacitance(); }, cell);
        perCapacitance =
            1 / (capacitance + (circuit.path == Path::kInjected ? circuit.pipetteCapacitance : 0));
    }

    template <class Membrane>
    void Settle(Membrane& membrane, double command);
    template <class Membrane>
    void Advance(Membrane& membrane, double command, double step, int64_t steps);
    template <class Membrane>
    void Step(Membrane& membrane, double milliseconds);
    template <class Membrane>
    void StepOfPotential(Membrane& membrane, const Load& load, double milliseconds);
    template <class Membrane>
    void JumpPipette(Membrane& membrane, double potential);
    template <class Membrane>
    double Recorded(const Membrane& membrane, bool spiked) const;
    template <class Membrane>
    Load LoadWithSynapses(const Membrane& membrane, Load load) const;

    Load LoadBeside(double area) const;
    bool IsOtherCell(const Parts& former) const;
    void GoOnFrom(const Parts& former);
    bool HoldsMembrane() const { return circuit.path == Path::kHeld; }
    void Inject(double command, ClampConductances conductances);
    void FinishSignal(double recorded);

    PreparationSettings settings;
    Cell cell;
    Circuit circuit;
    OutputFilter filter;
    Streams streams;
    SynapticNoise excitatory, inhibitory;

    bool hasSynapses;
    double perCapacitance;        // 1 over all that a current charges with the cell [cm²/µF]
    double injected = 0;          // into the pipette [pA]
    double injectedDensity = 0;   // the same [µA/cm²]
    double heldPipette = 0;       // where voltage clamp takes the pipette [mV]
    double pipettePotential = 0;  // inside the pipette, without the junction's [mV]
    double signal = 0;            // [mV] or [pA]

    bool clampsDynamically = false;
    DynamicClamp clamp{};
    std::vector<double> seen;  // the signals of the last points [mV], as many as the latency and 1
    size_t point = 0;          // where in them the next one goes
};

template <class Membrane>
Load Preparation::Parts::LoadWithSynapses(const Membrane& membrane, Load load) const {
    if (!hasSynapses) return load;
    for (const SynapticNoise* noise : {&excitatory, &inhibitory}) {
        const double conductance = DensityOf(noise->Conductance(), membrane.Area());
        load.conductance += conductance;
        load.drive += conductance * noise->Reversal();
    }
    return load;
}

// What the amplifier's filter is given: [mV], or in voltage clamp [pA].
template <class Membrane>
double Preparation::Parts::Recorded(const Membrane& membrane, bool spiked) const {
    if (!circuit.clampsVoltage) {
        const double shown = spiked ? AdexMembrane::kPeak : membrane.potential;
        if (circuit.path == Path::kPipetteToo)
            return pipettePotential + (spiked ? shown - membrane.potential : 0) -
                   settings.bridge * injected / 1000 + circuit.junction;
        return shown + circuit.millivoltsPerPicoampere * injected + circuit.junction;
    }
    const double slope =
        circuit.clampTime > 0 ? (heldPipette - pipettePotential) / circuit.clampTime : 0;
    double density = circuit.pipetteCapacitance * slope;
    if (!HoldsMembrane()) {
        density += circuit.accessConductance * (pipettePotential - membrane.potential);
    } else {
        const Load synapses = LoadWithSynapses(membrane, {0, 0});
        density += membrane.Outward() + synapses.conductance * membrane.potential - synapses.drive +
                   membrane.Capacitance() * slope;
    }
    return circuit.CurrentOf(density);
}

// The charge of a jump passes at once: without a filter no sample sees it.
template <class Membrane>
void Preparation::Parts::JumpPipette(Membrane& membrane, double potential) {
    const double jump = potential - pipettePotential;
    if (jump == 0) return;
    pipettePotential = potential;
    double charge = circuit.pipetteCapacitance * jump;
    if (HoldsMembrane()) {
        charge += membrane.Capacitance() * (potential - membrane.potential);
        membrane.JumpTo(potential);
    }
    filter.AddImpulse(circuit.CurrentOf(charge));
}

template <class Membrane>
void Preparation::Parts::StepOfPotential(Membrane& membrane, const Load& load,
                                         double milliseconds) {
    double next = membrane.potential;
    const auto relax = [&](double drive, double conductance) {
        const double target = drive / conductance;
        const double left = membrane.LeftAfter(conductance * perCapacitance * milliseconds);
        next = target + (next - target) * left;
    };
    const double before = pipettePotential;
    if (circuit.clampTime > 0 && circuit.clampsVoltage)
        Relax(pipettePotential, heldPipette, 1 / circuit.clampTime, milliseconds);
    switch (circuit.path) {
        case Path::kInjected:
            relax(load.drive + injectedDensity, load.conductance);
            break;
        case Path::kPipetteToo:
            PipetteAndCell{circuit.accessConductance, circuit.pipetteCapacitance,
                           membrane.Capacitance(), load, injectedDensity}
                .Advance(pipettePotential, next, milliseconds);
            break;
        case Path::kResistance:
            relax(load.drive + circuit.accessConductance * (before + pipettePotential) / 2,
                  load.conductance + circuit.accessConductance);
            break;
        case Path::kHeld:
            next = pipettePotential;
    }
    membrane.MoveTo(next, milliseconds);
}

template <class Membrane>
void Preparation::Parts::Step(Membrane& membrane, double milliseconds) {
    Load load = membrane.LoadOver(milliseconds);
    if (hasSynapses) {
        excitatory.Advance(streams.synapses, milliseconds);
        inhibitory.Advance(streams.synapses, milliseconds);
        load = LoadWithSynapses(membrane, load);
    }
    StepOfPotential(membrane, load, milliseconds);
}

// Gates and potential alternate, the gates half a step ahead; between two steps the second half of
// one and the first half of the next see the same potential and are taken as one.
template <class Membrane>
void Preparation::Parts::Advance(Membrane& membrane, double command, double step, int64_t steps) {
    heldPipette = command * circuit.millivoltsPerCount - circuit.junction;
    injectedDensity = DensityOf(injected, membrane.Area());
    if (circuit.clampsVoltage && circuit.clampTime == 0) JumpPipette(membrane, heldPipette);
    bool spiked = false;
    double before = filter.IsThere() ? Recorded(membrane, false) : 0;
    membrane.AdvanceGates(step / 2, &streams.channels, HoldsMembrane());
    for (int64_t done = 1; done <= steps; ++done) {
        Step(membrane, step);
        membrane.AdvanceGates(done < steps ? step : step / 2, &streams.channels, HoldsMembrane());
        const bool spikes = membrane.TakeSpike();
        spiked = spiked || spikes;
        if (!filter.IsThere()) continue;
        const double after = Recorded(membrane, spikes);
        filter.Advance((before + after) / 2, step);
        before = after;
    }
    FinishSignal(filter.IsThere() ? filter.Output() : Recorded(membrane, spiked));
}

void Preparation::Parts::FinishSignal(double recorded) {
    signal = recorded;
    if (circuit.noise > 0) signal += circuit.noise * streams.recording.Normal();
}

// What stands beside the membrane in the long run: the mean of each synapse, and the amplifier.
Load Preparation::Parts::LoadBeside(double area) const {
    Load beside{circuit.accessConductance, circuit.accessConductance * heldPipette};
    if (!circuit.clampsVoltage) beside = {0, injectedDensity};
    for (const SynapticNoise* noise : {&excitatory, &inhibitory}) {
        const double mean = DensityOf(noise->Mean(), area);
        beside.conductance += mean;
        beside.drive += mean * noise->Reversal();
    }
    return beside;
}

template <class Membrane>
void Preparation::Parts::Settle(Membrane& membrane, double command) {
    clampsDynamically = false;
    injected = command * circuit.picoamperesPerCount;
    injectedDensity = DensityOf(injected, membrane.Area());
    heldPipette = command * circuit.millivoltsPerCount - circuit.junction;
    excitatory.Settle(streams.synapses);
    inhibitory.Settle(streams.synapses);
    membrane.JumpTo(HoldsMembrane() ? heldPipette
                                    : SteadyPotential(membrane, LoadBeside(membrane.Area())));
    membrane.Settle(&streams.channels);
    pipettePotential = circuit.clampsVoltage ? heldPipette : membrane.potential;
    if (circuit.path == Path::kPipetteToo)
        pipettePotential += injectedDensity / circuit.accessConductance;
    filter.Settle(Recorded(membrane, false));
    FinishSignal(Recorded(membrane, false));
}

bool Preparation::Parts::IsOtherCell(const Parts& former) const {
    const auto cellOf = [](const PreparationSettings& of) {
        return std::tuple(of.model, of.size, of.capacitance, of.resistance, of.restingPotential,
                          of.channelConductance, of.rates);
    };
    return cellOf(settings) != cellOf(former.settings);
}

// Where the pipette's potential was the amplifier's own matter, it is at the cell's.
void Preparation::Parts::GoOnFrom(const Parts& former) {
    cell = former.cell;
    excitatory.GoOnFrom(former.excitatory);
    inhibitory.GoOnFrom(former.inhibitory);
    const auto potential = std::visit([](const auto& of) { return of.potential; }, cell);
    const bool sameMode = settings.mode == former.settings.mode;
    const bool knowsPipette = sameMode && former.circuit.path != Path::kInjected;
    pipettePotential = heldPipette = knowsPipette ? former.pipettePotential : potential;
    if (sameMode) injected = former.injected;
    const double recorded = std::visit([&](auto& of) { return Recorded(of, false); }, cell);
    filter.Settle(recorded);
    FinishSignal(recorded);
}

// The converter limits the sum of both currents, so that no conductance runs away, nor is one of a
// recording that is not a number more than nothing.
void Preparation::Parts::Inject(double command, ClampConductances conductances) {
    injected = command * circuit.picoamperesPerCount;
    if (!clampsDynamically) return;
    seen[point] = signal;
    point = point + 1 < seen.size() ? point + 1 : 0;
    const double potential = seen[point];  // the oldest
    const double current = conductances.excitatory * (clamp.excitatoryReversal - potential) +
                           conductances.inhibitory * (clamp.inhibitoryReversal - potential);
    const double most = kMostCounts * circuit.picoamperesPerCount;
    if (!std::isnan(current)) injected = std::clamp(injected + current, -most, most);
}

Preparation::Preparation(const PreparationSettings& settings)
    : parts(std::make_unique<Parts>(settings)) {
    Settle(0);
}

Preparation::Preparation(const Preparation& other) : parts(std::make_unique<Parts>(*other.parts)) {}
Preparation::Preparation(Preparation&& other) noexcept = default;
Preparation& Preparation::operator=(Preparation&& other) noexcept = default;
Preparation::~Preparation() = default;

Preparation& Preparation::operator=(const Preparation& other) {
    if (this != &other) *this = Preparation(other);
    return *this;
}

void Preparation::Settle(double command) {
    std::visit([&](auto& membrane) { parts->Settle(membrane, command); }, parts->cell);
}

void Preparation::Advance(double command, double microseconds, ClampConductances conductances) {
    if (!(microseconds > 0)) return;
    const auto steps = static_cast<int64_t>(std::ceil(microseconds / kLongestStep));
    const double step = microseconds / static_cast<double>(steps) / 1000;
    parts->Inject(command, conductances);
    std::visit([&](auto& membrane) { parts->Advance(membrane, command, step, steps); },
               parts->cell);
}

double Preparation::Signal() const { return parts->signal * parts->circuit.countsPerUnit; }

bool Preparation::StartDynamicClamp(const DynamicClamp& clamp) {
    if (clamp.latency < 0 || clamp.latency > kLongestLatency) return false;
    parts->clampsDynamically = true;
    parts->clamp = clamp;
    parts->seen.assign(static_cast<size_t>(clamp.latency) + 1, parts->signal);
    parts->point = 0;
    return true;
}

void Preparation::EndDynamicClamp() { parts->clampsDynamically = false; }

void Preparation::Change(const PreparationSettings& settings) {
    auto changed = std::make_unique<Parts>(settings);
    if (settings.seed == parts->settings.seed) changed->streams = parts->streams;
    if (changed->IsOtherCell(*parts))
        std::visit([&](auto& membrane) { changed->Settle(membrane, 0); }, changed->cell);
    else
        changed->GoOnFrom(*parts);
    parts = std::move(changed);
}

double Preparation::MembranePotential() const {
    return std::visit([](const auto& membrane) { return membrane.potential; }, parts->cell);
}

}  // namespace itc18
