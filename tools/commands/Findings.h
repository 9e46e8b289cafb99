// What `check` finds: where, what is there, and what should be there.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "output/Terminal.h"

namespace corvantis::tool {

struct Finding {
    int64_t offset = 0;  // [bytes]
    std::string where;
    std::string found;
    std::string expected;
    bool isNote = false;  // worth knowing, but nothing to repair, and no reason for exit code 1
};

using Findings = std::vector<Finding>;

void PrintFindings(const Terminal& terminal, const std::string& path, const Findings& findings);
nlohmann::json ToJson(const std::string& path, const Findings& findings);

bool HasFault(const Findings& findings);

}  // namespace corvantis::tool
