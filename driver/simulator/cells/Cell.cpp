// Which membrane each model is.
#include "simulator/cells/Cell.h"

namespace itc18 {
namespace {

const AdexParameters& ParametersOf(CellModel model) {
    switch (model) {
        case CellModel::kAdexTonic:
            return kTonicParameters;
        case CellModel::kAdexAdaptation:
            return kAdaptationParameters;
        case CellModel::kAdexInitialBurst:
            return kInitialBurstParameters;
        case CellModel::kAdexRegularBursting:
            return kRegularBurstingParameters;
        case CellModel::kAdexDelayedAccelerating:
            return kDelayedAcceleratingParameters;
        case CellModel::kAdexTransient:
            return kTransientParameters;
        default:
            return kBretteGerstnerParameters;
    }
}

}  // namespace

Cell MakeCell(const PreparationSettings& settings) {
    const MembraneSettings membrane{settings.size, settings.channelConductance,
                                    settings.rates == GateRates::kTabulated};
    switch (settings.model) {
        case CellModel::kSquidAxon:
            return GatedMembrane<SquidAxon>(membrane);
        case CellModel::kPassive:
            return PassiveMembrane(settings.capacitance, settings.resistance,
                                   settings.restingPotential, settings.size);
        case CellModel::kRegularSpiking:
            return GatedMembrane<RegularSpiking>(membrane);
        case CellModel::kFastSpiking:
            return GatedMembrane<FastSpiking>(membrane);
        case CellModel::kConnorStevens:
            return GatedMembrane<ConnorStevens>(membrane);
        case CellModel::kConnorStevensWithoutA:
            return GatedMembrane<ConnorStevensWithoutA>(membrane);
        case CellModel::kWangBuzsaki:
            return GatedMembrane<WangBuzsaki>(membrane);
        default:
            return AdexMembrane(ParametersOf(settings.model), settings.size);
    }
}

}  // namespace itc18
