// Printing the file header, a line per epoch, and epochs in full, as text or JSON.
#include "Info.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <type_traits>

#include "Check.h"
#include "EpochList.h"
#include "Failure.h"
#include "Fields.h"
#include "StimulusTypes.h"
#include "Survey.h"
#include "Text.h"
#include "Units.h"

namespace corvantis {
namespace {

using Json = nlohmann::ordered_json;

// A field's value; JSON has no number for what is infinite or undefined.
template <class Value>
Json ValueOf(const Value& value) {
    if constexpr (std::is_array_v<Value>) {
        using Element = std::remove_extent_t<Value>;
        if constexpr (std::is_same_v<Element, char>) {
            return DisplayText({value, std::extent_v<Value>});
        } else {
            Json list = Json::array();
            for (const Element& element : value) list.push_back(ValueOf(element));
            return list;
        }
    } else if constexpr (std::is_floating_point_v<Value>) {
        if (!std::isfinite(value)) return fmt::format("{}", value);
        return std::stod(fmt::format("{}", value));  // 0.01, not the nearest float's digits
    } else {
        return value;
    }
}

template <class Record>
Json FieldsOf(const Record& record) {
    Json fields = Json::object();
    VisitFields(record, [&](const char* name, const auto& value, const char* /*unit*/) {
        fields[name] = ValueOf(value);
    });
    return fields;
}

Json StimulusOf(const Stimulus& stimulus) {
    Json json = {{"type", stimulus.type}, {"name", TypeName(stimulus.type)}};
    json.update(FieldsOf(stimulus));
    for (const Stimulus& component : stimulus.components) {
        json["components"].push_back(StimulusOf(component));
    }
    return json;
}

std::string ShownValue(const Json& value) {
    if (!value.is_array()) return value.is_string() ? value.get<std::string>() : value.dump();
    std::string text;
    for (const Json& element : value) text += (text.empty() ? "" : ", ") + ShownValue(element);
    return text;
}

template <class Record>
void PrintFields(const Record& record, const std::string& indent, const Terminal& terminal) {
    VisitFields(record, [&](const char* name, const auto& value, const char* unit) {
        const std::string line =
            fmt::format("{}{:<19} {} {}", indent, name, ShownValue(ValueOf(value)), unit);
        terminal.Print("{}\n", line.substr(0, line.find_last_not_of(' ') + 1));
    });
}

void PrintStimulus(const Stimulus& stimulus, const std::string& indent, const Terminal& terminal) {
    PrintFields(stimulus, indent, terminal);
    for (size_t k = 0; k < stimulus.components.size(); ++k) {
        const Stimulus& component = stimulus.components[k];
        terminal.Print("{}component {}: {}\n", indent, k, TypeName(component.type));
        PrintFields(component, indent + "  ", terminal);
    }
}

std::string StimulusNames(const EpochContent& content) {
    std::string names;
    for (const Stimulus& stimulus : content.stimuli) {
        if (!names.empty()) names += "+";
        names += TypeName(stimulus.type);
    }
    return names;
}

class Report {
  public:
    Report(const DataFile& file, const Survey& survey, const Terminal& terminal)
        : file_(file), survey_(survey), terminal_(terminal) {}

    void PrintFile() const {
        terminal_.Print("{}: {} epochs, {} bytes\n", DisplayText(file_.Path()),
                        survey_.epochs.size(), file_.Size());
        PrintFields(file_.Header(), "  ", terminal_);
    }

    void PrintTable() const {
        terminal_.Print("\n{:>6} {:>10} {:>8} {:>7} {:>8}  {:<20} {}\n", "epoch", "position",
                        "points", "entries", "µs", "stimuli", "comment");
        for (size_t number = 0; number < survey_.epochs.size(); ++number) {
            const EpochContent content = Content(number);
            const ITCEpochHeader& header = content.header;
            terminal_.Print("{:>6} {:>10} {:>8} {:>7} {:>8}  {:<20} {}\n", number,
                            survey_.epochs[number].start, header.epochPoints, header.sequenceLength,
                            header.samplingInterval, StimulusNames(content),
                            ShownValue(ValueOf(header.epochComment)));
        }
    }

    void PrintEpoch(size_t number) const {
        const EpochContent content = Content(number);
        const EpochPlace& place = survey_.epochs[number];
        terminal_.Print("epoch {}: bytes {} to {}, samples from {}\n", number, place.start,
                        place.end, place.samples);
        PrintFields(content.header, "  ", terminal_);
        for (size_t entry = 0; entry < content.stimuli.size(); ++entry) {
            const Stimulus& stimulus = content.stimuli[entry];
            terminal_.Print("  entry {}: {}\n", entry, TypeName(stimulus.type));
            terminal_.Print("    response = {}\n",
                            ResponseFormula(file_.Header(), content.header, entry));
            terminal_.Print("    stimulus = {}\n",
                            StimulusFormula(file_.Header(), content.header, entry));
            PrintStimulus(stimulus, "    ", terminal_);
        }
    }

    Json FileJson() const {
        return {{"file", DisplayText(file_.Path())},
                {"bytes", file_.Size()},
                {"header", FieldsOf(file_.Header())}};
    }

    Json EpochJson(size_t number) const {
        const EpochContent content = Content(number);
        Json entries = Json::array();
        for (size_t entry = 0; entry < content.stimuli.size(); ++entry) {
            entries.push_back({{"response", ResponseFormula(file_.Header(), content.header, entry)},
                               {"stimulus", StimulusFormula(file_.Header(), content.header, entry)},
                               {"parameters", StimulusOf(content.stimuli[entry])}});
        }
        const EpochPlace& place = survey_.epochs[number];
        return {{"epoch", number},
                {"position", place.start},
                {"samples", place.samples},
                {"end", place.end},
                {"header", FieldsOf(content.header)},
                {"entries", entries}};
    }

  private:
    EpochContent Content(size_t number) const {
        return ReadEpochAt(file_, survey_.epochs[number].start).content;
    }

    const DataFile& file_;
    const Survey& survey_;
    const Terminal& terminal_;
};

std::vector<size_t> AllEpochs(size_t count) {
    std::vector<size_t> numbers(count);
    for (size_t i = 0; i < count; ++i) numbers[i] = i;
    return numbers;
}

// One epoch at a time, so that a long file does not have to fit into memory.
void PrintJson(const Report& report, const std::vector<size_t>& numbers, const Terminal& terminal) {
    std::string head = report.FileJson().dump();
    head.pop_back();
    terminal.Print("{},\n \"epochs\": [", head);
    const char* separator = "\n";
    for (const size_t number : numbers) {
        terminal.Print("{}{}", separator, report.EpochJson(number).dump());
        separator = ",\n";
    }
    terminal.Print("]}}\n");
}

}  // namespace

int RunInfo(const InfoOptions& options, const Terminal& terminal) {
    const DataFile file(options.file);
    const Survey survey = SurveyFile(file, terminal);
    const Report report(file, survey, terminal);
    const size_t count = survey.epochs.size();
    const bool all = options.epochs.empty();
    const auto numbers = all ? AllEpochs(count) : ParseEpochList(options.epochs, count);
    if (options.json) {
        PrintJson(report, numbers, terminal);
    } else if (all) {
        report.PrintFile();
        report.PrintTable();
    } else {
        for (const size_t number : numbers) report.PrintEpoch(number);
    }
    if (HasFault(CompareWithSurvey(file, survey)) && !terminal.quiet) {
        terminal.Say(
            "corvantis: {}: damaged; shown is what lies in the file, see corvantis check\n",
            DisplayText(options.file));
    }
    return kFine;
}

}  // namespace corvantis
