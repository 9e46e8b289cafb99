// The fields of a protocol. Those of headers and stimuli come from the descriptions of the records.
#include "protocol/FieldRules.h"

#include <algorithm>
#include <array>
#include <map>

#include "stimuli/Stimuli.h"

namespace corvantis::rig {
namespace {

bool IsOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// What the library or the recording program sets.
bool IsSetOtherwise(std::string_view name) {
    return IsOneOf(
        name, {"epochTime", "epochComment", "sequenceLength", "channelSequence",
               "spareChannelBytes", "stimType", "meanOutput", "samplingInterval", "epochPoints"});
}

std::vector<Field> HeaderFields(bool byEntry) {
    std::vector<Field> fields;
    for (const Field& field : kFields<ITCEpochHeader>) {
        if (field.text.isByEntry == byEntry && !IsSetOtherwise(field.text.name)) {
            fields.push_back(field);
        }
    }
    return fields;
}

struct Range {
    double least, most;
};

Range RangeOf(FieldKind kind) {
    switch (kind) {
        case FieldKind::kInt8:
            return {INT8_MIN, INT8_MAX};
        case FieldKind::kUInt16:
            return {0, UINT16_MAX};
        case FieldKind::kUInt32:
            return {0, UINT32_MAX};
        case FieldKind::kFloat:
            return {-std::numeric_limits<float>::max(), std::numeric_limits<float>::max()};
        default:
            return {INT32_MIN, INT32_MAX};
    }
}

// A field of a record; of an entry's header one element, of an epoch's all.
FieldRule RuleOf(const Field& field) {
    FieldRule rule;
    rule.name = field.text.name;
    rule.meaning = field.text.meaning;
    rule.unit = field.text.unit;
    rule.form = field.kind == FieldKind::kText             ? Form::kText
                : field.count > 1 && !field.text.isByEntry ? Form::kAmounts
                                                           : Form::kAmount;
    const Range range = RangeOf(field.kind);
    rule.least = range.least;
    rule.most = range.most;
    return rule;
}

void AddFields(ObjectRule& rule, const std::vector<Field>& fields) {
    for (const Field& field : fields) rule.fields.push_back(RuleOf(field));
}

FieldRule Amount(const char* name, const char* unit, const char* meaning) {
    return {name, Form::kAmount, meaning, unit};
}
FieldRule Whole(const char* name, double least, double most, const char* meaning) {
    return {name, Form::kNumber, meaning, "", least, most};
}
FieldRule Text(const char* name, const char* meaning) { return {name, Form::kText, meaning}; }
FieldRule Inner(const char* name, Form form, const ObjectRule& inner, const char* meaning) {
    FieldRule rule = {name, form, meaning};
    rule.inner = &inner;
    return rule;
}

const ObjectRule kFamily = {
    "family",
    {{"values", Form::kAmounts,
      "the values themselves, texts of any kind, instead of the next three"},
     Amount("start", "", "the first value"),
     Amount("step", "", "from one value to the next"),
     Whole("count", 1, 10000, "how many values"),
     {"order", Form::kChoice, "as given unless shuffled", "", 0, 0, nullptr, {"given", "shuffled"}},
     Whole("seed", 0, INT32_MAX, "of the shuffling")}};

const ObjectRule kConductance = {
    "conductance",
    {Amount("peak", "nS", "of one event"),
     Amount("rise", kSamples, "time constant of an event's rise; 0: at once"),
     Amount("decay", kSamples, "time constant of an event's decay"),
     {"times", Form::kAmounts, "when events begin, from the epoch's first point", kSamples},
     Amount("rate", "Hz", "of events at random times, instead of times of one's own"),
     Whole("seed", 0, INT32_MAX, "of the random times")}};

const ObjectRule kLeak = {
    "leakSubtraction",
    {{"divisor",
      Form::kNumber,
      "the stimulus divided by it is played as often before each epoch; below 0 turned round",
      "",
      -100,
      100,
      nullptr,
      {},
      true},
     Amount("holding", kCodes, "the holding level of these plays, for all channels")}};

const ObjectRule kSealTest = {
    "sealTest",
    {{"channel", Form::kText, "the channel of the pipette", "", 0, 0, nullptr, {}, true},
     {"step", Form::kAmount, "of the potential", kCodes, INT32_MIN, INT32_MAX, nullptr, {}, true},
     {"points",
      Form::kAmount,
      "length of the step, and half of it before and behind",
      kSamples,
      INT32_MIN,
      INT32_MAX,
      nullptr,
      {},
      true}}};

const ObjectRule kRig = {
    "rig",
    {{"player",
      Form::kText,
      "the interface: simulated, or a player's library",
      "",
      0,
      0,
      nullptr,
      {},
      true},
     Whole("device", 0, 255, "number of the interface"),
     {"settings", Form::kSettings, "what the player is told; objects join their names by dots"}}};

ObjectRule MakeChannelRule() {
    ObjectRule rule = {"channel",
                       {{"input",
                         Form::kPort,
                         "analogue input, 0 to 7, or \"digital\"",
                         "",
                         0,
                         7,
                         nullptr,
                         {},
                         true},
                        {"output",
                         Form::kPort,
                         "analogue output, 0 to 3, or \"digital\"",
                         "",
                         0,
                         3,
                         nullptr,
                         {},
                         true},
                        Amount("holding", kCodes,
                               "the holding level: `mean` of stimuli that give none, and where the "
                               "output stands in the pause before")}};
    AddFields(rule, ChannelHeaderFields());
    return rule;
}

ObjectRule MakeEpochRule() {
    ObjectRule rule = {
        "epoch",
        {Text("comment", "its comment; {NAME} is the value of that family, {repeat} counts from 1"),
         Amount("samplingInterval", "µs", "one pass of the sequence"),
         Amount("epochPoints", kSamples,
                "length of the epoch; without it as long as its longest stimulus"),
         {"stimuli", Form::kStimulusMap,
          "what is played: channels by name, in the order of the sequence"},
         Inner("sealTest", Form::kObject, kSealTest,
               "a small step of potential, whose answer is measured at once, as the stimuli"),
         Inner("families", Form::kMap, kFamily,
               "values that stand for {NAME}; of several the last changes fastest"),
         Amount("repeats", "", "how often the families are gone through"),
         Inner("leakSubtraction", Form::kObject, kLeak, "small plays before each epoch"),
         Amount("pause", "µs", "before each epoch, at its holding levels"),
         {"trigger", Form::kTruth, "whether the epoch waits for the external trigger"},
         {"settings", Form::kSettings, "what the player is told before, and keeps"}}};
    AddFields(rule, EpochHeaderFields());
    return rule;
}

FieldRule TypeField(std::vector<std::string_view> names) {
    FieldRule field = {"type", Form::kChoice, "the stimulus type"};
    field.choices = std::move(names);
    field.isRequired = true;
    return field;
}

ObjectRule MakeStimulusRule(int32_t type) {
    ObjectRule rule = {std::string(reading::TypeName(type)),
                       {TypeField({reading::TypeName(type)})}};
    if (type == ITC_STIMULUS_SUMMED) {
        rule.fields.push_back({"components", Form::kStimuli, "what is added up"});
        return rule;
    }
    for (const Field& field : reading::RowOf(type).record->fields) {
        rule.fields.push_back(RuleOf(field));
    }
    if (type == ITC_STIMULUS_DYNAMIC_CLAMP) {
        rule.fields.push_back(Inner("excitatory", Form::kConductance, kConductance,
                                    "conductance at each point [nS]"));
        rule.fields.push_back(Inner("inhibitory", Form::kConductance, kConductance,
                                    "conductance at each point [nS]"));
    }
    return rule;
}

std::map<int32_t, ObjectRule> MakeStimulusRules() {
    std::map<int32_t, ObjectRule> rules;
    for (const int32_t type : StimulusTypesAllowed()) rules[type] = MakeStimulusRule(type);
    return rules;
}

}  // namespace

const FieldRule* ObjectRule::Find(std::string_view field) const {
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const FieldRule& rule) { return rule.name == field; });
    return found == fields.end() ? nullptr : &*found;
}

const std::vector<Field>& ChannelHeaderFields() {
    static const std::vector<Field> fields = HeaderFields(true);
    return fields;
}

const std::vector<Field>& EpochHeaderFields() {
    static const std::vector<Field> fields = HeaderFields(false);
    return fields;
}

const std::vector<int32_t>& StimulusTypesAllowed() {
    static const std::vector<int32_t> types = [] {
        std::vector<int32_t> allowed;
        for (int32_t type = 1; type <= static_cast<int32_t>(kLargestType); ++type) {
            if (type == ITC_STIMULUS_SUMMED || reading::IsComputedFromFile(type)) {
                allowed.push_back(type);
            }
        }
        return allowed;
    }();
    return types;
}

const ObjectRule& StimulusRule(int32_t type) {
    static const std::map<int32_t, ObjectRule> rules = MakeStimulusRules();
    return rules.at(type);
}

const ObjectRule& ChannelRule() {
    static const ObjectRule rule = MakeChannelRule();
    return rule;
}

const ObjectRule& EpochRule() {
    static const ObjectRule rule = MakeEpochRule();
    return rule;
}

const ObjectRule& ProtocolRule() {
    static const ObjectRule rule = {
        "protocol",
        {Text("comment", "of the recording"),
         Inner("rig", Form::kObject, kRig, "the interface and what is connected to it"),
         Inner("channels", Form::kMap, ChannelRule(), "inputs with their outputs, by names"),
         Inner("defaults", Form::kObject, EpochRule(), "what holds for epochs that say no other"),
         Inner("epochs", Form::kList, EpochRule(), "what is recorded, in this order")}};
    return rule;
}

int32_t TypeOf(const Node& stimulus) {
    const Node type = stimulus["type"];
    if (!type) stimulus.Fail("a stimulus has a type");
    if (type.GetKind() != Kind::kText) type.Fail("the type is a text");
    std::vector<std::string_view> names;
    for (const int32_t allowed : StimulusTypesAllowed()) {
        if (reading::TypeName(allowed) == type.value->text) return allowed;
        names.push_back(reading::TypeName(allowed));
    }
    for (int32_t other = 1; other <= static_cast<int32_t>(kLargestType); ++other) {
        if (reading::TypeName(other) == type.value->text) {
            type.Fail("of type " + type.value->text + ", " + reading::RowOf(other).caveat.Get());
        }
    }
    std::string allowed;
    for (const std::string_view name : names) allowed.append(allowed.empty() ? "" : ", ") += name;
    type.Fail("\"" + type.value->text + "\" is no type; there are " + allowed);
}

}  // namespace corvantis::rig
