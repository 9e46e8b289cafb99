// A library that is started once for all inputs, and a data file in memory that it can open by
// path.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace corvantis_fuzz {

// Small, so that an input cannot buy much work with a large count.
inline constexpr int32_t kBufferSamples = 1024;

// Starts the library for analysis at the first call.
void StartLibrary();

// Release the records of all slots with their components, which reading anew would lose.
void ReleaseStimuli();

// A file that lives in memory and goes with this object.
class MemoryFile {
  public:
    MemoryFile(const uint8_t* data, size_t size);
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();
    const std::string& Path() const { return path_; }

  private:
    int descriptor_;
    std::string path_;
};

// Open the file and call every function that reads from it, for some of its epochs; the choice, any
// number, picks channel and component.
void ExerciseFile(const std::string& path, uint32_t choice);

}  // namespace corvantis_fuzz
