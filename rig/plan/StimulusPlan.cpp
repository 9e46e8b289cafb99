// Filling records by the table of stimulus types.
#include "plan/StimulusPlan.h"

#include <algorithm>

#include "protocol/FieldRules.h"
#include "stimuli/Stimuli.h"

namespace corvantis::rig {
namespace {

const FieldPlaces& PlacesOf(const reading::Stimulus& stimulus) {
    return reading::RowOf(stimulus.type).places.Get();
}

bool IsAt(const Field& field, int32_t place) { return static_cast<int32_t>(field.place) == place; }

void PlanField(const Node& node, const Field& field, const FieldPlaces& places,
               const StimulusSetting& setting, reading::Stimulus& stimulus) {
    const Node given = node[field.text.name];
    const bool isMean = IsAt(field, places.mean);
    if (isMean && (setting.holdsMean || !given)) {
        return StoreWholeAt(stimulus.record.data(), places.mean, setting.holding);
    }
    if (!given) return;
    const Measure measure = {field.text.unit, &setting.scale, setting.interval};
    Amount amount = {given, AmountOf(given, setting.names, measure)};
    if (IsAt(field, places.amplitude)) amount.value /= setting.divisor;
    StoreAmount(amount, field, 0, stimulus.record.data());
}

void PlanSum(const Node& node, const StimulusSetting& setting, reading::Stimulus& stimulus) {
    const Node components = node["components"];
    const size_t count = components ? components.value->items.size() : 0;
    if (count > ITC_COMPONENTS) components.Fail("more components than the 256 of a sum");
    for (size_t k = 0; k < count; ++k) {
        const Node component = components.Item(k);
        if (TypeOf(component) == ITC_STIMULUS_SUMMED) component.Fail("sums do not nest");
        if (TypeOf(component) == ITC_STIMULUS_SPATIAL) component.Fail("cannot be part of a sum");
        // The epoch's holding level counts once.
        StimulusSetting each = setting;
        if (k > 0) each.holding = 0;
        stimulus.components.push_back(PlanStimulus(component, each));
    }
}

}  // namespace

reading::Stimulus PlanStimulus(const Node& node, const StimulusSetting& setting) {
    reading::Stimulus stimulus;
    stimulus.type = TypeOf(node);
    stimulus.isRead = true;
    if (stimulus.type == ITC_STIMULUS_SUMMED) {
        PlanSum(node, setting, stimulus);
        return stimulus;
    }
    const FieldPlaces& places = PlacesOf(stimulus);
    for (const Field& field : reading::RowOf(stimulus.type).record->fields) {
        PlanField(node, field, places, setting, stimulus);
    }
    if (places.seed >= 0 && !node["seed"]) {
        node.Fail("lacks a seed; one below 0 goes on behind the noise before");
    }
    return stimulus;
}

int64_t LengthOf(const reading::Stimulus& stimulus) {
    int64_t length = 0;
    for (const reading::Stimulus& component : stimulus.components) {
        length = std::max(length, LengthOf(component));
    }
    const FieldPlaces& places = PlacesOf(stimulus);
    for (const int32_t place : {places.points, places.prePoints, places.tailPoints}) {
        if (place >= 0) length += WholeAt(stimulus.record.data(), place);
    }
    return length;
}

void FillLengths(const Node& node, reading::Stimulus& stimulus, int32_t epochPoints) {
    for (size_t k = 0; k < stimulus.components.size(); ++k) {
        FillLengths(node["components"].Item(k), stimulus.components[k], epochPoints);
    }
    const FieldPlaces& places = PlacesOf(stimulus);
    if (places.points < 0) return;
    const int64_t left = epochPoints - LengthOf(stimulus);
    const bool isOpen = !node["points"] || !node["tailPoints"];
    if (left == 0 || !isOpen) return;
    if (left < 0) node.Fail("is longer than the epoch");
    const int32_t open = !node["points"] ? places.points : places.tailPoints;
    StoreWholeAt(stimulus.record.data(), open,
                 static_cast<int32_t>(WholeAt(stimulus.record.data(), open) + left));
}

}  // namespace corvantis::rig
