// Files of temporary names, which nothing that ends the program leaves behind for long.
#pragma once

#include <cstddef>
#include <string>

#include "files/FileState.h"

namespace corvantis::tool {

// Who may read the file, once it has its name: whoever may read new files, or the owner alone.
enum class Readers { kUsual, kOwner };

// A program that is ended removes its own; one that is killed may leave it, and the next program
// that makes one in that folder removes it.
class TemporaryFile {
  public:
    // For a file of that path, and beside it. Throws a Failure.
    TemporaryFile(const std::string& path, Readers readers);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    // Removes the name, if the file still has it.
    ~TemporaryFile();

    int Descriptor() const { return descriptor_; }  // for its user to close
    // Nobody may do with the file what they may not with the other one, of readers kOwner. Throws a
    // Failure.
    void TakeRights(const FileState& other);
    // Forces the bytes to the disk and gives the file its path. False if there is a file of that
    // path, which then stays unless it may be replaced. Throws a Failure.
    bool TakePath(bool replace);

  private:
    std::string path_;
    std::string name_;
    int descriptor_ = -1;
    size_t slot_ = 0;
};

// As many threads may have one each.
inline constexpr size_t kMostTemporaryFiles = 64;

}  // namespace corvantis::tool
