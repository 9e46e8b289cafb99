// The rules of a protocol's fields as a JSON schema, for editors.
#include <nlohmann/json.hpp>

#include "protocol/FieldRules.h"
#include "stimuli/Stimuli.h"

namespace corvantis::rig {
namespace {

using Json = nlohmann::ordered_json;

Json ObjectSchema(const ObjectRule& rule);

Json AmountSchema() { return {{"type", {"number", "string"}}}; }

Json StimulusSchema() { return {{"$ref", "#/$defs/stimulus"}}; }

Json MapSchema(const Json& inner) { return {{"type", "object"}, {"additionalProperties", inner}}; }

Json ListSchema(const Json& inner) { return {{"type", "array"}, {"items", inner}}; }

Json NumberSchema(const FieldRule& rule) {
    return {{"type", "integer"},
            {"minimum", static_cast<int64_t>(rule.least)},
            {"maximum", static_cast<int64_t>(rule.most)}};
}

// Of an epoch and a channel by name: they stand in several places.
Json InnerSchema(const ObjectRule& inner) {
    if (&inner == &EpochRule()) return {{"$ref", "#/$defs/epoch"}};
    return ObjectSchema(inner);
}

Json FormSchema(const FieldRule& rule) {
    switch (rule.form) {
        case Form::kText:
            return {{"type", "string"}};
        case Form::kTruth:
            return {{"type", "boolean"}};
        case Form::kNumber:
            return NumberSchema(rule);
        case Form::kAmount:
            return AmountSchema();
        case Form::kPort:
            return {{"anyOf", {NumberSchema(rule), {{"const", "digital"}}}}};
        case Form::kChoice:
            return {{"enum", rule.choices}};
        case Form::kObject:
            return InnerSchema(*rule.inner);
        case Form::kMap:
            return MapSchema(InnerSchema(*rule.inner));
        case Form::kList:
            return ListSchema(InnerSchema(*rule.inner));
        case Form::kAmounts:
            return ListSchema(AmountSchema());
        case Form::kConductance:
            return {
                {"anyOf",
                 {AmountSchema(), ListSchema({{"type", "number"}}), ObjectSchema(*rule.inner)}}};
        case Form::kStimuli:
            return ListSchema(StimulusSchema());
        case Form::kStimulusMap:
            return MapSchema(StimulusSchema());
        case Form::kSettings:
            return {{"type", "object"}};
    }
    return {};
}

Json FieldSchema(const FieldRule& rule) {
    Json schema = FormSchema(rule);
    schema["description"] =
        rule.unit.empty() ? rule.meaning : rule.meaning + " [" + rule.unit + "]";
    return schema;
}

Json ObjectSchema(const ObjectRule& rule) {
    Json schema = {{"type", "object"}, {"additionalProperties", false}};
    Json required = Json::array();
    for (const FieldRule& field : rule.fields) {
        schema["properties"][field.name] = FieldSchema(field);
        if (field.isRequired) required.push_back(field.name);
    }
    if (!required.empty()) schema["required"] = required;
    return schema;
}

}  // namespace

std::string SchemaText() {
    Json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                   {"title", "A protocol of corvantis record"}};
    schema.update(ObjectSchema(ProtocolRule()));
    schema["$defs"]["epoch"] = ObjectSchema(EpochRule());
    Json types = Json::array();
    for (const int32_t type : StimulusTypesAllowed()) {
        types.push_back(ObjectSchema(StimulusRule(type)));
    }
    schema["$defs"]["stimulus"] = {{"anyOf", types}};
    return schema.dump(2) + "\n";
}

}  // namespace corvantis::rig
