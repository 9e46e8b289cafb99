// Choosing epochs and output files, and writing the tables in runs of points.
#include "commands/Export.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <numeric>
#include <optional>

#include "commands/EpochList.h"
#include "files/Failure.h"
#include "files/NewFile.h"
#include "output/EpochTable.h"
#include "output/TableWriter.h"
#include "output/Text.h"
#include "stimuli/NoiseHistory.h"
#include "survey/Survey.h"

namespace corvantis::tool {
namespace {

constexpr int64_t kRun = 4096;  // points in memory at once

bool IsStandardOutput(const ExportOptions& options) {
    return options.output.empty() || options.output == "-";
}

std::unique_ptr<TableWriter> MakeWriter(const std::string& format, const EpochTable& table,
                                        FILE* stream) {
    if (format == "npy") return MakeNpyWriter(stream, table.points, table.columns.size());
    std::vector<std::string> names;
    for (const auto& column : table.columns) names.push_back(column->name);
    return MakeCsvWriter(stream, names);
}

void WriteTable(const EpochTable& table, TableWriter& writer, Progress& progress) {
    const size_t width = table.columns.size();
    std::vector<std::vector<double>> runs(width, std::vector<double>(kRun));
    std::vector<double> row(width);
    for (int64_t first = 0; first < table.points; first += kRun) {
        progress.Reach(first);
        const auto length = static_cast<size_t>(std::min(kRun, table.points - first));
        for (size_t c = 0; c < width; ++c) {
            table.columns[c]->Read(first, std::span(runs[c]).first(length));
        }
        for (size_t i = 0; i < length; ++i) {
            for (size_t c = 0; c < width; ++c) row[c] = runs[c][i];
            writer.WriteRow(row);
        }
    }
}

// The format that the name's ending asks for.
std::string FormatOf(const ExportOptions& options) {
    if (!options.format.empty()) return options.format;
    if (IsStandardOutput(options)) return "csv";
    std::string ending = std::filesystem::path(options.output).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    if (ending == ".csv" || ending == ".npy") return ending.substr(1);
    throw Failure(options.output,
                  "its ending names no format; end it in .csv or .npy, or say "
                  "which with --format");
}

// out.csv becomes out-003.csv, with digits for the last epoch of the file.
std::string NumberedPath(const std::string& path, int64_t epoch, int64_t last) {
    const std::filesystem::path whole(path);
    const size_t digits = std::to_string(last).size();
    const std::string name = fmt::format("{}-{:0{}}{}", whole.stem().string(), epoch, digits,
                                         whole.extension().string());
    return (whole.parent_path() / name).string();
}

class Exporter {
  public:
    Exporter(const DataFile& file, const ExportOptions& options, const Terminal& terminal)
        : file_(file),
          options_(options),
          terminal_(terminal),
          format_(FormatOf(options)),
          survey_(SurveyFile(file, terminal)) {
        if (options.stimulus) history_.emplace(file, survey_.epochs);
    }

    int Export() {
        const std::vector<size_t> indices = ChosenEpochs();
        if (indices.size() > 1 && IsStandardOutput(options_)) {
            throw Failure("export: several epochs need -o OUT; each becomes a file of its own");
        }
        if (history_) history_->Begin(indices);
        for (const size_t index : indices) ExportEpoch(index, PathOf(index));
        return code_;
    }

  private:
    // As indices of the survey, in ascending order. What cannot be given is said.
    std::vector<size_t> ChosenEpochs() {
        const size_t count = survey_.epochs.size();
        if (count == 0) throw Failure(file_.Path(), "holds no epoch");
        if (options_.epochs.empty()) {
            if (!options_.all && count > 1) {
                throw Failure(
                    file_.Path(),
                    fmt::format("holds {} epochs: name some with --epoch, or --all", count));
            }
            return AllEpochs();
        }
        std::vector<size_t> indices;
        for (const int64_t number : ParseEpochList(options_.epochs, NumbersOf(file_, survey_))) {
            const EpochPlace* epoch = FindNumber(survey_, number);
            if (epoch == nullptr) {
                SayMissing(number, number);
            } else {
                indices.push_back(static_cast<size_t>(epoch - survey_.epochs.data()));
            }
        }
        std::sort(indices.begin(), indices.end());
        return indices;
    }

    std::vector<size_t> AllEpochs() {
        std::vector<size_t> indices(survey_.epochs.size());
        std::iota(indices.begin(), indices.end(), size_t{0});
        for (const Stretch& stray : survey_.strays) SayStray(stray);
        if (survey_.unfinished) SayMissing(survey_.numbers, survey_.numbers);
        const int64_t first = survey_.numbers + (survey_.unfinished ? 1 : 0);
        const int64_t end = NumbersOf(file_, survey_);
        if (first < end) SayMissing(first, end - 1);
        return indices;
    }

    // Bytes behind the table are no epoch, and bytes between epochs may be one.
    void SayStray(const Stretch& stray) {
        if (stray.number) return SayMissing(*stray.number, *stray.number);
        if (stray.begin > survey_.tablePosition) return;
        terminal_.Say("corvantis: {}: bytes {} to {} cannot be given: found {}, expected {}\n",
                      DisplayText(file_.Path()), stray.begin, stray.end, stray.mismatch.found,
                      stray.mismatch.expected);
        code_ = kFindings;
    }

    void SayMissing(int64_t first, int64_t last) {
        const std::string which = first == last ? fmt::format("epoch {}", first)
                                                : fmt::format("epochs {} to {}", first, last);
        terminal_.Say("corvantis: {}: {} cannot be given: {}\n", DisplayText(file_.Path()), which,
                      WhyMissing(survey_, first));
        code_ = kFindings;
    }

    std::string PathOf(size_t index) const {
        if (IsStandardOutput(options_)) return "";
        const std::vector<EpochPlace>& epochs = survey_.epochs;
        const bool isSingle = !options_.all && (options_.epochs.empty() || IsOneNumber());
        if (isSingle) return options_.output;
        return NumberedPath(options_.output, epochs[index].number, epochs.back().number);
    }

    // A list of one epoch, even if written as 3,3.
    bool IsOneNumber() const {
        return ParseEpochList(options_.epochs, NumbersOf(file_, survey_)).size() == 1;
    }

    void ExportEpoch(size_t index, const std::string& path) {
        const Values values = options_.raw     ? Values::kCounts
                              : options_.volts ? Values::kVolts
                                               : Values::kUnits;
        const EpochPlace& place = survey_.epochs[index];
        EpochTable table = MakeEpochTable(file_, place, values);
        if (history_) AddRebuilt(index, values, table);
        for (const std::string& remark : table.remarks) {
            terminal_.Say("corvantis: {}: epoch {}, {}\n", DisplayText(file_.Path()), place.number,
                          remark);
            code_ = kFindings;
        }
        if (path.empty()) {
            WriteToResults(table);
        } else {
            WriteToFile(table, path);
        }
    }

    void AddRebuilt(size_t index, Values values, EpochTable& table) {
        const std::string doubt = history_->Doubt(index);
        if (!doubt.empty()) table.remarks.push_back("doubtful stimulus: " + doubt);
        history_->BringGeneratorsTo(index);
        AddStimulus(file_, survey_.epochs[index], values, table);
    }

    void WriteToResults(const EpochTable& table) const {
        if (format_ == "npy" && isatty(fileno(terminal_.results)) != 0) {
            throw Failure("export: an array is no text for a terminal; use -o OUT");
        }
        Write(table, terminal_.results);
    }

    void WriteToFile(const EpochTable& table, const std::string& path) const {
        if (file_.IsSame(path)) throw Failure(path, "is the data file itself");
        NewFile output(path, options_.force);
        Write(table, output.Get());
        output.Commit();
    }

    void Write(const EpochTable& table, FILE* stream) const {
        Progress progress(terminal_, "exporting", table.points);
        WriteTable(table, *MakeWriter(format_, table, stream), progress);
    }

    const DataFile& file_;
    const ExportOptions& options_;
    const Terminal& terminal_;
    const std::string format_;
    const Survey survey_;
    std::optional<NoiseHistory> history_;
    int code_ = kFine;
};

}  // namespace

int RunExport(const ExportOptions& options, const Terminal& terminal) {
    const DataFile file(options.file);
    return Exporter(file, options, terminal).Export();
}

}  // namespace corvantis::tool
