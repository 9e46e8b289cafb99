// Classic Mac paths turned into POSIX paths where the library does it by itself.
#if !defined(__APPLE__)

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

#include "Corvantis.h"

namespace {

constexpr size_t kMargin = 8;
constexpr char kFiller = '?';

struct Conversion {
    int32_t result;
    std::string text;
};

// Converts into a buffer of that size, and fails if anything is written beside it.
Conversion Convert(const std::string& macPath, size_t size) {
    std::string whole(size + 2 * kMargin, kFiller);
    const int32_t result =
        ConvertMacPathToUnix(macPath.c_str(), whole.data() + kMargin, static_cast<int32_t>(size));
    const std::string margin(kMargin, kFiller);
    EXPECT_EQ(whole.substr(0, kMargin), margin) << "wrote before the buffer";
    EXPECT_EQ(whole.substr(kMargin + size), margin) << "wrote behind the buffer";
    const std::string buffer = whole.substr(kMargin, size);
    const size_t end = buffer.find('\0');
    EXPECT_TRUE(result != 0 || end != std::string::npos) << "no terminator";
    return {result, buffer.substr(0, end)};
}

struct PathCase {
    std::string macPath, unixPath;
};

// The volume is named so that nobody has mounted it.
std::vector<PathCase> PathCases() {
    return {
        {"No Such Disk", "/"},
        {"No Such Disk:", "/"},
        {"No Such Disk:Users:me:cell 4.itc", "/Users/me/cell 4.itc"},
        {"No/Such:a/b:/c/", "/a:b/:c:"},
        {"No Such Disk:a::b", "/b"},
        {"No Such Disk:a:b::c", "/a/c"},
        {"No Such Disk:a:b:c::::d", "/d"},
        {":a:b/c", "a/b:c"},
        {":a::b", "b"},
        {":a:b::c:", "a/c"},
        {"::x", "../x"},
        {":::x", "../../x"},
        {":a:::x", "../x"},
        {"::x::y", "../y"},
        {"::x:::y", "../../y"},
        {"::", ".."},
        {":", "."},
        {"No Such Disk:\x8E\x83:t\xE9\xFF\xB5.itc", "/\x8E\x83/t\xE9\xFF\xB5.itc"},
        {std::string(300, 'v') + ":a", "/a"},
        {"No Such Disk:" + std::string(1000, 'n'), "/" + std::string(1000, 'n')},
    };
}

TEST(MacPaths, BecomePosixPathsWithRoomForThemAndTheirTerminator) {
    for (const PathCase& each : PathCases()) {
        std::vector<size_t> sizes = {2048};
        for (size_t size = 0; size < each.macPath.size() + 3 && size < 80; ++size)
            sizes.push_back(size);
        for (const size_t size : sizes) {
            SCOPED_TRACE(each.macPath + ", " + std::to_string(size) + " bytes");
            const Conversion converted = Convert(each.macPath, size);
            const bool fits = size > each.unixPath.size();
            EXPECT_EQ(converted.result, fits ? 0 : -1);
            EXPECT_TRUE(!fits || converted.text == each.unixPath) << converted.text;
        }
    }
}

TEST(MacPaths, WithoutAPathOrRoomThereIsNoResult) {
    EXPECT_EQ(Convert("", 64).result, -1);
    char untouched = kFiller;
    for (const int32_t size : {0, -1, INT32_MIN}) {
        EXPECT_EQ(ConvertMacPathToUnix("Disk:a", &untouched, size), -1);
        EXPECT_EQ(untouched, kFiller);
    }
}

// A volume under a name of our own, as the Mac writes it, where ':' and '/' change places; if this
// system lets us make one. It goes again afterwards.
TEST(MacPaths, MountedVolumesAreFoundByTheirName) {
    const std::string name = "corvantis:" + std::to_string(getpid());
    const std::string macName = "corvantis/" + std::to_string(getpid());
    const std::string path = "/Volumes/" + name;
    const bool madeParent = mkdir("/Volumes", 0755) == 0;
    if (mkdir(path.c_str(), 0755) != 0) GTEST_SKIP() << "no volume can be made";
    EXPECT_EQ(Convert(macName, 64).text, path);
    EXPECT_EQ(Convert(macName + ":a::b", 64).text, path + "/b");
    EXPECT_EQ(Convert(macName + "x:a", 64).text, "/a");
    EXPECT_EQ(Convert(macName + ":a", path.size() + 2).result, -1);
    EXPECT_EQ(Convert(macName + ":a", path.size() + 3).result, 0);
    rmdir(path.c_str());
    if (madeParent) rmdir("/Volumes");
}

}  // namespace

#endif
