// Classic Mac paths turned into POSIX paths where the library does it by itself.
#if !defined(__APPLE__)

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <string>

#include "Corvantis.h"

namespace {

// What becomes of the path in a buffer of that size, "" without a result; fails if anything is
// written beside the buffer.
std::string Converted(const std::string& macPath, size_t size) {
    const std::string margin(16, '?');
    std::string whole(size + 16, '?');
    const int32_t result =
        ConvertMacPathToUnix(macPath.c_str(), whole.data() + 8, static_cast<int32_t>(size));
    EXPECT_EQ(whole.substr(0, 8) + whole.substr(8 + size), margin) << macPath << ", " << size;
    return result == 0 ? whole.substr(8, whole.find('\0') - 8) : "";
}

// The volume is named so that nobody has mounted it.
const std::string kDisk = "No Such Disk:";
const std::pair<std::string, std::string> kPaths[] = {
    {kDisk + "Users:me:cell 4.itc", "/Users/me/cell 4.itc"},
    {"No/Such:a/b:/c/", "/a:b/:c:"},
    {kDisk + "a:b::c", "/a/c"},
    {kDisk + "a:b:c::::d", "/d"},
    {":a:b/c", "a/b:c"},
    {"::x:::y", "../../y"},
    {":", "."},
    {kDisk + "\x8E\x83:t\xE9\xFF\xB5.itc", "/\x8E\x83/t\xE9\xFF\xB5.itc"},
    {kDisk + std::string(1000, 'n'), "/" + std::string(1000, 'n')}};

TEST(MacPaths, BecomePosixPathsWithRoomForThemAndTheirTerminator) {
    EXPECT_EQ(ConvertMacPathToUnix("Disk:a", nullptr, -1), -1);
    EXPECT_EQ(Converted("", 64), "");
    for (const auto& [macPath, unixPath] : kPaths) {
        EXPECT_EQ(Converted(macPath, 2048), unixPath);
        for (size_t size = 0; size < macPath.size() + 3 && size < 80; ++size)
            EXPECT_EQ(Converted(macPath, size), size > unixPath.size() ? unixPath : "");
    }
}

// A volume under a name of our own, as the Mac writes it, where ':' and '/' change places; if this
// system lets us make one. It goes again afterwards.
TEST(MacPaths, MountedVolumesAreFoundByTheirName) {
    const std::string number = std::to_string(getpid()), name = "corvantis/" + number;
    const std::string path = "/Volumes/corvantis:" + number;
    const bool madeParent = mkdir("/Volumes", 0755) == 0;
    if (mkdir(path.c_str(), 0755) != 0) GTEST_SKIP() << "no volume can be made";
    EXPECT_EQ(Converted(name, 64), path);
    EXPECT_EQ(Converted(name + ":a::b", path.size() + 3), path + "/b");
    EXPECT_EQ(Converted(name + "x:a", 64), "/a");
    rmdir(path.c_str());
    if (madeParent) rmdir("/Volumes");
}

}  // namespace

#endif
