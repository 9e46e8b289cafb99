// Findings as lines of text and as JSON.
#include "commands/Findings.h"

#include <algorithm>

#include "output/RecordingJson.h"

namespace corvantis::tool {

Findings FindingsOf(const DataFile& file) {
    Findings findings = file.Walk().findings;
    if (file.State().IsBeingRecorded()) {
        findings.insert(findings.begin(),
                        {0, -1, "file", "a program that is recording it",
                         "a recording that is closed, or a save may be under way", CORVANTIS_NOTE});
    }
    return findings;
}

void PrintFindings(const Terminal& terminal, const DataFile& file, const Findings& findings) {
    for (const Finding& finding : findings) {
        const char* note = finding.weight == CORVANTIS_NOTE ? "note: " : "";
        terminal.Print("{}: byte {}, {}: {}found {}, expected {}\n", file.Name(), finding.offset,
                       finding.place, note, finding.found, finding.expected);
    }
}

Json FindingsJson(const Findings& findings) {
    Json list = Json::array();
    for (const Finding& finding : findings) list.push_back(FindingJson(finding));
    return list;
}

bool AreClean(const Findings& findings) {
    return std::all_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.weight == CORVANTIS_NOTE; });
}

}  // namespace corvantis::tool
