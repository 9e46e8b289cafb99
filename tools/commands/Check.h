// `corvantis check`: what is wrong with a file's container, and which stimuli can be rebuilt.
#pragma once

#include <string>
#include <vector>

#include "commands/Findings.h"
#include "files/DataFile.h"
#include "output/Terminal.h"
#include "survey/Survey.h"

namespace corvantis::tool {

struct CheckOptions {
    std::vector<std::string> files;
    bool stimulus = false;
    bool json = false;
};

Findings CompareWithSurvey(const DataFile& file, const Survey& survey);

// 0 if all files are clean, 1 for findings, 2 if one cannot be read; the others are still checked.
int RunCheck(const CheckOptions& options, const Terminal& terminal);

}  // namespace corvantis::tool
