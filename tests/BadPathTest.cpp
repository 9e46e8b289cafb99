// Paths that name no readable data file: a documented code at once, and nothing is altered.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

using BadPath = RecordingTest;

void ExpectRefused(const std::string& path) {
    for (const auto open : {ITCOpenFile, ITCOpenFileForInput, ITCOpenFileForEdit}) {
        EXPECT_EQ(open(path.c_str()), ITC_FILE_ERROR) << path;
        EXPECT_EQ(ITCCloseFile(), -1) << path;
    }
    for (const int32_t overwrite : {0, 1}) {
        EXPECT_EQ(ITCCreateFile(path.c_str(), overwrite), ITC_FILE_ERROR) << path;
        EXPECT_EQ(ITCCloseFile(), -1) << path;
    }
}

// A pipe would keep its reader waiting, and a device could deliver bytes without end.
TEST_F(BadPath, NoFilesAndNamesThatNoFileCanHave) {
    const std::string pipe = folder.File("pipe"), link = folder.File("link");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    ASSERT_EQ(symlink("/dev/zero", link.c_str()), 0);
    for (const std::string& bad :
         {folder.path.string(), std::string("/dev/null"), pipe, link, std::string(),
          folder.File("absent/data.itc"), folder.File(std::string(256, 'n')),
          folder.path.string() + "/" + std::string(4096, 'n'),
          // In a folder that is not there: elsewhere a pattern finds a file, which is replaced.
          folder.File("absent/" + std::string(100000, '*'))})
        ExpectRefused(bad);
}

// The administrator may read and write anything, so that permissions are tested as somebody else.
TEST_F(BadPath, FilesThatMayNotBeReadOrWritten) {
    const std::string secret = folder.File("secret.itc");
    for (const std::string& each : {secret, path}) WriteFile(each, PulseFileBytes());
    chmod(folder.path.c_str(), 0755);
    chmod(secret.c_str(), 0000);
    chmod(path.c_str(), 0444);
    const bool isRoot = geteuid() == 0;
    EXPECT_TRUE(!isRoot || seteuid(65534) == 0);
    ExpectRefused(secret);
    EXPECT_EQ(Results({ITCOpenFileForEdit(path.c_str()), Create(), Open(), ITCRetrieveEpoch(0)}),
              Results({7, 7, 0, 0}));
    EXPECT_TRUE(!isRoot || seteuid(0) == 0);
    chmod(secret.c_str(), 0600);
    for (const std::string& each : {secret, path}) EXPECT_EQ(FileContent(each), PulseFileBytes());
}

}  // namespace
