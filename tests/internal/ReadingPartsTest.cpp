// The parts of the reading layer that stand in for the platform's, against the platform's.
#include <gtest/gtest.h>
#if __has_include(<iconv.h>)
#include <iconv.h>
#endif

#include <cstdlib>
#include <string>

#include "ITCUtilities/Random/GnuRandom.h"
#include "text/Text.h"

namespace {

TEST(GnuRandom, DrawsAsTheGnuLibraryDoes) {
#if defined(__GLIBC__)
    corvantis::GnuRandom own;
    uint32_t seed = 0;
    for (int round = 0; round < 20'000; ++round) {
        srand(seed);
        own.Seed(seed);
        for (int draw = 0; draw < 50; ++draw) ASSERT_EQ(own.Draw(), rand()) << seed;
        seed = round < 4 ? 0x7FFFFFFEU + static_cast<uint32_t>(round) : seed * 1664525 + 1013904223;
    }
#endif
}

TEST(DisplayText, TakesForMacRomanWhatIsNoUtf8) {
    EXPECT_EQ(corvantis::reading::DisplayText("\xC2\xB5V \xE2\x80\xAE\x1B["), "µV   [");
#if __has_include(<iconv.h>)
    iconv_t converter = iconv_open("UTF-8", "MACINTOSH");
    if (converter == reinterpret_cast<iconv_t>(-1))
        GTEST_SKIP() << "a C library without its tables";
    for (int byte = 0x80; byte < 0x100; ++byte) {
        if (byte == 0xC6 || byte == 0xF0) continue;  // an increment and the maker's sign, by Apple
        char in[] = {static_cast<char>(byte), 'x'}, out[8] = {};
        char *from = in, *to = out;
        size_t inLeft = sizeof in, outLeft = sizeof out;
        ASSERT_NE(iconv(converter, &from, &inLeft, &to, &outLeft), static_cast<size_t>(-1));
        EXPECT_EQ(corvantis::reading::DisplayText({in, sizeof in}), out) << byte;
    }
    iconv_close(converter);
#endif
}

}  // namespace
