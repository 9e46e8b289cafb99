// What the system knows of a file beyond its bytes: which one it is, and who uses it.
#pragma once

#include <cstdint>
#include <string>
#include <system_error>

namespace corvantis::tool {

class FileState {
  public:
    // Holds the file open. Throws a Failure.
    explicit FileState(const std::string& path);
    FileState(const FileState&) = delete;
    FileState& operator=(const FileState&) = delete;
    ~FileState();

    bool IsSame(const std::string& path) const;
    // Whether another program holds it open for recording.
    bool IsBeingRecorded() const;
    // The system's own descriptor or handle.
    intptr_t Handle() const { return handle_; }

  private:
    intptr_t handle_;
};

// One that leads elsewhere, also nowhere.
bool IsLink(const std::string& path);

// The system's words.
std::string ReasonOf(const std::error_code& error);

}  // namespace corvantis::tool
