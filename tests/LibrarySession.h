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

// A sum with room for so many components.
inline int32_t InstallSum(int32_t channel, int32_t count) {
    ITCSummedParameters sum{.count = count, .componentType = {}, .components = {}};
    return ITCSummedParams(channel, &sum);
}

// Swallows what the library prints while it lives; Text() ends the capture and returns it.
class QuietOutput {
  public:
    QuietOutput() { testing::internal::CaptureStdout(); }
    QuietOutput(const QuietOutput&) = delete;
    QuietOutput& operator=(const QuietOutput&) = delete;
    ~QuietOutput() {
        if (!taken) testing::internal::GetCapturedStdout();
    }
    std::string Text() {
        taken = true;
        return testing::internal::GetCapturedStdout();
    }

  private:
    bool taken = false;
};

// Started with the simulated device; everything the library's ending leaves behind is released.
class LibrarySession {
  public:
    explicit LibrarySession(int32_t capacity = 65536)
        : input(static_cast<size_t>(capacity)), output(static_cast<size_t>(capacity)) {
        const QuietOutput quiet;
        EXPECT_EQ(ITCInit(&inputBuffer, &outputBuffer, &capacity, 0), ITC_SUCCESS);
    }
    LibrarySession(const LibrarySession&) = delete;
    LibrarySession& operator=(const LibrarySession&) = delete;
    ~LibrarySession() {
        FreeChannels();
        ITCCloseFile();
        ITCFinish();
        ITCFree(ITCbufsize);
        ITCFree(itc);
        ITCbufsize = nullptr;
        itc = nullptr;
    }

    std::vector<uint16_t> input;
    std::vector<uint16_t> output;
    uint16_t* inputBuffer = input.data();
    uint16_t* outputBuffer = output.data();
};

// A folder that goes with its content when the test ends.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "corvantis-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) ADD_FAILURE() << "no temporary folder";
        path = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::string File(const std::string& name) const { return (path / name).string(); }

    std::filesystem::path path;
};

}  // namespace corvantis_test
