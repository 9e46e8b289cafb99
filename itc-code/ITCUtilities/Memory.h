// Library-owned blocks that release themselves, for work that may end early.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

namespace corvantis {

// Of whichever library these rooms are part of: each has its own allocation pair. Null without
// memory; a null block may be released.
void* AllocateBlock(size_t size);
void ReleaseBlock(void* block);

struct BlockRelease {
    void operator()(void* block) const { ReleaseBlock(block); }
};
template <class T>
using OwnedBlock = std::unique_ptr<T[], BlockRelease>;

// A block of `count` elements, not cleared; null for a count that is negative or beyond memory.
template <class T>
OwnedBlock<T> AllocateArray(int64_t count) {
    if (count < 0 || static_cast<uint64_t>(count) > PTRDIFF_MAX / sizeof(T)) return nullptr;
    // Nothing to hold is no failure, whatever the platform's malloc makes of a size of 0.
    const size_t size = count == 0 ? 1 : static_cast<size_t>(count) * sizeof(T);
    return OwnedBlock<T>(static_cast<T*>(AllocateBlock(size)));
}

template <class T>
OwnedBlock<T> AllocateZeroed(int64_t count) {
    OwnedBlock<T> block = AllocateArray<T>(count);
    if (block != nullptr) std::memset(block.get(), 0, static_cast<size_t>(count) * sizeof(T));
    return block;
}

}  // namespace corvantis
