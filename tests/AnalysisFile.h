// What an analysis program has: a session with buffers of its own, a file, put together here from
// bytes, and the getters by epoch number.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"

namespace corvantis_test {

// A started analysis program and the one file that it opens.
class AnalysisTest : public testing::Test {
  protected:
    AnalysisTest() { EXPECT_EQ(ITCInitializeAnalysis(4096), ITC_SUCCESS); }
    ~AnalysisTest() override {
        ITCCloseOpenFile();
        ITCFinishAnalysis();
    }
    void Open(const Bytes& file) {
        WriteFile(path, file);
        ITCCloseOpenFile();
        ASSERT_EQ(ITCOpenFileForInput(path.c_str()), ITC_SUCCESS);
    }

    const TemporaryFolder folder;
    const std::string path = folder.File("data.itc");
};

// The header, the epochs one behind the other, and the table of their positions.
inline Bytes DataFileBytes(const std::vector<Bytes>& epochs) {
    Bytes body, table;
    for (const Bytes& epoch : epochs) {
        table = Join({table, Big32(static_cast<uint32_t>(580 + body.size()))});
        body = Join({body, epoch});
    }
    const auto count = static_cast<uint32_t>(epochs.size());
    const auto end = static_cast<uint32_t>(580 + body.size());
    return Join({FileHeaderBytes(8, count, end), body, table});
}

// Getters of any result type behind one signature; the value goes in, so that an untouched one
// shows.
using Getter = std::function<int32_t(int32_t epoch, double& value)>;

template <class Result, class Call>
Getter MakeGetter(Call call) {
    return [call](int32_t epoch, double& value) {
        auto result = static_cast<Result>(value);
        const int32_t code = call(epoch, &result);
        value = static_cast<double>(result);
        return code;
    };
}
template <class Result>
Getter Of(int32_t (*get)(int32_t, Result*)) {
    return MakeGetter<Result>(get);
}
template <class Result>
Getter Of(int32_t (*get)(int32_t, int32_t, Result*), int32_t index) {
    return MakeGetter<Result>(
        [=](int32_t epoch, Result* result) { return get(epoch, index, result); });
}
template <class Result>
Getter Of(int32_t (*get)(int32_t, int32_t, int32_t, Result*), int32_t channel, int32_t component) {
    return MakeGetter<Result>(
        [=](int32_t epoch, Result* result) { return get(epoch, channel, component, result); });
}

inline void ExpectValue(const Getter& get, int32_t epoch, double expected) {
    double value = 77;
    EXPECT_EQ(get(epoch, value), ITC_SUCCESS) << "epoch " << epoch;
    EXPECT_EQ(value, expected) << "epoch " << epoch;
}
inline void ExpectFailure(const Getter& get, int32_t epoch, int32_t code) {
    double value = 77;
    EXPECT_EQ(get(epoch, value), code) << "epoch " << epoch;
    EXPECT_EQ(value, 77) << "epoch " << epoch;
}

}  // namespace corvantis_test
