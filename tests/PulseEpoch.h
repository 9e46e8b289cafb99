// The smallest experiment, four points of a pulse on every entry: as library calls and as bytes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"

namespace corvantis_test {

// A started library, and a folder with the one file of the test.
class RecordingTest : public testing::Test {
  protected:
    explicit RecordingTest(int32_t capacity = 65536) : session(capacity) {}
    int32_t Create() const { return ITCCreateFile(path.c_str(), 1); }
    int32_t Open() const { return ITCOpenFile(path.c_str()); }
    void Open(const Bytes& file) const {
        WriteFile(path, file);
        ITCCloseFile();
        ASSERT_EQ(Open(), ITC_SUCCESS);
    }

    LibrarySession session;
    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
};

constexpr int32_t kPulseEpochPoints = 4;
constexpr ITCPulseParameters kPulse = {1000, -5, 2, 1, 1, {}};

inline Bytes PulseBytes() {
    return Hex("000003E8 FFFFFFFB 00000002 00000001 00000001 00000000 00000000 00000000");
}

// 100 µs for each entry; entry c reads input c and drives output c.
inline void SetUpAcquisition(int32_t entries, int32_t points) {
    const std::string channels = std::string("0123").substr(0, static_cast<size_t>(entries));
    ASSERT_EQ(ITCSetSeq(channels.c_str(), channels.c_str()), 0);
    ASSERT_EQ(ITCSetAcqParams(100 * entries, points, 0, 0), 0);
}

inline void SetUpPulseEpoch(int32_t entries = 1) {
    SetUpAcquisition(entries, kPulseEpochPoints);
    for (int32_t i = 0; i < entries; ++i) ASSERT_EQ(ITCPulseParams(i, &kPulse), 0);
}

// 912 + 32 * entries + 2 * samples bytes.
inline Bytes PulseEpochBytes(const Samples& samples) {
    const auto entries = static_cast<uint32_t>(samples.size() / kPulseEpochPoints);
    Bytes epoch = EpochHeaderBytes(100 * entries, kPulseEpochPoints, Bytes(entries, 3));
    for (uint32_t i = 0; i < entries; ++i) epoch = Join({epoch, PulseBytes()});
    return Join({epoch, BigSamples(samples)});
}

// The header, the epochs one behind the other, and the table of their positions.
inline Bytes DataFileBytes(const std::vector<Bytes>& epochs, uint8_t version = 8) {
    Bytes file(580), table;
    for (const Bytes& epoch : epochs) {
        table = Join({table, Big32(static_cast<uint32_t>(file.size()))});
        file = Join({file, epoch});
    }
    Put(file, 0,
        FileHeaderBytes(version, static_cast<uint32_t>(epochs.size()),
                        static_cast<uint32_t>(file.size())));
    return Join({file, table});
}

// A file of one epoch of one entry: header, epoch of 952 bytes at 580, table at 1532.
inline Bytes PulseFileBytes(uint8_t version = 8) {
    return DataFileBytes({PulseEpochBytes({1, 2, 3, 4})}, version);
}

}  // namespace corvantis_test
