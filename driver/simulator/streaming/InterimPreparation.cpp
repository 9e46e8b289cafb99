// The squid axon alone, until the preparation's own source is there.
#include <cmath>

#include "simulator/ModelNeuron.h"
#include "simulator/cells/Preparation.h"

namespace itc18 {
struct Preparation::Parts {
    ModelNeuron neuron;
};
Preparation::Preparation(const PreparationSettings&) : parts(new Parts{SteadyState(0)}) {}
Preparation::Preparation(const Preparation& other) : parts(new Parts(*other.parts)) {}
Preparation::Preparation(Preparation&& other) noexcept = default;
Preparation& Preparation::operator=(const Preparation& other) {
    *parts = *other.parts;
    return *this;
}
Preparation& Preparation::operator=(Preparation&& other) noexcept = default;
Preparation::~Preparation() = default;
void Preparation::Settle(double command) { parts->neuron = SteadyState(command / 8); }
void Preparation::Advance(double command, double microseconds, ClampConductances) {
    itc18::Advance(parts->neuron, command / 8, microseconds);
}
double Preparation::Signal() const { return parts->neuron.potential * 32; }
bool Preparation::StartDynamicClamp(const DynamicClamp&) { return true; }
void Preparation::EndDynamicClamp() {}
void Preparation::Change(const PreparationSettings&) {}
double Preparation::MembranePotential() const { return parts->neuron.potential; }
std::span<const PlayerSettingInfo> PreparationSettingInfo() { return {}; }
Assignment Assign(PreparationSettings&, const PlayerSetting& setting, std::string& problem) {
    problem = std::string("there is no setting ") + setting.name;
    return Assignment::kUnknownName;
}
std::string Contradiction(const PreparationSettings&) { return ""; }
}  // namespace itc18
