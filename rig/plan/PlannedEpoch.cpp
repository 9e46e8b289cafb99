// From the fields of a protocol to the header and the records of an epoch.
#include "plan/PlannedEpoch.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "ITCFileIO/SequenceWords.h"
#include "plan/Conductances.h"
#include "plan/StimulusPlan.h"
#include "protocol/FieldRules.h"
#include "stimuli/Computation.h"
#include "stimuli/Stimuli.h"

namespace corvantis::rig {
namespace {

constexpr int32_t kMostSamples = 1 << 27;
constexpr int64_t kLongestPause = int64_t{24} * 3600 * 1000000;  // [µs]

struct Planning {
    const Protocol& protocol;
    const Occurrence& occurrence;
    Node epoch;
    PlannedEpoch& planned;

    ITCEpochHeader& Header() { return planned.content.header; }
    Node Field(std::string_view name) const { return protocol.FieldOf(epoch, name); }
    double Amount(const Node& node, std::string_view unit) const {
        const Measure measure = {std::string(unit), nullptr,
                                 planned.content.header.samplingInterval};
        return AmountOf(node, occurrence.names, measure);
    }
};

std::string LeakText(const Occurrence& occurrence) {
    if (occurrence.leakPlays == 0) return {};
    return fmt::format(" (P/{} leak {} of {})", occurrence.divisor, occurrence.leakPlay,
                       occurrence.leakPlays);
}

void PlanComment(Planning& plan) {
    const Node node = plan.Field("comment");
    const std::string text =
        (node ? Filled(node, plan.occurrence.names) : std::string()) + LeakText(plan.occurrence);
    char(&room)[ITC_COMMENT_LENGTH] = plan.Header().epochComment;
    if (text.size() >= sizeof room) {
        node.Fail(fmt::format("is of {} bytes with its values, and {} can be kept", text.size(),
                              sizeof room - 1));
    }
    text.copy(room, text.size());
}

void PlanInterval(Planning& plan) {
    const Node node = plan.Field("samplingInterval");
    if (!node) plan.epoch.Fail("lacks samplingInterval, which defaults do not give either");
    const int32_t interval =
        static_cast<int32_t>(Rounded(node, plan.Amount(node, "\xC2\xB5s"), 1, 4.0 * UINT16_MAX));
    const int32_t entries = plan.planned.Entries();
    if (interval % entries != 0 || interval / entries < 4 || interval / entries > UINT16_MAX) {
        node.Fail(
            fmt::format("{} \xC2\xB5s cannot be sampled: a pass of {} channels takes {} times "
                        "4 to 65535 \xC2\xB5s",
                        interval, entries, entries));
    }
    plan.Header().samplingInterval = interval;
}

// 0 to `most`, or behind it the digital port.
uint32_t PortOf(const Node& node, uint32_t digital) {
    return node.GetKind() == Kind::kText ? digital : static_cast<uint32_t>(node.value->number);
}

char PortLetter(uint32_t port, uint32_t digital) {
    return port == digital ? 'D' : static_cast<char>('0' + port);
}

Node ChannelNode(const Protocol& protocol, const Node& stimulus, const std::string& name) {
    const Node channels = protocol.Root()["channels"];
    if (Node channel = channels ? channels[name] : channels) return channel;
    std::vector<std::string_view> names;
    for (size_t k = 0; channels && k < channels.value->names.size(); ++k) {
        names.push_back(channels.value->names[k]);
    }
    const std::string_view nearest = Nearest(name, names);
    stimulus.Fail(fmt::format("no channel is called {}{}", name,
                              nearest.empty() ? "" : fmt::format("; is {} meant?", nearest)));
}

void PlanChannelFields(Planning& plan, const Node& channel, size_t entry) {
    for (const corvantis::Field& field : ChannelHeaderFields()) {
        const Node node = channel[field.text.name];
        if (!node) continue;
        if (field.kind == FieldKind::kText) {
            StoreText(node, Filled(node, plan.occurrence.names), field, entry, &plan.Header());
        } else {
            StoreAmount({node, plan.Amount(node, field.text.unit)}, field, entry, &plan.Header());
        }
    }
}

void PlanChannel(Planning& plan, const Node& channel, size_t entry) {
    const uint32_t input = PortOf(channel["input"], kAnalogueInputs);
    const uint32_t output = PortOf(channel["output"], kAnalogueOutputs);
    plan.Header().channelSequence[entry] = input * kInputUnit + output * kOutputUnit;
    plan.planned.inputs += PortLetter(input, kAnalogueInputs);
    plan.planned.outputs += PortLetter(output, kAnalogueOutputs);
    PlanChannelFields(plan, channel, entry);
}

int32_t HoldingOf(Planning& plan, const Node& channel, const reading::Scale& scale) {
    const Node leak = plan.Field("leakSubtraction");
    const bool isLeak = plan.occurrence.leakPlays != 0;
    const Node own = isLeak && leak ? leak["holding"] : Node();
    const Node node = own ? own : channel["holding"];
    if (!node) return 0;
    const Measure measure = {kCodes, &scale};
    return static_cast<int32_t>(
        Rounded(node, AmountOf(node, plan.occurrence.names, measure), INT16_MIN, INT16_MAX));
}

void PlanHeaderFields(Planning& plan) {
    for (const corvantis::Field& field : EpochHeaderFields()) {
        const Node node = plan.Field(field.text.name);
        if (!node) continue;
        if (field.count == 1) {
            StoreAmount({node, plan.Amount(node, field.text.unit)}, field, 0, &plan.Header());
            continue;
        }
        if (node.Size() > field.count) {
            node.Fail(fmt::format("has {} values, and there are {}", node.Size(), field.count));
        }
        for (size_t k = 0; k < node.value->numbers.size(); ++k) {
            StoreAmount({node, node.value->numbers[k]}, field, k, &plan.Header());
        }
        for (size_t k = 0; k < node.value->items.size(); ++k) {
            const Node item = node.Item(k);
            StoreAmount({item, plan.Amount(item, field.text.unit)}, field, k, &plan.Header());
        }
    }
}

void PlanPoints(Planning& plan, int64_t longest) {
    const Node node = plan.Field("epochPoints");
    const double points = node ? plan.Amount(node, kSamples) : static_cast<double>(longest);
    const Node& blamed = node ? node : plan.epoch;
    plan.Header().epochPoints = static_cast<int32_t>(
        Rounded(blamed, points, 1, static_cast<double>(kMostSamples) / plan.planned.Entries()));
}

bool IsLeakHeld(const Planning& plan) {
    const Node leak = plan.Field("leakSubtraction");
    return plan.occurrence.leakPlays != 0 && leak && leak["holding"];
}

// Channels first: a stimulus needs the units of its own.
void PlanChannels(Planning& plan, const std::vector<Node>& channels) {
    if (channels.empty()) plan.epoch.Fail("lacks stimuli");
    if (channels.size() > ITC_CHANNELS) plan.epoch.Fail("has more than 4 channels");
    plan.Header().sequenceLength = static_cast<int32_t>(channels.size());
    for (size_t k = 0; k < channels.size(); ++k) PlanChannel(plan, channels[k], k);
    for (size_t k = 0; k < channels.size(); ++k) {
        plan.planned.holding.push_back(
            HoldingOf(plan, channels[k], StimulusScaleOf(plan.planned, k)));
    }
    PlanInterval(plan);
}

void PlanStimuli(Planning& plan, const Node& stimuli) {
    std::vector<Node> channels;
    for (size_t k = 0; k < stimuli.value->items.size(); ++k) {
        channels.push_back(ChannelNode(plan.protocol, stimuli.Item(k), stimuli.value->names[k]));
    }
    PlanChannels(plan, channels);
    int64_t longest = 0;
    for (size_t k = 0; k < channels.size(); ++k) {
        const reading::Scale scale = StimulusScaleOf(plan.planned, k);
        const StimulusSetting setting = {plan.occurrence.names,
                                         scale,
                                         plan.Header().samplingInterval,
                                         plan.planned.holding[k],
                                         IsLeakHeld(plan),
                                         plan.occurrence.divisor};
        plan.planned.content.stimuli.push_back(PlanStimulus(stimuli.Item(k), setting));
        longest = std::max(longest, LengthOf(plan.planned.content.stimuli.back()));
    }
    PlanPoints(plan, longest);
    for (size_t k = 0; k < channels.size(); ++k) {
        FillLengths(stimuli.Item(k), plan.planned.content.stimuli[k], plan.Header().epochPoints);
    }
}

// The step with half of its length before and behind it.
void PlanSealTest(Planning& plan, const Node& seal) {
    PlanChannels(plan, {ChannelNode(plan.protocol, seal["channel"], seal["channel"].value->text)});
    const reading::Scale scale = StimulusScaleOf(plan.planned, 0);
    const Node step = seal["step"], length = seal["points"];
    const Measure level = {kCodes, &scale};
    const auto code = static_cast<int32_t>(
        Rounded(step, AmountOf(step, plan.occurrence.names, level), INT16_MIN, INT16_MAX));
    const auto points =
        static_cast<int32_t>(Rounded(length, plan.Amount(length, kSamples), 4, kMostSamples / 4.0));
    const ITCPulseParameters pulse = {.amplitude = code,
                                      .mean = plan.planned.holding[0],
                                      .points = points,
                                      .tailPoints = points / 2,
                                      .prePoints = points / 2,
                                      .reserved = {}};
    reading::Stimulus stimulus;
    stimulus.type = ITC_STIMULUS_PULSE;
    stimulus.isRead = true;
    std::memcpy(stimulus.record.data(), &pulse, sizeof pulse);
    plan.planned.content.stimuli.push_back(stimulus);
    plan.Header().epochPoints = pulse.prePoints + pulse.points + pulse.tailPoints;
    plan.planned.seal = SealStep{0, pulse.prePoints, pulse.points, pulse.amplitude};
}

// The table's own reasons why a stimulus cannot be computed, and the builders' condition.
void CheckStimuli(const Planning& plan, const Node& stimuli) {
    const reading::EpochContent& content = plan.planned.content;
    for (size_t k = 0; k < content.stimuli.size(); ++k) {
        const std::string why = reading::WhyNotComputed(content, k);
        if (!why.empty()) stimuli.Item(k).Fail(why);
        if (!reading::FillsEpoch(content.stimuli[k], content.header.epochPoints)) {
            stimuli.Item(k).Fail(fmt::format("its lengths are not the epoch's {} points",
                                             content.header.epochPoints));
        }
    }
}

void PlanTypes(Planning& plan) {
    for (size_t k = 0; k < plan.planned.content.stimuli.size(); ++k) {
        plan.Header().stimType[k] = static_cast<int8_t>(plan.planned.content.stimuli[k].type);
    }
}

}  // namespace

const reading::Stimulus* PlannedEpoch::DynamicClamp() const {
    for (const reading::Stimulus& stimulus : content.stimuli) {
        if (stimulus.type == ITC_STIMULUS_DYNAMIC_CLAMP) return &stimulus;
    }
    return nullptr;
}

const ITCFileHeader& NewFileHeader() {
    static const ITCFileHeader header = [] {
        ITCFileHeader fresh = {};
        fresh.version = ITC_FILE_VERSION;
        fresh.inputScale = fresh.outputScale = kCountsPerVolt;
        return fresh;
    }();
    return header;
}

reading::Scale StimulusScaleOf(const PlannedEpoch& epoch, size_t entry) {
    return reading::StimulusScale(NewFileHeader(), epoch.content.header, entry);
}

reading::Scale ResponseScaleOf(const PlannedEpoch& epoch, size_t entry) {
    return reading::ResponseScale(NewFileHeader(), epoch.content.header, entry);
}

PlannedEpoch PlanEpoch(const Protocol& protocol, const Occurrence& occurrence) {
    PlannedEpoch planned;
    Planning plan = {protocol, occurrence, protocol.Epoch(occurrence.epoch), planned};
    const Node seal = plan.Field("sealTest"), stimuli = plan.Field("stimuli");
    if (seal && plan.epoch["stimuli"]) seal.Fail("stands beside stimuli");
    if (!seal && !stimuli) plan.epoch.Fail("lacks stimuli");
    seal ? PlanSealTest(plan, seal) : PlanStimuli(plan, stimuli);
    PlanTypes(plan);
    PlanComment(plan);
    PlanHeaderFields(plan);
    if (!seal) {
        CheckStimuli(plan, stimuli);
        PlanConductances(stimuli, occurrence.names, planned);
    }
    const Node pause = plan.Field("pause"), trigger = plan.Field("trigger");
    if (pause) {
        planned.pause = Rounded(pause, plan.Amount(pause, "\xC2\xB5s"), 0, kLongestPause);
    }
    planned.waitsForTrigger = trigger && trigger.value->truth;
    planned.settings = SettingsOf(plan.Field("settings"), occurrence.names);
    return planned;
}

}  // namespace corvantis::rig
