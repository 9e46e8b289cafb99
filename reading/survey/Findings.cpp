// Findings of the header, the table, and the bytes that belong to no complete epoch.
#include "survey/Findings.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "text/Words.h"

namespace corvantis::reading {
namespace {

// Other readers of the format lose what lies beyond 2 GiB, taking offsets as signed.
constexpr int64_t kLargeFile = 1'900'000'000;

using Findings = std::vector<Finding>;

void CompareHeader(const FileView& file, const Survey& survey, Findings& findings) {
    const int64_t count = survey.numbers;
    const ITCFileHeader& header = file.Header();
    if (header.numEpochs != count) {
        findings.push_back({offsetof(ITCFileHeader, numEpochs), -1, "file header, numEpochs",
                            Say(header.numEpochs), Say(count, " epochs")});
    }
    if (count > 0 && file.RecordedTablePosition() != survey.tablePosition) {
        findings.push_back({offsetof(ITCFileHeader, epochTablePosition), -1,
                            "file header, epochTablePosition", Say(file.RecordedTablePosition()),
                            Say(survey.tablePosition, ", the end of the last epoch")});
    }
}

std::string Describe(int64_t found, int64_t expected, int64_t fileSize) {
    if (found >= fileSize) return Say(found, ", beyond the file's ", fileSize, " bytes");
    const std::string_view direction = found > expected ? "behind" : "in front of";
    return Say(found, ", ", std::abs(found - expected), " bytes ", direction, " it");
}

void CompareTable(const FileView& file, const Survey& survey, Findings& findings) {
    const int64_t table = survey.tablePosition;
    if (!survey.tableIsWhole) {
        findings.push_back({table, -1, "table of positions", "no whole table",
                            Say("the positions of ", survey.numbers, " epochs")});
        return;
    }
    const std::vector<uint32_t> positions = file.Positions(table, survey.numbers);
    for (const EpochPlace& epoch : survey.epochs) {
        const auto i = static_cast<size_t>(epoch.number);
        if (i >= positions.size() || positions[i] == epoch.start) continue;
        findings.push_back({table + kPositionSize * epoch.number, epoch.number,
                            Say("table of positions, epoch ", i),
                            Describe(positions[i], epoch.start, file.Size()),
                            Say(epoch.start, ", the epoch's start")});
    }
    if (survey.tableEntries > survey.numbers) {
        findings.push_back({table + kPositionSize * survey.numbers, -1, "table of positions",
                            Say(survey.tableEntries, " entries"),
                            Say(survey.numbers, ", one an epoch")});
    }
}

Finding OfStretch(const Stretch& stray) {
    const std::string bytes = Say(stray.end - stray.begin, " bytes");
    return {stray.begin, stray.number.value_or(-1),
            stray.number ? Say("epoch ", *stray.number, ", ", bytes)
                         : Say(bytes, " that belong to nothing"),
            stray.mismatch.found, stray.mismatch.expected};
}

Finding OfUnfinished(const UnfinishedEpoch& last, int64_t number) {
    return {last.place.start, number, Say("epoch ", number),
            Say(last.mismatch.found, " (", last.wholePoints, " of ", last.place.points, " points)"),
            last.mismatch.expected};
}

void ReportRest(const FileView& file, const Survey& survey, Findings& findings) {
    for (const Stretch& stray : survey.strays) findings.push_back(OfStretch(stray));
    for (const Remark& remark : survey.remarks) {
        findings.push_back({remark.offset, remark.number, Say("epoch ", remark.number),
                            remark.mismatch.found, remark.mismatch.expected,
                            remark.isDoubt ? CORVANTIS_DOUBT : CORVANTIS_NOTE});
    }
    if (survey.unfinished) findings.push_back(OfUnfinished(*survey.unfinished, survey.numbers));
    if (file.Size() > kLargeFile) {
        findings.push_back({kLargeFile, -1, "file size", Say(file.Size(), " bytes"),
                            "less than 2 GB, or other readers may lose what lies beyond",
                            CORVANTIS_NOTE});
    }
}

}  // namespace

std::vector<Finding> CompareWithSurvey(const FileView& file, const Survey& survey) {
    Findings findings;
    CompareHeader(file, survey, findings);
    CompareTable(file, survey, findings);
    ReportRest(file, survey, findings);
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
    return findings;
}

}  // namespace corvantis::reading
