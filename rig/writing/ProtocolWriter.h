// The protocol of a recording, with every amount as it was stored, so that it can be recorded
// again.
#pragma once

#include <string>
#include <vector>

namespace corvantis::rig {

struct WrittenProtocol {
    std::string text;                  // JSON with comments
    std::vector<std::string> remarks;  // what cannot be played again as it was, and why
};

// Throws a Failure.
WrittenProtocol ProtocolOf(const std::string& recording);

}  // namespace corvantis::rig
