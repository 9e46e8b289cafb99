// Files of temporary names, which nothing that ends the program leaves behind for long.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <string>

namespace corvantis::tool {

// Beside the path. Signals that end the program remove it; one that is killed leaves it, and the
// next program that makes one in that folder removes it.
class TemporaryFile {
  public:
    // Throws a Failure.
    TemporaryFile(const std::string& path, mode_t mode);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    // Removes the name, unless it has been given up.
    ~TemporaryFile();

    const std::string& Name() const { return name_; }
    int Descriptor() const { return descriptor_; }  // for its user to close
    // It has another name now.
    void GiveUp();

  private:
    std::string name_;
    int descriptor_ = -1;
    size_t slot_ = 0;
};

// As many threads may have one each.
inline constexpr size_t kMostTemporaryFiles = 64;

}  // namespace corvantis::tool
