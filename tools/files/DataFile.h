// An open data file: its bytes at any offset, and its file header.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Corvantis.h"

namespace corvantis::tool {

struct CloseStream {
    void operator()(FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<FILE, CloseStream>;

class DataFile {
  public:
    // Throws a Failure for anything that is not a readable data file of version 8 or below.
    explicit DataFile(std::string path);

    const std::string& Path() const { return path_; }
    int64_t Size() const { return size_; }
    const ITCFileHeader& Header() const { return header_; }
    // As the header records it; without meaning while it counts no epoch.
    int64_t RecordedTablePosition() const {
        return static_cast<uint32_t>(header_.epochTablePosition);
    }
    bool IsSame(const std::string& path) const;
    // Whether another program holds it open for recording.
    bool IsBeingRecorded() const;
    // The first offset from there on that is not in a hole; the file's size if there is none.
    int64_t NextData(int64_t position) const;
    struct stat Status() const;

    // The stream, positioned for one of the codecs.
    FILE* At(int64_t position) const;
    // As many of the bytes as the file has.
    std::vector<uint8_t> Bytes(int64_t position, int64_t count) const;
    // Throws a Failure if the file does not have them all (any more).
    void Read(int64_t position, std::span<uint8_t> bytes) const;
    // As many of the table's values as the file has.
    std::vector<uint32_t> Positions(int64_t position, int64_t count) const;

  private:
    std::string path_;
    Stream stream_;
    int64_t size_ = 0;
    ITCFileHeader header_ = {};
};

// Where the first epoch begins, and so the first value of every table.
inline constexpr int64_t kFirstEpoch = sizeof(ITCFileHeader);
inline constexpr int64_t kEpochHeaderSize = sizeof(ITCEpochHeader);
inline constexpr int64_t kPositionSize = sizeof(uint32_t);

}  // namespace corvantis::tool
