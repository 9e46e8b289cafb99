// Names of temporary files: made, and found again where a killed program has left the file.
#pragma once

#include <string>
#include <vector>

namespace corvantis::tool {

// Beside the path.
std::string TemporaryName(const std::string& path);

// The temporary files that are there already, in use or left; of each folder once. By one thread at
// a time.
std::vector<std::string> TemporaryFilesBeside(const std::string& path);

}  // namespace corvantis::tool
