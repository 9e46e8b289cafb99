// A lock between threads. On hosts without threads the C++ library has none, and nobody to lock
// out.
#pragma once

#if defined(__STDCPP_THREADS__)

#include <mutex>

namespace corvantis {

using Mutex = std::mutex;
using Lock = std::scoped_lock<std::mutex>;

}  // namespace corvantis

#else

namespace corvantis {

struct Mutex {};

struct Lock {
    explicit Lock(Mutex&) {}
};

}  // namespace corvantis

#endif
