// Paths that name no readable data file: a documented code at once, and nothing is altered.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

#include "Corvantis.h"
#include "FileBytes.h"
#include "LibrarySession.h"
#include "PulseEpoch.h"

namespace {

using namespace corvantis_test;

// The administrator may read and write anything, so tests of permissions run as somebody else.
class OrdinaryUser {
  public:
    OrdinaryUser() { Become(65534); }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() { Become(0); }

  private:
    void Become(uid_t user) const { EXPECT_TRUE(!wasRoot || seteuid(user) == 0); }

    const bool wasRoot = geteuid() == 0;
};

struct Opening {
    const char* name;
    std::function<int32_t(const char*)> open;
};

const std::vector<Opening> kOpenings = {
    {"open", [](const char* path) { return ITCOpenFile(path); }},
    {"open for input", [](const char* path) { return ITCOpenFileForInput(path); }},
    {"open for edit", [](const char* path) { return ITCOpenFileForEdit(path); }},
    {"create", [](const char* path) { return ITCCreateFile(path, 0); }},
    {"create anew", [](const char* path) { return ITCCreateFile(path, 1); }}};

class BadPath : public testing::Test {
  protected:
    void ExpectRefused(const std::string& path) {
        for (const Opening& opening : kOpenings) {
            EXPECT_EQ(opening.open(path.c_str()), ITC_FILE_ERROR) << opening.name << ": " << path;
            EXPECT_EQ(ITCCloseFile(), -1) << opening.name << ": " << path;
        }
    }

    LibrarySession session{1000};
    TemporaryFolder folder;
    QuietOutput quiet;
};

// A pipe would keep its reader waiting, and a device could deliver bytes without end.
TEST_F(BadPath, FoldersDevicesAndPipes) {
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string link = folder.File("link");
    ASSERT_EQ(symlink("/dev/zero", link.c_str()), 0);
    for (const std::string& path :
         {folder.path.string(), std::string("/"), std::string("/dev/null"),
          std::string("/dev/zero"), std::string("/dev/full"), pipe, link}) {
        ExpectRefused(path);
    }
}

TEST_F(BadPath, NamesThatNoFileCanHave) {
    ExpectRefused("");
    ExpectRefused(folder.File("absent/data.itc"));
    ExpectRefused(folder.File(std::string(256, 'n')));
    ExpectRefused(folder.path.string() + "/" + std::string(4096, 'n'));
    std::string deep = folder.path.string();
    while (deep.size() < 4096) deep += "/.";
    ExpectRefused(deep + "/data.itc");
    // In a folder that is not there: elsewhere the pattern finds a file, which is then replaced.
    ExpectRefused(folder.File("absent/" + std::string(100000, '*')));
}

TEST_F(BadPath, FilesThatMayNotBeReadOrWritten) {
    const std::string secret = folder.File("secret.itc");
    const std::string finished = folder.File("finished.itc");
    for (const std::string& path : {secret, finished}) WriteFile(path, PulseFileBytes());
    chmod(folder.path.c_str(), 0755);
    chmod(secret.c_str(), 0000);
    chmod(finished.c_str(), 0444);
    {
        const OrdinaryUser user;
        ExpectRefused(secret);
        for (const int32_t overwrite : {0, 1}) {
            EXPECT_EQ(ITCCreateFile(finished.c_str(), overwrite), ITC_FILE_ERROR);
        }
        EXPECT_EQ(ITCOpenFileForEdit(finished.c_str()), ITC_FILE_ERROR);
        EXPECT_EQ(ITCCreateFile(folder.File("new.itc").c_str(), 0), ITC_FILE_ERROR);
        EXPECT_EQ(ITCOpenFile(finished.c_str()), ITC_SUCCESS);
        EXPECT_EQ(ITCRetrieveEpoch(0), ITC_SUCCESS);
        EXPECT_EQ(ITCSaveToFile(), ITC_FILE_ERROR);
        EXPECT_EQ(ITCCloseFile(), 0);
    }
    chmod(secret.c_str(), 0600);
    for (const std::string& path : {secret, finished}) {
        EXPECT_EQ(FileContent(path), PulseFileBytes());
    }
}

}  // namespace
