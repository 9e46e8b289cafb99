// Failures of calls of Windows.
#pragma once

#include <string>

#include "ITCUtilities/WindowsMessage.h"
#include "files/Failure.h"

namespace corvantis::tool {

// With the system's reason for the call that has just failed.
inline Failure WindowsFailure(const std::string& path) {
    return {path, WindowsMessage(GetLastError())};
}

}  // namespace corvantis::tool
