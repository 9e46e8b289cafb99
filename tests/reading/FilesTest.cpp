// Files as the system has them: names of any script, bytes that text would not survive, positions
// beyond 4 GiB.
#include <filesystem>

#include "Readings.h"

namespace corvantis_test {
namespace {

constexpr char kFolder[] = "Ελληνικά 日本語", kFile[] = "/μέτρηση 記録.dat";

TEST(ReadFiles, AreWrittenAndReadAsTheyAreUnderNamesOfAnyScript) {
    const Samples samples = {0x0D0A, 0x0A0D, 0x1A1A, 0x000A};
    const TemporaryFolder folder;
    const std::string path = folder.path.string() + "/" + kFolder + kFile;
    LibrarySession session;
    std::copy(samples.begin(), samples.end(), session.input.begin());
    EXPECT_EQ(ITCCreateFile(path.c_str(), 0), 7);
    EXPECT_EQ(Reading(path).Text(), path + ": No such file or directory");
    std::filesystem::create_directory(folder.path / PathOf(kFolder));
    ASSERT_EQ(ITCCreateFile(path.c_str(), 0), 0);
    SetUpPulseEpoch();
    EXPECT_EQ(ITCSaveToFile(), 0);
    EXPECT_EQ(ITCCloseFile(), 0);
    const std::string pattern = folder.path.string() + "/Ελλ*/*記*.dat";
    EXPECT_EQ(ITCOpenFile(pattern.c_str()), 0);
    EXPECT_EQ(FileContent(path), DataFileBytes({PulseEpochBytes(samples)}));
    EXPECT_EQ(Reading(path).Acquired(0), Counts({0x0D0A, 0x0A0D, 0x1A1A, 0x000A}));
}

// The longest epoch that leaves a table of 32 bits room for a second one; of its samples only the
// last are written.
TEST(ReadFiles, ReachBeyondFourGibibytes) {
    const int64_t table = int64_t{UINT32_MAX} - 1, second = table - 952, size = table + 8;
    const auto points = static_cast<uint32_t>((second - 580 - 944) / 2);
    const TemporaryFolder folder;
    const std::string path = folder.File("large.dat");
    Bytes first = First(PulseEpochBytes({1, 2, 3, 4}), 944);
    Put(first, 576, Big32(points));
    WriteFile(path, Join({FileHeaderBytes(8, 2, table & UINT32_MAX), first}));
    std::error_code error;
    std::filesystem::resize_file(path, static_cast<uintmax_t>(size), error);
    if (error) GTEST_SKIP() << "no file of 4 GiB can be made here: " << error.message();
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(second - 2);
    for (const Bytes& bytes :
         {Hex("1234"), PulseEpochBytes({5, 6, 7, 8}), Big32(580), Big32(second & UINT32_MAX)})
        file.write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    file.close();

    Reading reading(path);
    ASSERT_EQ(reading.code, 0) << reading.Text();
    CorvantisRecordingInfo info = {};
    CorvantisInfo(reading.recording, &info);
    EXPECT_EQ(std::tuple(info.size, info.epochs, info.found),
              std::tuple(size, 2, CORVANTIS_BY_TABLE));
    int16_t last = 0;
    EXPECT_EQ(CorvantisCounts(reading.recording, 0, 0, points - 1, 1, &last, 0, nullptr), 0);
    EXPECT_EQ(last, 0x1234);
    EXPECT_EQ(reading.Acquired(1), Counts({5, 6, 7, 8}));
    LibrarySession session;
    const QuietOutput quiet;
    EXPECT_EQ(Results({ITCOpenFile(path.c_str()), ITCRetrieveEpoch(0), ITCRetrieveEpoch(1)}),
              Results({0, 4, 0}));
    EXPECT_EQ(First(session.input, 4), Samples({5, 6, 7, 8}));
}

}  // namespace
}  // namespace corvantis_test
