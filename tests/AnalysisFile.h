// What an analysis program has: a session with buffers of its own, and a file, put together here
// from bytes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"

namespace corvantis_test {

class AnalysisSession {
  public:
    explicit AnalysisSession(int32_t capacity = 4096) {
        EXPECT_EQ(ITCInitializeAnalysis(capacity), ITC_SUCCESS);
    }
    AnalysisSession(const AnalysisSession&) = delete;
    AnalysisSession& operator=(const AnalysisSession&) = delete;
    ~AnalysisSession() {
        ITCCloseOpenFile();
        ITCFinishAnalysis();
    }
};

// A started analysis program and the one file that it opens.
class AnalysisTest : public testing::Test {
  protected:
    void Open(const Bytes& file, int32_t expected = ITC_SUCCESS) {
        WriteFile(path, file);
        ITCCloseOpenFile();
        ASSERT_EQ(ITCOpenFileForInput(path.c_str()), expected);
    }

    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
    const AnalysisSession session;
};

// The header, the epochs one behind the other, and the table of their positions.
inline Bytes DataFileBytes(uint8_t version, const std::vector<Bytes>& epochs) {
    Bytes body, table;
    for (const Bytes& epoch : epochs) {
        table = Join({table, Big32(static_cast<uint32_t>(580 + body.size()))});
        body = Join({body, epoch});
    }
    const auto count = static_cast<uint32_t>(epochs.size());
    const auto end = static_cast<uint32_t>(580 + body.size());
    return Join({FileHeaderBytes(version, count, end), body, table});
}

inline Bytes Words(std::initializer_list<int64_t> values) {
    Bytes bytes;
    for (const int64_t value : values) bytes = Join({bytes, Big32(static_cast<uint32_t>(value))});
    return bytes;
}

}  // namespace corvantis_test
