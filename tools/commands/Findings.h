// What `check` finds: where, what is there, and what should be there.
#pragma once

#include <vector>

#include "files/DataFile.h"
#include "output/RecordValues.h"
#include "output/Terminal.h"
#include "survey/Findings.h"

namespace corvantis::tool {

using reading::Finding;
using Findings = std::vector<Finding>;

// In the order of their offsets. Throws a Failure if the file's bytes do not come.
Findings FindingsOf(const DataFile& file);

void PrintFindings(const Terminal& terminal, const DataFile& file, const Findings& findings);
Json FindingsJson(const Findings& findings);
// Notes are worth knowing, but nothing to repair, and no reason for exit code 1.
bool AreClean(const Findings& findings);

}  // namespace corvantis::tool
