// Holding a protocol to the rules of its fields.
#include <cmath>

#include "protocol/FieldRules.h"

namespace corvantis::rig {
namespace {

void CheckObject(const Node& object, const ObjectRule& rule);

std::string Join(const std::vector<std::string_view>& names) {
    std::string text;
    for (const std::string_view name : names) text.append(text.empty() ? "" : ", ") += name;
    return text;
}

void Expect(const Node& node, Kind kind, const char* what) {
    if (node.GetKind() != kind) node.Fail(std::string("is to be ") + what);
}

bool IsAmount(const Node& node) {
    return node.GetKind() == Kind::kNumber || node.GetKind() == Kind::kText;
}

void CheckAmount(const Node& node) {
    if (!IsAmount(node)) node.Fail("is to be a number, or a text of number and unit");
}

void CheckNumber(const Node& node, const FieldRule& rule) {
    Expect(node, Kind::kNumber, "a number");
    const double number = node.value->number;
    if (number < rule.least || number > rule.most || number != std::floor(number)) {
        node.Fail("is to be a whole number from " + std::to_string(std::llround(rule.least)) +
                  " to " + std::to_string(std::llround(rule.most)));
    }
}

void CheckPort(const Node& node, const FieldRule& rule) {
    if (node.GetKind() == Kind::kText && node.value->text == "digital") return;
    if (node.GetKind() == Kind::kText) node.Fail("is to be a number or \"digital\"");
    CheckNumber(node, rule);
}

void CheckChoice(const Node& node, const FieldRule& rule) {
    Expect(node, Kind::kText, "a text");
    for (const std::string_view choice : rule.choices) {
        if (choice == node.value->text) return;
    }
    node.Fail("is to be one of " + Join(rule.choices));
}

void CheckAmounts(const Node& node) {
    Expect(node, Kind::kList, "a list");
    for (size_t k = 0; k < node.value->items.size(); ++k) CheckAmount(node.Item(k));
}

void CheckStimulus(const Node& node) {
    Expect(node, Kind::kObject, "an object with a type");
    CheckObject(node, StimulusRule(TypeOf(node)));
}

void CheckConductance(const Node& node, const FieldRule& rule) {
    if (IsAmount(node)) return;
    if (node.GetKind() == Kind::kObject) return CheckObject(node, *rule.inner);
    Expect(node, Kind::kList, "an amount, a list of numbers or an object");
    if (!node.value->items.empty()) node.Item(0).Fail("is to be a number");
}

void CheckSettings(const Node& node) {
    Expect(node, Kind::kObject, "an object");
    for (size_t k = 0; k < node.value->items.size(); ++k) {
        const Node setting = node.Item(k);
        if (setting.GetKind() == Kind::kObject) {
            CheckSettings(setting);
        } else if (setting.GetKind() == Kind::kList || setting.GetKind() == Kind::kNull) {
            setting.Fail("is to be a number, a text, true or false");
        }
    }
}

template <class Check>
void CheckItems(const Node& node, Kind kind, const char* what, Check check) {
    Expect(node, kind, what);
    if (!node.value->numbers.empty()) node.Fail(std::string("is to be ") + what);
    for (size_t k = 0; k < node.value->items.size(); ++k) check(node.Item(k));
}

void CheckField(const Node& node, const FieldRule& rule) {
    const auto inner = [&](const Node& item) { CheckObject(item, *rule.inner); };
    switch (rule.form) {
        case Form::kText:
            return Expect(node, Kind::kText, "a text");
        case Form::kTruth:
            return Expect(node, Kind::kTruth, "true or false");
        case Form::kNumber:
            return CheckNumber(node, rule);
        case Form::kAmount:
            return CheckAmount(node);
        case Form::kPort:
            return CheckPort(node, rule);
        case Form::kChoice:
            return CheckChoice(node, rule);
        case Form::kObject:
            return CheckObject(node, *rule.inner);
        case Form::kMap:
            return CheckItems(node, Kind::kObject, "an object of objects", inner);
        case Form::kList:
            return CheckItems(node, Kind::kList, "a list of objects", inner);
        case Form::kAmounts:
            return CheckAmounts(node);
        case Form::kConductance:
            return CheckConductance(node, rule);
        case Form::kStimuli:
            return CheckItems(node, Kind::kList, "a list of stimuli", CheckStimulus);
        case Form::kStimulusMap:
            return CheckItems(node, Kind::kObject, "an object of stimuli", CheckStimulus);
        case Form::kSettings:
            return CheckSettings(node);
    }
}

[[noreturn]] void FailUnknown(const Node& field, const ObjectRule& rule, const std::string& name) {
    std::vector<std::string_view> names;
    for (const FieldRule& known : rule.fields) names.push_back(known.name);
    const std::string_view nearest = Nearest(name, names);
    field.Fail("no such field of " + rule.name +
               (nearest.empty() ? "; there are " + Join(names)
                                : "; is \"" + std::string(nearest) + "\" meant?"));
}

void CheckObject(const Node& object, const ObjectRule& rule) {
    Expect(object, Kind::kObject, "an object");
    for (size_t k = 0; k < object.value->items.size(); ++k) {
        const std::string& name = object.value->names[k];
        const FieldRule* field = rule.Find(name);
        if (field == nullptr) FailUnknown(object.Item(k), rule, name);
        CheckField(object.Item(k), *field);
    }
    for (const FieldRule& field : rule.fields) {
        if (field.isRequired && !object[field.name]) object.Fail("lacks " + field.name);
    }
}

}  // namespace

void CheckForm(const Node& protocol) { CheckObject(protocol, ProtocolRule()); }

}  // namespace corvantis::rig
