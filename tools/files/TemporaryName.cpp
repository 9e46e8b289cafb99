// Random names, and those of a folder.
#include "files/TemporaryName.h"

#include <fmt/core.h>

#include <filesystem>
#include <random>
#include <set>

#include "files/Path.h"

namespace corvantis::tool {
namespace {

namespace fs = std::filesystem;

constexpr char kPrefix[] = ".corvantis-";

}  // namespace

// Short, since the file's own name may be as long as names can be.
std::string TemporaryName(const std::string& path) {
    static thread_local std::mt19937_64 random{std::random_device{}()};
    const std::string name = fmt::format("{}{:012x}", kPrefix, random() >> 16);
    return TextOf(PathOf(path).replace_filename(name));
}

std::vector<std::string> TemporaryFilesBeside(const std::string& path) {
    static std::set<fs::path> done;
    std::vector<std::string> names;
    std::error_code none;
    const fs::path parent = PathOf(path).parent_path();
    const fs::path folder = parent.empty() ? fs::path(".") : parent;
    const fs::path known = fs::canonical(folder, none);
    if (none || !done.insert(known).second) return names;
    for (fs::directory_iterator entry(folder, none), end; entry != end; entry.increment(none)) {
        if (!entry->is_regular_file(none) || entry->is_symlink(none)) continue;
        if (TextOf(entry->path().filename()).starts_with(kPrefix)) {
            names.push_back(TextOf(entry->path()));
        }
    }
    return names;
}

}  // namespace corvantis::tool
