// Walking folders.
#include "files/FoundFiles.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "files/FileState.h"
#include "files/Path.h"

namespace corvantis::tool {
namespace {

namespace fs = std::filesystem;

// Sorted, so that the order is the same everywhere.
std::vector<fs::directory_entry> EntriesOf(const fs::path& folder, std::error_code& error) {
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (!TextOf(entry->path().filename()).starts_with('.')) entries.push_back(*entry);
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

void AddFolder(const fs::path& folder, const fs::path& below, std::vector<FoundFile>& files) {
    std::error_code error;
    for (const fs::directory_entry& entry : EntriesOf(folder, error)) {
        std::error_code none;
        const fs::path relative = below / entry.path().filename();
        if (entry.is_directory(none) && !IsLink(TextOf(entry.path()))) {
            AddFolder(entry.path(), relative, files);
        } else if (entry.is_regular_file(none)) {
            files.push_back({TextOf(entry.path()), TextOf(relative), false});
        }
    }
    if (error) files.push_back({TextOf(folder), TextOf(below), true, ReasonOf(error)});
}

}  // namespace

bool IsFolder(const std::string& path) {
    std::error_code none;
    return fs::is_directory(PathOf(path), none);
}

std::vector<FoundFile> FindFiles(const std::vector<std::string>& arguments) {
    std::vector<FoundFile> files;
    for (const std::string& argument : arguments) {
        if (IsFolder(argument)) {
            AddFolder(PathOf(argument), {}, files);
        } else {
            files.push_back({argument, TextOf(PathOf(argument).filename())});
        }
    }
    return files;
}

}  // namespace corvantis::tool
