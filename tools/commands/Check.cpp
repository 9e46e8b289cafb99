// Telling a file's findings.
#include "commands/Check.h"

#include <algorithm>

#include "commands/CheckStimulus.h"
#include "commands/Findings.h"
#include "output/RecordingJson.h"

namespace corvantis::tool {
namespace {

bool IsBefore(const Finding& a, const Finding& b) { return a.offset < b.offset; }

Outcome CheckFile(const DataFile& file, const CheckOptions& options, const Terminal& terminal) {
    Findings findings = FindingsOf(file);
    if (options.stimulus) {
        const Findings more = CheckStimuli(file, terminal);
        findings.insert(findings.end(), more.begin(), more.end());
        std::stable_sort(findings.begin(), findings.end(), IsBefore);
    }
    const bool isClean = AreClean(findings);
    const CorvantisRecordingInfo info = file.Info();
    if (options.choice.json) {
        Json json = RecordingJson(file);
        json["isClean"] = isClean;
        json["findings"] = FindingsJson(findings);
        json["problem"] = nullptr;
        terminal.Print("{}", json.dump());
    } else {
        PrintFindings(terminal, file, findings);
        if (isClean && !terminal.quiet) {
            terminal.Print("{}: clean, {} epochs in {} bytes\n", file.Name(),
                           file.Walk().survey.epochs.size(), info.size);
        }
    }
    return {isClean ? kFine : kFindings, info.epochs, std::ssize(findings)};
}

}  // namespace

int RunCheck(const CheckOptions& options, const Terminal& terminal) {
    return RunOnFiles(options.choice, "", terminal,
                      [&](const DataFile& file, const FoundFile& /*found*/, const Terminal& spool) {
                          return CheckFile(file, options, spool);
                      });
}

}  // namespace corvantis::tool
