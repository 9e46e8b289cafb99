// Comparing what the header and the table say with what lies in the file.
#include "commands/Check.h"

#include <fmt/core.h>

#include <algorithm>

#include "commands/CheckStimulus.h"
#include "files/Failure.h"
#include "output/Text.h"

namespace corvantis::tool {
namespace {

// Other readers of the format lose what lies beyond 2 GiB, taking offsets as signed.
constexpr int64_t kLargeFile = 1'900'000'000;

std::string Bytes(int64_t count) { return fmt::format("{} bytes", count); }

void CompareHeader(const DataFile& file, const Survey& survey, Findings& findings) {
    const int64_t count = survey.numbers;
    const ITCFileHeader& header = file.Header();
    if (header.numEpochs != count) {
        findings.push_back({offsetof(ITCFileHeader, numEpochs), "file header, numEpochs",
                            std::to_string(header.numEpochs), fmt::format("{} epochs", count)});
    }
    if (count > 0 && file.RecordedTablePosition() != survey.tablePosition) {
        findings.push_back({offsetof(ITCFileHeader, epochTablePosition),
                            "file header, epochTablePosition",
                            std::to_string(file.RecordedTablePosition()),
                            fmt::format("{}, the end of the last epoch", survey.tablePosition)});
    }
}

std::string Describe(int64_t found, int64_t expected, int64_t fileSize) {
    if (found >= fileSize) return fmt::format("{}, beyond the file's {} bytes", found, fileSize);
    const char* direction = found > expected ? "behind" : "in front of";
    return fmt::format("{}, {} bytes {} it", found, std::abs(found - expected), direction);
}

void CompareTable(const DataFile& file, const Survey& survey, Findings& findings) {
    const int64_t table = survey.tablePosition;
    if (!survey.tableIsWhole) {
        findings.push_back({table, "table of positions", "no whole table",
                            fmt::format("the positions of {} epochs", survey.numbers)});
        return;
    }
    const std::vector<uint32_t> positions = file.Positions(table, survey.numbers);
    for (const EpochPlace& epoch : survey.epochs) {
        const auto i = static_cast<size_t>(epoch.number);
        if (i >= positions.size() || positions[i] == epoch.start) continue;
        findings.push_back({table + kPositionSize * epoch.number,
                            fmt::format("table of positions, epoch {}", i),
                            Describe(positions[i], epoch.start, file.Size()),
                            fmt::format("{}, the epoch's start", epoch.start)});
    }
    if (survey.tableEntries > survey.numbers) {
        findings.push_back({table + kPositionSize * survey.numbers, "table of positions",
                            fmt::format("{} entries", survey.tableEntries),
                            fmt::format("{}, one an epoch", survey.numbers)});
    }
}

void ReportRest(const DataFile& file, const Survey& survey, Findings& findings) {
    for (const Stretch& stray : survey.strays) {
        const std::string bytes = Bytes(stray.end - stray.begin);
        findings.push_back({stray.begin,
                            stray.number ? fmt::format("epoch {}, {}", *stray.number, bytes)
                                         : fmt::format("{} that belong to nothing", bytes),
                            stray.mismatch.found, stray.mismatch.expected});
    }
    for (const Remark& remark : survey.remarks) {
        findings.push_back({remark.offset, fmt::format("epoch {}", remark.number),
                            remark.mismatch.found, remark.mismatch.expected, !remark.isDoubt});
    }
    if (survey.unfinished) {
        const UnfinishedEpoch& last = *survey.unfinished;
        findings.push_back({last.place.start, fmt::format("epoch {}", survey.numbers),
                            fmt::format("{} ({} of {} points)", last.mismatch.found,
                                        last.wholePoints, last.place.points),
                            last.mismatch.expected});
    }
    if (file.Size() > kLargeFile) {
        findings.push_back({kLargeFile, "file size", Bytes(file.Size()),
                            "less than 2 GB, or other readers may lose what lies beyond", true});
    }
}

void ReportRecording(const DataFile& file, Findings& findings) {
    if (!file.IsBeingRecorded()) return;
    findings.push_back({0, "file", "a program that is recording it",
                        "a recording that is closed, or a save may be under way", true});
}

struct Outcome {
    nlohmann::json json;
    int code = kFine;
};

Outcome CheckFile(const std::string& path, const CheckOptions& options, const Terminal& terminal) {
    const DataFile file(path);
    const Survey survey = SurveyFile(file, terminal);
    Findings findings = CompareWithSurvey(file, survey);
    ReportRecording(file, findings);
    if (options.stimulus) {
        const Findings more = CheckStimuli(file, survey.epochs, terminal);
        findings.insert(findings.end(), more.begin(), more.end());
    }
    if (!options.json) {
        PrintFindings(terminal, path, findings);
        if (!HasFault(findings) && !terminal.quiet) {
            terminal.Print("{}: clean, {} epochs in {} bytes\n", DisplayText(path),
                           survey.epochs.size(), file.Size());
        }
    }
    return {ToJson(path, findings), HasFault(findings) ? kFindings : kFine};
}

}  // namespace

Findings CompareWithSurvey(const DataFile& file, const Survey& survey) {
    Findings findings;
    CompareHeader(file, survey, findings);
    CompareTable(file, survey, findings);
    ReportRest(file, survey, findings);
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
    return findings;
}

int RunCheck(const CheckOptions& options, const Terminal& terminal) {
    int code = kFine;
    nlohmann::json list = nlohmann::json::array();
    for (const std::string& path : options.files) {
        try {
            const Outcome outcome = CheckFile(path, options, terminal);
            list.push_back(outcome.json);
            code = std::max(code, outcome.code);
        } catch (const Failure& failure) {
            terminal.Say("corvantis: {}\n", DisplayText(failure.what()));
            list.push_back({{"file", DisplayText(path)}, {"error", DisplayText(failure.what())}});
            code = kUnusable;
        }
    }
    if (options.json) terminal.Print("{}\n", list.dump(2));
    return code;
}

}  // namespace corvantis::tool
