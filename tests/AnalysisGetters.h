// Getters by epoch number of any result type, behind one signature.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "Corvantis.h"

namespace corvantis_test {

constexpr int32_t kUntouchedValue = 77;

// Calls a getter with any result type; the value goes in, so that an untouched one shows.
using Getter = std::function<int32_t(int32_t epoch, double& value)>;

struct Field {
    std::string name;
    Getter get;
    double expected;
};

template <class Result, class Call>
Field MakeField(const char* name, Call call, double expected) {
    const auto get = [call](int32_t epoch, double& value) {
        auto result = static_cast<Result>(value);
        const int32_t code = call(epoch, &result);
        value = static_cast<double>(result);
        return code;
    };
    return {name, get, expected};
}
template <class Result>
Field Plain(const char* name, int32_t (*get)(int32_t, Result*), double expected) {
    return MakeField<Result>(name, get, expected);
}
template <class Result>
Field Indexed(const char* name, int32_t (*get)(int32_t, int32_t, Result*), int32_t index,
              double expected) {
    const auto call = [=](int32_t epoch, Result* result) { return get(epoch, index, result); };
    return MakeField<Result>(name, call, expected);
}

inline void ExpectResult(const Field& field, int32_t epoch, int32_t code) {
    double value = kUntouchedValue;
    EXPECT_EQ(field.get(epoch, value), code) << field.name << ", epoch " << epoch;
    EXPECT_EQ(value, code == ITC_SUCCESS ? field.expected : kUntouchedValue) << field.name;
}

}  // namespace corvantis_test
