// Printing the file header, a line per epoch, and epochs in full, as text or JSON.
#include "commands/Info.h"

#include <span>
#include <string_view>

#include "commands/Check.h"
#include "commands/EpochList.h"
#include "files/Failure.h"
#include "output/Text.h"
#include "output/Units.h"
#include "stimuli/Fields.h"
#include "stimuli/Stimuli.h"
#include "survey/Survey.h"

namespace corvantis::tool {
namespace {

using Fields = std::span<const Field>;

Json JsonOf(Fields fields, const void* record) {
    Json values = Json::object();
    for (const Field& field : fields) values[field.text.name] = FieldValue(field, record);
    return values;
}

// A sum shows its components instead.
Fields FieldsOf(const Stimulus& stimulus) {
    const bool isShown = stimulus.isRead && stimulus.type != ITC_STIMULUS_SUMMED;
    return isShown ? RowOf(stimulus.type).record->fields : Fields();
}

Json StimulusOf(const Stimulus& stimulus) {
    Json json = {{"type", stimulus.type}, {"name", TypeName(stimulus.type)}};
    json.update(JsonOf(FieldsOf(stimulus), stimulus.record.data()));
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

// Levels also in the unit of their entry, to the digits of a single-precision factor.
std::string InUnits(double level, const Conversion& conversion) {
    if (conversion.isWord || conversion.unit == "counts") return "";
    return fmt::format(" ({:.6g} {})", conversion.Level(level), conversion.unit);
}

void PrintFields(Fields fields, const void* record, const std::string& indent,
                 const Terminal& terminal, const Conversion& conversion = Words()) {
    for (const Field& field : fields) {
        const Json value = FieldValue(field, record);
        std::string line = fmt::format("{}{:<19} {} {}", indent, field.text.name, ShownValue(value),
                                       field.text.unit);
        if (value.is_number() && field.text.unit == std::string_view(kCodes)) {
            line += InUnits(value.get<double>(), conversion);
        }
        terminal.Print("{}\n", line.substr(0, line.find_last_not_of(' ') + 1));
    }
}

void PrintStimulus(const Stimulus& stimulus, const Conversion& conversion,
                   const Terminal& terminal) {
    const std::string indent = "    ";
    PrintFields(FieldsOf(stimulus), stimulus.record.data(), indent, terminal, conversion);
    for (size_t k = 0; k < stimulus.components.size(); ++k) {
        const Stimulus& component = stimulus.components[k];
        terminal.Print("{}component {}: {}\n", indent, k, TypeName(component.type));
        PrintFields(FieldsOf(component), component.record.data(), indent + "  ", terminal,
                    conversion);
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
        PrintFields(kFields<ITCFileHeader>, &file_.Header(), "  ", terminal_);
    }

    void PrintTable() const {
        terminal_.Print("\n{:>6} {:>10} {:>8} {:>7} {:>8}  {:<20} {}\n", "epoch", "position",
                        "points", "entries", "µs", "stimuli", "comment");
        size_t next = 0;
        for (const EpochPlace& epoch : survey_.epochs) {
            next = PrintDamaged(next, epoch.start);
            const EpochContent content = ReadEpochAt(file_, epoch.start).content;
            const ITCEpochHeader& header = content.header;
            terminal_.Print("{:>6} {:>10} {:>8} {:>7} {:>8}  {:<20} {}\n", epoch.number,
                            epoch.start, header.epochPoints, header.sequenceLength,
                            header.samplingInterval, StimulusNames(content),
                            DisplayText({header.epochComment, sizeof header.epochComment}));
        }
        PrintDamaged(next, file_.Size());
    }

    void PrintEpoch(const EpochPlace& place) const {
        const int64_t number = place.number;
        const EpochContent content = ReadEpochAt(file_, place.start).content;
        terminal_.Print("epoch {}: bytes {} to {}, samples from {}\n", number, place.start,
                        place.end, place.samples);
        PrintFields(kFields<ITCEpochHeader>, &content.header, "  ", terminal_);
        for (size_t entry = 0; entry < content.stimuli.size(); ++entry) {
            const Stimulus& stimulus = content.stimuli[entry];
            terminal_.Print("  entry {}: {}\n", entry, TypeName(stimulus.type));
            terminal_.Print("    response = {}\n",
                            ResponseFormula(file_.Header(), content.header, entry));
            terminal_.Print("    stimulus = {}\n",
                            StimulusFormula(file_.Header(), content.header, entry));
            PrintStimulus(stimulus, StimulusInUnits(file_.Header(), content.header, entry),
                          terminal_);
        }
    }

    Json FileJson() const {
        return {{"file", DisplayText(file_.Path())},
                {"bytes", file_.Size()},
                {"header", JsonOf(kFields<ITCFileHeader>, &file_.Header())}};
    }

    Json EpochJson(const EpochPlace& place) const {
        const EpochContent content = ReadEpochAt(file_, place.start).content;
        Json entries = Json::array();
        for (size_t entry = 0; entry < content.stimuli.size(); ++entry) {
            entries.push_back({{"response", ResponseFormula(file_.Header(), content.header, entry)},
                               {"stimulus", StimulusFormula(file_.Header(), content.header, entry)},
                               {"parameters", StimulusOf(content.stimuli[entry])}});
        }
        return {{"epoch", place.number},
                {"position", place.start},
                {"samples", place.samples},
                {"end", place.end},
                {"header", JsonOf(kFields<ITCEpochHeader>, &content.header)},
                {"entries", entries}};
    }

  private:
    // Those in front of an offset, from one of the stretches on.
    size_t PrintDamaged(size_t next, int64_t until) const {
        for (; next < survey_.strays.size() && survey_.strays[next].begin < until; ++next) {
            const Stretch& stray = survey_.strays[next];
            if (!stray.number) continue;
            terminal_.Print("{:>6} {:>10}  damaged: found {}, expected {}\n", *stray.number,
                            stray.begin, stray.mismatch.found, stray.mismatch.expected);
        }
        return next;
    }

    const DataFile& file_;
    const Survey& survey_;
    const Terminal& terminal_;
};

// Throws a Failure for a number that only a damaged or missing epoch has.
std::vector<EpochPlace> ChosenEpochs(const DataFile& file, const Survey& survey,
                                     const std::string& list) {
    if (list.empty()) return survey.epochs;
    std::vector<EpochPlace> chosen;
    for (const int64_t number : ParseEpochList(list, NumbersOf(file, survey))) {
        const EpochPlace* epoch = FindNumber(survey, number);
        if (epoch == nullptr) {
            throw Failure(file.Path(), fmt::format("epoch {} cannot be shown: {}", number,
                                                   WhyMissing(survey, number)));
        }
        chosen.push_back(*epoch);
    }
    return chosen;
}

// One epoch at a time, so that a long file does not have to fit into memory.
void PrintJson(const Report& report, const std::vector<EpochPlace>& epochs,
               const Terminal& terminal) {
    std::string head = report.FileJson().dump();
    head.pop_back();
    terminal.Print("{},\n \"epochs\": [", head);
    const char* separator = "\n";
    for (const EpochPlace& epoch : epochs) {
        terminal.Print("{}{}", separator, report.EpochJson(epoch).dump());
        separator = ",\n";
    }
    terminal.Print("]}}\n");
}

}  // namespace

int RunInfo(const InfoOptions& options, const Terminal& terminal) {
    const DataFile file(options.file);
    const Survey survey = SurveyFile(file, terminal);
    const Report report(file, survey, terminal);
    const std::vector<EpochPlace> epochs = ChosenEpochs(file, survey, options.epochs);
    if (options.json) {
        PrintJson(report, epochs, terminal);
    } else if (options.epochs.empty()) {
        report.PrintFile();
        report.PrintTable();
    } else {
        for (const EpochPlace& epoch : epochs) report.PrintEpoch(epoch);
    }
    if (HasFault(CompareWithSurvey(file, survey)) && !terminal.quiet) {
        terminal.Say(
            "corvantis: {}: damaged; shown is what lies in the file, see corvantis check\n",
            DisplayText(options.file));
    }
    return kFine;
}

}  // namespace corvantis::tool
