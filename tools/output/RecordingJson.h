// Recordings as JSON, by the schema that docs/json.md describes.
#pragma once

#include <string>
#include <vector>

#include "files/DataFile.h"
#include "files/EpochRecords.h"
#include "files/Failure.h"
#include "output/RecordValues.h"
#include "survey/Findings.h"

namespace corvantis::tool {

inline constexpr int kSchemaVersion = 1;

// Without epochs and findings, and without the problem that may yet come up.
Json RecordingJson(const DataFile& file);
// Of a file that could not be read to its end, or not at all.
Json FailureJson(const std::string& name, const Failure& failure);
Json EpochJson(const DataFile& file, const EpochRecords& epoch);
Json LostJson(const LostEpochs& lost);
Json FindingJson(const reading::Finding& finding);

}  // namespace corvantis::tool
