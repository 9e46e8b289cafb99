// Choosing epochs, and writing their tables in runs of points.
#include "commands/Export.h"

#include <algorithm>
#include <map>
#include <memory>
#include <numeric>
#include <vector>

#include "commands/EpochList.h"
#include "commands/ExportTarget.h"
#include "files/NewFile.h"
#include "output/EpochTable.h"
#include "output/TableWriter.h"
#include "text/Text.h"

namespace corvantis::tool {
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

Values ValuesOf(const ExportOptions& options) {
    if (options.raw) return Values::kCounts;
    return options.volts ? Values::kVolts : Values::kUnits;
}

class Exporter {
  public:
    Exporter(const DataFile& file, const FoundFile& found, const ExportOptions& options,
             const Terminal& terminal)
        : file_(file),
          found_(found),
          options_(options),
          terminal_(terminal),
          format_(FormatOf(options)),
          count_(file.Info().epochs) {}

    Outcome Export() {
        const std::vector<int64_t> numbers = ChosenEpochs();
        if (IsAll()) SayStrays();
        for (size_t i = 0; i < numbers.size(); ++i) {
            if (const auto epoch = ReadEpoch(file_, numbers[i])) {
                ExportEpoch(*epoch, numbers.size());
            } else {
                i = SayLost(numbers, i);
            }
        }
        return {findings_ > 0 ? kFindings : kFine, exported_, findings_};
    }

  private:
    bool IsAll() const {
        return options_.all || (options_.epochs.empty() && IsFolderOutput(options_));
    }

    // In ascending order, which noise that goes on from epoch to epoch is computed best in.
    std::vector<int64_t> ChosenEpochs() const {
        std::vector<int64_t> numbers(static_cast<size_t>(count_));
        std::iota(numbers.begin(), numbers.end(), int64_t{0});
        if (IsFolderOutput(options_) && IsAll()) return numbers;
        if (count_ == 0) throw Failure(file_.Name(), "holds no epoch");
        if (!options_.epochs.empty()) numbers = ParseEpochList(options_.epochs, count_);
        const bool isChosen = options_.all || !options_.epochs.empty();
        if (!isChosen && count_ > 1) {
            throw Failure(file_.Name(),
                          fmt::format("holds {} epochs: name some with --epoch, or --all", count_));
        }
        if (numbers.size() > 1 && IsStandardOutput(options_)) {
            throw Failure("export: several epochs need -o OUT; each becomes a file of its own");
        }
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    }

    // Bytes behind the table are no epoch, and bytes between epochs may be one.
    void SayStrays() {
        if (file_.Info().found == CORVANTIS_BY_TABLE) return;
        const reading::Survey& survey = file_.Walk().survey;
        for (const reading::Stretch& stray : survey.strays) {
            if (stray.number || stray.begin > survey.tablePosition) continue;
            terminal_.Say("{}: bytes {} to {} cannot be given: found {}, expected {}\n",
                          file_.Name(), stray.begin, stray.end, stray.mismatch.found,
                          stray.mismatch.expected);
            ++findings_;
        }
    }

    // The last of those that were asked for and are lost together.
    size_t SayLost(const std::vector<int64_t>& numbers, size_t i) {
        const LostEpochs lost = LostFrom(file_, numbers[i]);
        size_t last = i;
        while (last + 1 < numbers.size() && numbers[last + 1] <= lost.last) ++last;
        const std::string upTo = last == i ? "" : fmt::format(" to {}", numbers[last]);
        terminal_.Say("{}: epoch{} {}{} cannot be given: {}\n", file_.Name(), last == i ? "" : "s",
                      lost.first, upTo, lost.text);
        findings_ += static_cast<int64_t>(last - i) + 1;
        return last;
    }

    // A list of one epoch, even if written as 3,3, goes to OUT itself.
    std::string PathOf(int64_t number, size_t chosen) const {
        if (IsStandardOutput(options_)) return "";
        const bool isSingle = !options_.all && chosen == 1 && !IsFolderOutput(options_);
        return isSingle ? options_.output : TablePath(options_, found_, number, count_);
    }

    void ExportEpoch(const EpochRecords& epoch, size_t chosen) {
        EpochTable table = MakeEpochTable(file_, epoch, ValuesOf(options_));
        if (options_.stimulus) AddStimulus(file_, epoch, ValuesOf(options_), table);
        for (const std::string& remark : table.remarks) {
            terminal_.Say("{}: epoch {}, {}\n", file_.Name(), epoch.number, remark);
            ++findings_;
        }
        const std::string path = PathOf(epoch.number, chosen);
        if (path.empty()) {
            WriteToResults(table);
        } else {
            WriteToFile(table, path);
        }
        ++exported_;
    }

    void WriteToResults(const EpochTable& table) const {
        if (format_ == "npy" && IsScreen(terminal_.results.Stream())) {
            throw Failure("export: an array is no text for a terminal; use -o OUT");
        }
        Write(table, terminal_.results.Stream());
    }

    // Whatever has its name is complete.
    void WriteToFile(const EpochTable& table, const std::string& path) const {
        if (file_.State().IsSame(path)) throw Failure(path, "is the data file itself");
        if (options_.resume && Exists(path)) return;
        NewFile output(path, options_.force);
        Write(table, output.Get());
        output.Commit();
    }

    void Write(const EpochTable& table, FILE* stream) const {
        Progress progress(terminal_, "exporting", table.points);
        WriteTable(table, *MakeWriter(format_, table, stream), progress);
    }

    const DataFile& file_;
    const FoundFile& found_;
    const ExportOptions& options_;
    const Terminal& terminal_;
    const std::string format_;
    const int64_t count_;
    int64_t exported_ = 0;
    int64_t findings_ = 0;
};

// Of each place in the output the file whose tables it holds.
std::map<std::string, std::string> PlacesOf(const std::vector<FoundFile>& files) {
    std::map<std::string, std::string> places;
    for (const FoundFile& found : files) places.emplace(found.relative, found.path);
    return places;
}

}  // namespace

int RunExport(const ExportOptions& options, const Terminal& terminal) {
    if (AreMany(options.choice) && !IsFolderOutput(options)) {
        throw Failure("export: several files need -o FOLDER/; each gets a folder of its own in it");
    }
    FormatOf(options);  // refuses a name before any file is opened
    const std::vector<FoundFile> files = FindFiles(options.choice.files);
    const std::map<std::string, std::string> places = PlacesOf(files);
    return RunOnFiles(options.choice, files, "", terminal,
                      [&](const DataFile& file, const FoundFile& found, const Terminal& spool) {
                          const std::string& first = places.at(found.relative);
                          if (first != found.path) {
                              throw Failure(file.Name(),
                                            "its tables would go where those of " + first +
                                                " go; export it to a folder of its own");
                          }
                          return Exporter(file, found, options, spool).Export();
                      });
}

}  // namespace corvantis::tool
