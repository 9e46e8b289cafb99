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
#include "simulator/cells/Electrode.h"
#include "simulator/cells/OutputFilter.h"
#include "simulator/cells/SynapticNoise.h"

namespace itc18 {
namespace {

// Longest integration step [µs]. Compared with a tenth of it the squid axon's first spike of a
// train moves by less than 0.1 µs and its firing rate by 20 parts in a million.
constexpr double kLongestStep = 5;

enum StreamNumber : uint64_t { kOfSynapses, kOfChannels, kOfRecording };

struct Streams {
    explicit Streams(double seed)
        : synapses(static_cast<uint64_t>(seed), kOfSynapses),
          channels(static_cast<uint64_t>(seed), kOfChannels),
          recording(static_cast<uint64_t>(seed), kOfRecording) {}

    RandomStream synapses, channels, recording;
};

SynapseSettings Excitatory(const PreparationSettings& settings) {
    return {settings.excitatoryConductance, settings.excitatoryDeviation, settings.excitatoryTime,
            settings.excitatoryReversal};
}

SynapseSettings Inhibitory(const PreparationSettings& settings) {
    return {settings.inhibitoryConductance, settings.inhibitoryDeviation, settings.inhibitoryTime,
            settings.inhibitoryReversal};
}

bool MayOpen(const PreparationSettings& settings) {
    return settings.excitatoryConductance > 0 || settings.excitatoryDeviation > 0 ||
           settings.inhibitoryConductance > 0 || settings.inhibitoryDeviation > 0;
}

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
        voltsPerPicoampere = (settings.accessResistance - settings.bridge) / 1000;
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
    double pipetteCapacitance;  // what the amplifier does not charge [µF/cm²]
    double accessConductance;   // of what is not compensated [mS/cm²]; 0: no resistance
    double voltsPerPicoampere;  // of the bridge's error [mV]
    double junction;            // [mV]
    double clampTime;           // [ms]
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

    bool IsOtherCell(const Parts& former) const;
    void GoOnFrom(const Parts& former);
    bool HoldsMembrane() const { return circuit.path == Path::kHeld; }
    double ClampCurrent(ClampConductances conductances);
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
        return shown + circuit.voltsPerPicoampere * injected + circuit.junction;
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

template <class Membrane>
void Preparation::Parts::Settle(Membrane& membrane, double command) {
    clampsDynamically = false;
    injected = command * circuit.picoamperesPerCount;
    heldPipette = command * circuit.millivoltsPerCount - circuit.junction;
    excitatory.Settle(streams.synapses);
    inhibitory.Settle(streams.synapses);
    Load outside{0, circuit.clampsVoltage ? 0 : DensityOf(injected, membrane.Area())};
    for (const SynapticNoise* noise : {&excitatory, &inhibitory}) {
        const double mean = DensityOf(noise->Mean(), membrane.Area());
        outside.conductance += mean;
        outside.drive += mean * noise->Reversal();
    }
    if (HoldsMembrane()) {
        membrane.JumpTo(heldPipette);
    } else {
        if (circuit.clampsVoltage) {
            outside.conductance += circuit.accessConductance;
            outside.drive += circuit.accessConductance * heldPipette;
        }
        membrane.JumpTo(SteadyPotential(membrane, outside));
    }
    membrane.Settle(&streams.channels);
    pipettePotential = circuit.clampsVoltage ? heldPipette : membrane.potential;
    if (circuit.path == Path::kPipetteToo)
        pipettePotential += DensityOf(injected, membrane.Area()) / circuit.accessConductance;
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

// A pipette that is no longer, or now, clamped is at the cell's potential.
void Preparation::Parts::GoOnFrom(const Parts& former) {
    cell = former.cell;
    excitatory.GoOnFrom(former.excitatory);
    inhibitory.GoOnFrom(former.inhibitory);
    const auto potential = std::visit([](const auto& of) { return of.potential; }, cell);
    const bool sameMode = settings.mode == former.settings.mode;
    pipettePotential = heldPipette = sameMode ? former.pipettePotential : potential;
    if (sameMode) injected = former.injected;
    const double recorded = std::visit([&](auto& of) { return Recorded(of, false); }, cell);
    filter.Settle(recorded);
    FinishSignal(recorded);
}

double Preparation::Parts::ClampCurrent(ClampConductances conductances) {
    if (!clampsDynamically || settings.mode != AmplifierMode::kCurrentClamp) return 0;
    seen[point] = signal;
    point = point + 1 < seen.size() ? point + 1 : 0;
    const double potential = seen[point];  // the oldest
    return conductances.excitatory * (clamp.excitatoryReversal - potential) +
           conductances.inhibitory * (clamp.inhibitoryReversal - potential);
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
    const auto steps = static_cast<int64_t>(std::ceil(microseconds / kLongestStep));
    const double step = microseconds / static_cast<double>(steps) / 1000;
    parts->injected = command * parts->circuit.picoamperesPerCount;
    parts->injected += parts->ClampCurrent(conductances);
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
    if (changed->IsOtherCell(*parts))
        std::visit([&](auto& membrane) { changed->Settle(membrane, 0); }, changed->cell);
    else
        changed->GoOnFrom(*parts);
    if (settings.seed == parts->settings.seed) changed->streams = parts->streams;
    parts = std::move(changed);
}

double Preparation::MembranePotential() const {
    return std::visit([](const auto& membrane) { return membrane.potential; }, parts->cell);
}

}  // namespace itc18
