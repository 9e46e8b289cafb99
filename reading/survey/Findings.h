// Comparing what the header and the table say with what lies in the file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bytes/FileView.h"
#include "survey/Survey.h"

namespace corvantis::reading {

struct Finding {
    int64_t offset = 0;  // [bytes]
    int64_t epoch = -1;
    std::string place;
    std::string found;
    std::string expected;
    CorvantisWeight weight = CORVANTIS_FAULT;
};

// In the order of their offsets.
std::vector<Finding> CompareWithSurvey(const FileView& file, const Survey& survey);

}  // namespace corvantis::reading
