// A started library with sample buffers of its own, and a folder for its files, for one test.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "Corvantis.h"

namespace corvantis_test {

inline void FreeChannels() {
    for (uint32_t channel = 0; channel < ITC_CHANNELS; ++channel) ITCFreeParams(channel);
}

// Gives blocks of the library back and forgets them.
template <class... Block>
void Drop(Block*&... block) {
    (ITCFree(block), ...);
    ((block = nullptr), ...);
}

// The results of calls in their order.
using Results = std::vector<int32_t>;

// A sum with room for so many components.
inline int32_t InstallSum(int32_t channel, int32_t count) {
    ITCSummedParameters sum{.count = count, .componentType = {}, .components = {}};
    return ITCSummedParams(channel, &sum);
}

// Swallows what the library prints while it lives; Text() ends the capture and returns it.
#if GTEST_HAS_STREAM_REDIRECTION
class QuietOutput {
  public:
    QuietOutput() { testing::internal::CaptureStdout(); }
    ~QuietOutput() {
        if (!taken) Text();
    }
    std::string Text() {
        taken = true;
        return testing::internal::GetCapturedStdout();
    }

  private:
    bool taken = false;
};
#else
struct [[maybe_unused]] QuietOutput {};
#endif

// Started with the simulated device; everything the library's ending leaves behind is released.
class LibrarySession {
  public:
    explicit LibrarySession(int32_t capacity = 65536, bool mayFail = false)
        : input(capacity), output(capacity) {
        const QuietOutput quiet;
        result = ITCInit(&inputBuffer, &outputBuffer, &capacity, 0);
        EXPECT_TRUE(result == ITC_SUCCESS || mayFail);
    }
    ~LibrarySession() {
        FreeChannels();
        ITCCloseFile();
        if (ITCFinish() != ITC_SUCCESS) Drop(epochhdr, filehdr, EpochPosition);
        Drop(ITCbufsize, itc);
    }

    int32_t result;
    std::vector<uint16_t> input, output;
    uint16_t* inputBuffer = input.data();
    uint16_t* outputBuffer = output.data();
};

// A folder that goes with its content when the test ends.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        static int count = 0;
        const auto base = std::filesystem::temp_directory_path();
        do {
            path = base / ("corvantis-" + std::to_string(getpid()) + "-" + std::to_string(++count));
        } while (!std::filesystem::create_directory(path));
    }
    // What is still open there stays, on systems that do not let go of open files.
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }
    std::string File(const std::string& name) const { return (path / name).string(); }

    std::filesystem::path path;
};

// A held deviate leaves the state word as it is, a new pair restarts from it.
inline void DropSpareDeviate() {
    int32_t word = -1;
    ITCNormalDeviate(&word);
    if (word != -1) ITCNormalDeviate(&word);
}

}  // namespace corvantis_test
