// What a protocol may hold: each field described once, for the reader, the schema and messages.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "ITCFileIO/RecordFields.h"
#include "document/Document.h"

namespace corvantis::rig {

struct ObjectRule;

enum class Form : uint8_t {
    kText,
    kTruth,
    kNumber,       // a whole one
    kAmount,       // a number as it is stored, or a text such as "120 pA + {step}"
    kPort,         // a number, or "digital"
    kChoice,       // one of some texts
    kObject,       // of the rule `inner`
    kMap,          // names of one's own, each with an object of the rule `inner`
    kList,         // of objects of the rule `inner`
    kAmounts,      // a list of amounts
    kConductance,  // an amount, a list of numbers, or an object of the rule `inner`
    kStimuli,      // a list of objects of the rule of their `type`
    kStimulusMap,  // names of channels, each with such an object
    kSettings      // whatever the player knows
};

struct FieldRule {
    std::string name;
    Form form = Form::kText;
    std::string meaning;
    std::string unit = {};  // of an amount: as in the table of records
    double least = std::numeric_limits<int32_t>::min();
    double most = std::numeric_limits<int32_t>::max();
    const ObjectRule* inner = nullptr;
    std::vector<std::string_view> choices = {};
    bool isRequired = false;
};

struct ObjectRule {
    std::string name;
    std::vector<FieldRule> fields;

    const FieldRule* Find(std::string_view field) const;
};

// Of the whole file, of an epoch, of an epoch's channel.
const ObjectRule& ProtocolRule();
const ObjectRule& EpochRule();
const ObjectRule& ChannelRule();
// Of the stimulus types that a protocol may have: those whose parameters the data file keeps and
// whose waveform the library computes.
const std::vector<int32_t>& StimulusTypesAllowed();
const ObjectRule& StimulusRule(int32_t type);

// The fields of the epoch's header that a protocol gives: for each channel, or for the epoch.
const std::vector<Field>& ChannelHeaderFields();
const std::vector<Field>& EpochHeaderFields();

// The type of a stimulus, by its name. Throws a Failure.
int32_t TypeOf(const Node& stimulus);

// Throws a Failure for the first field that is not known, missing or of another form.
void CheckForm(const Node& protocol);

// The same as a JSON schema (draft 2020-12).
std::string SchemaText();

}  // namespace corvantis::rig
