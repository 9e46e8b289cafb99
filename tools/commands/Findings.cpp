// Findings as lines of text and as JSON.
#include "commands/Findings.h"

#include <algorithm>

#include "output/Text.h"

namespace corvantis::tool {

void PrintFindings(const Terminal& terminal, const std::string& path, const Findings& findings) {
    for (const Finding& finding : findings) {
        terminal.Print("{}: byte {}, {}: {}found {}, expected {}\n", DisplayText(path),
                       finding.offset, finding.where, finding.isNote ? "note: " : "", finding.found,
                       finding.expected);
    }
}

nlohmann::json ToJson(const std::string& path, const Findings& findings) {
    nlohmann::json list = nlohmann::json::array();
    for (const Finding& finding : findings) {
        list.push_back({{"offset", finding.offset},
                        {"where", finding.where},
                        {"found", finding.found},
                        {"expected", finding.expected},
                        {"severity", finding.isNote ? "note" : "fault"}});
    }
    return {{"file", DisplayText(path)}, {"clean", !HasFault(findings)}, {"findings", list}};
}

bool HasFault(const Findings& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return !finding.isNote; });
}

}  // namespace corvantis::tool
