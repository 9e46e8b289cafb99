// Where a recording that ended early left its protocol.
#pragma once

#include <string>

#include "session/FileComment.h"

namespace corvantis::rig {

struct Resumption {
    std::string protocolPath;
    Origin origin;  // `first` is the first epoch that is still to be played
};

// Throws a Failure if the recording is not one of a protocol.
Resumption ResumptionOf(const std::string& recording);

}  // namespace corvantis::rig
