// Choosing epochs and output files, and writing the tables in runs of points.
#include "Export.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>

#include "EpochList.h"
#include "EpochTable.h"
#include "Failure.h"
#include "NewFile.h"
#include "Survey.h"
#include "TableWriter.h"
#include "Text.h"

namespace corvantis {
namespace {

constexpr int64_t kRun = 4096;  // points in memory at once

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

// out.csv becomes out-3.csv.
std::string NumberedPath(const std::string& path, size_t epoch) {
    const std::filesystem::path whole(path);
    const std::string name =
        fmt::format("{}-{}{}", whole.stem().string(), epoch, whole.extension().string());
    return (whole.parent_path() / name).string();
}

class Exporter {
  public:
    Exporter(const DataFile& file, const ExportOptions& options, const Terminal& terminal)
        : file_(file), options_(options), terminal_(terminal) {
        survey_ = SurveyFile(file, terminal);
        if (options.stimulus) history_.emplace(file, survey_.epochs);
    }

    int Export() {
        const std::vector<size_t> numbers = ChosenEpochs();
        const bool toFiles = !options_.output.empty();
        if (numbers.size() > 1 && !toFiles) {
            throw Failure("export: several epochs need -o OUT; each becomes a file of its own");
        }
        for (const size_t number : numbers) {
            const bool several = options_.all || numbers.size() > 1;
            const std::string path =
                toFiles && several ? NumberedPath(options_.output, number) : options_.output;
            ExportEpoch(number, path);
        }
        return code_;
    }

  private:
    std::vector<size_t> ChosenEpochs() const {
        const size_t count = survey_.epochs.size();
        if (count == 0) throw Failure(file_.Path(), "holds no epoch");
        if (options_.all) return ParseEpochList(fmt::format("0-{}", count - 1), count);
        if (!options_.epochs.empty()) return ParseEpochList(options_.epochs, count);
        if (count == 1) return {0};
        throw Failure(file_.Path(),
                      fmt::format("holds {} epochs: name some with --epoch, or --all", count));
    }

    void ExportEpoch(size_t number, const std::string& path) {
        const Values values = options_.raw     ? Values::kCounts
                              : options_.units ? Values::kUnits
                                               : Values::kVolts;
        const NoiseStart start = history_ ? history_->Before(number) : NoiseStart();
        const EpochTable table =
            MakeEpochTable(file_, survey_.epochs[number], values, history_ ? &start : nullptr);
        for (const std::string& remark : table.remarks) {
            terminal_.Say("corvantis: {}: epoch {}, {}\n", DisplayText(file_.Path()), number,
                          remark);
            code_ = kFindings;
        }
        if (path.empty()) {
            WriteToResults(table);
        } else {
            WriteToFile(table, path);
        }
    }

    void WriteToResults(const EpochTable& table) const {
        if (options_.format == "npy" && isatty(fileno(terminal_.results)) != 0) {
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
        WriteTable(table, *MakeWriter(options_.format, table, stream), progress);
    }

    const DataFile& file_;
    const ExportOptions& options_;
    const Terminal& terminal_;
    Survey survey_;
    std::optional<NoiseHistory> history_;
    int code_ = kFine;
};

}  // namespace

int RunExport(const ExportOptions& options, const Terminal& terminal) {
    const DataFile file(options.file);
    return Exporter(file, options, terminal).Export();
}

}  // namespace corvantis
