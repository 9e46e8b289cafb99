// The files that a command line names, those in folders included.
#pragma once

#include <string>
#include <vector>

namespace corvantis::tool {

struct FoundFile {
    std::string path;
    // Below the folder that was named; of a file that was named, its name alone.
    std::string relative;
    bool isNamed = true;       // else one of a folder, which may hold other things as well
    std::string refusal = {};  // of a folder that cannot be read
};

// In the order of the arguments, and within a folder in that of their names. Hidden ones, and
// folders behind links, are left out.
std::vector<FoundFile> FindFiles(const std::vector<std::string>& arguments);

bool IsFolder(const std::string& path);

}  // namespace corvantis::tool
