// The bytes of a recording as one operation sees them: any place at any time, through a window that
// follows where the reading goes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "Corvantis.h"
#include "CorvantisReading.h"

namespace corvantis::reading {

// Where a recording's bytes come from; unlike the view, shared by all threads.
struct ByteSource {
    CorvantisSource source = {};
    // The first offset from there on that is not in a hole; null where holes are not known.
    int64_t (*nextData)(void* context, int64_t offset) = nullptr;
};

// What a recording was when it was opened or last refreshed.
struct Snapshot {
    int64_t size = 0;
    ITCFileHeader header = {};
};

enum class ReadFault { kNone, kFailed, kShort };

// A failed or short read stays with the view: from then on the file seems to end at 0, so that
// whoever walks through it comes to an end, and asks at that end whether it did fail.
class FileView {
  public:
    FileView(const ByteSource& source, const Snapshot& snapshot);
    FileView(const FileView&) = delete;
    FileView& operator=(const FileView&) = delete;
    ~FileView();

    int64_t Size() const { return size_; }
    const ITCFileHeader& Header() const { return header_; }
    // As the header records it; without meaning while it counts no epoch.
    int64_t RecordedTablePosition() const {
        return static_cast<uint32_t>(header_.epochTablePosition);
    }
    // The first offset from there on that is not in a hole; the file's size if there is none.
    int64_t NextData(int64_t position) const;

    // As many of the bytes as the file has, up to kLargestPeek, valid until the next call.
    std::span<const uint8_t> Peek(int64_t position, int64_t count) const;
    // Has the window hold the bytes there before they are asked for, if they are few.
    void Expect(int64_t position, int64_t count) const;
    // All of the bytes, into the caller's memory; false if they are not there.
    bool Read(int64_t position, void* bytes, int64_t count) const;
    // As many of the bytes as the file has.
    std::vector<uint8_t> Bytes(int64_t position, int64_t count) const;
    // As many of a table's values as the file has.
    std::vector<uint32_t> Positions(int64_t position, int64_t count) const;

    ReadFault Fault() const { return fault_; }
    int64_t FaultOffset() const { return faultOffset_; }
    void Fail(ReadFault fault, int64_t offset) const;

    static constexpr int64_t kLargestPeek = 1 << 16;

  private:
    bool IsInWindow(int64_t position, int64_t count) const;
    bool Fetch(int64_t position, uint8_t* bytes, int64_t count) const;
    void MoveWindow(int64_t position, int64_t count) const;

    const ByteSource& source_;
    const ITCFileHeader& header_;
    mutable int64_t size_;
    mutable ReadFault fault_ = ReadFault::kNone;
    mutable int64_t faultOffset_ = -1;
    mutable int64_t windowStart_ = 0;
    mutable int64_t windowSize_ = 0;
    mutable int64_t windowReach_;  // how much the next window takes
    mutable std::vector<uint8_t> window_;
};

// Where the first epoch begins, and so the first value of every table.
inline constexpr int64_t kFirstEpoch = sizeof(ITCFileHeader);
inline constexpr int64_t kEpochHeaderSize = sizeof(ITCEpochHeader);
inline constexpr int64_t kPositionSize = sizeof(uint32_t);

}  // namespace corvantis::reading
