// Writing fails at each flush of a save in turn, and cutting the file back may fail too: nothing of
// the failed epoch may be found in the file, then or when the next save is killed half-way.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <functional>

#include "Corvantis.h"
#include "FileBytes.h"
#include "PulseEpoch.h"

namespace {

int failingFlush = 0, flushes = 0;
bool cutFails = false;
std::function<void()> afterFlush;

}  // namespace

// In place of the C library's for this program and the library it tests.
extern "C" int fflush(FILE* stream) {
    static const auto flush = reinterpret_cast<int (*)(FILE*)>(dlsym(RTLD_NEXT, "fflush"));
    if (++flushes == failingFlush) return EOF;
    const int result = flush(stream);
    if (afterFlush) afterFlush();
    return result;
}
#if defined(__GLIBC__)
#define CUT_FILE ftruncate64
#else
#define CUT_FILE ftruncate
#endif
#define NAME_OF_(function) #function
#define NAME_OF(function) NAME_OF_(function)
extern "C" int CUT_FILE(int descriptor, int64_t size) {
    static const auto cut =
        reinterpret_cast<int (*)(int, int64_t)>(dlsym(RTLD_NEXT, NAME_OF(CUT_FILE)));
    return cutFails ? -1 : cut(descriptor, size);
}

namespace corvantis_test {
namespace {

using SaveFailure = RecordingTest;

TEST_F(SaveFailure, LeavesNothingThatCouldPassForTheEpoch) {
    const auto entries = [this] { return Word(FileContent(path), 1532 + 580); };  // of the second
    for (const bool fails : {false, true}) {
        for (const int flush : {1, 2}) {
            filehdr->numEpochs = 0;
            SetUpPulseEpoch();
            ASSERT_EQ(Results({Create(), ITCSaveToFile()}), Results({0, 0}));
            const Bytes saved = FileContent(path);
            flushes = 0, failingFlush = flush, cutFails = fails;
            SetUpAcquisition(1, 5000);
            ASSERT_EQ(ITCSaveToFile(), ITC_FILE_ERROR);
            failingFlush = 0, cutFails = false;
            EXPECT_EQ(First(FileContent(path), saved.size()), saved);
            EXPECT_EQ(FileContent(path).size() == saved.size(), !fails);
            EXPECT_TRUE(!fails || entries() == 0);
            flushes = 0;
            afterFlush = [&] { EXPECT_TRUE(flushes > 1 || entries() == (fails ? 0 : 1)); };
            EXPECT_EQ(ITCSaveToFile(), ITC_SUCCESS);
            afterFlush = nullptr;
            EXPECT_EQ(entries(), 1U);
        }
    }
}

}  // namespace
}  // namespace corvantis_test
