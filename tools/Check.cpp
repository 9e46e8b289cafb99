// Comparing what the header and the table say with what lies in the file.
#include "Check.h"

#include <fmt/core.h>

#include <algorithm>

#include "CheckStimulus.h"
#include "Failure.h"
#include "Text.h"

namespace corvantis {
namespace {

// Other readers of the format lose what lies beyond 2 GiB, taking offsets as signed.
constexpr int64_t kLargeFile = 1'900'000'000;

std::string Bytes(int64_t count) { return fmt::format("{} bytes", count); }

void CompareHeader(const DataFile& file, const Survey& survey, Findings& findings) {
    const auto count = static_cast<int64_t>(survey.epochs.size());
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
    const size_t count = survey.epochs.size();
    if (!survey.tableIsWhole) {
        findings.push_back({table, "table of positions", "no whole table",
                            fmt::format("the positions of {} epochs", count)});
        return;
    }
    const std::vector<uint32_t> positions = file.Positions(table, static_cast<int64_t>(count));
    for (size_t i = 0; i < count && i < positions.size(); ++i) {
        const int64_t start = survey.epochs[i].start;
        if (positions[i] == start) continue;
        findings.push_back({table + kPositionSize * static_cast<int64_t>(i),
                            fmt::format("table of positions, epoch {}", i),
                            Describe(positions[i], start, file.Size()),
                            fmt::format("{}, the epoch's start", start)});
    }
    if (survey.tableEntries > static_cast<int64_t>(count)) {
        findings.push_back({table + kPositionSize * static_cast<int64_t>(count),
                            "table of positions", fmt::format("{} entries", survey.tableEntries),
                            fmt::format("{}, one an epoch", count)});
    }
}

void ReportRest(const DataFile& file, const Survey& survey, Findings& findings) {
    for (const Stretch& stray : survey.strays) {
        findings.push_back(
            {stray.begin, fmt::format("{} that belong to nothing", Bytes(stray.end - stray.begin)),
             stray.mismatch.found, stray.mismatch.expected});
    }
    if (survey.unfinished) {
        const UnfinishedEpoch& last = *survey.unfinished;
        findings.push_back({last.place.start, fmt::format("epoch {}", survey.epochs.size()),
                            fmt::format("{} ({} of {} points)", last.mismatch.found,
                                        last.wholePoints, last.place.points),
                            last.mismatch.expected});
    }
    if (file.Size() > kLargeFile) {
        findings.push_back({kLargeFile, "file size", Bytes(file.Size()),
                            "less than 2 GB, or other readers may lose what lies beyond", true});
    }
}

struct Outcome {
    nlohmann::json json;
    int code = kFine;
};

Outcome CheckFile(const std::string& path, const CheckOptions& options, const Terminal& terminal) {
    const DataFile file(path);
    const Survey survey = SurveyFile(file, terminal);
    Findings findings = CompareWithSurvey(file, survey);
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

}  // namespace corvantis
