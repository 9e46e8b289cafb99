// Records the same epochs each time it is run, one byte on standard error for each save: '.' or,
// for one that failed and is tried again, 'x'. The file has no room beyond the first limit, until a
// save has failed; then none beyond the next one. At the limit "end" it does not try again, and
// ends. Usage: KillRecorder FILE EPOCHS [LIMIT...]
#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#include "tool/SavedSteps.h"

namespace {

using namespace corvantis_test;

constexpr size_t kMostPoints = 1500;

void LimitFileSize(const char* bytes) {
    rlimit limit = {};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes == nullptr ? limit.rlim_max : std::strtoul(bytes, nullptr, 10);
    setrlimit(RLIMIT_FSIZE, &limit);
}

bool Report(bool isSaved) { return write(STDERR_FILENO, isSaved ? "." : "x", 1) == 1; }

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) return 2;
    std::signal(SIGXFSZ, SIG_IGN);
    char** limit = arguments + 3;  // the last one is null
    // The four shapes that an epoch has in the file, in turn and of different lengths.
    const Preparation shapes[] = {[] { SetUpPulseEpoch(); }, SetUpDynamicClamp, SetUpSum,
                                  [] { SetUpPulseEpoch(2); }};
    LibrarySession session;
    std::vector<float> conductances(kMostPoints);
    if (ITCCreateFile(arguments[1], 1) != ITC_SUCCESS) return 1;
    LimitFileSize(*limit);
    for (size_t number = 0; number < std::strtoul(arguments[2], nullptr, 10); ++number) {
        shapes[number % 4]();
        epochhdr->epochTime = static_cast<float>(number);
        epochhdr->epochPoints = static_cast<int32_t>(100 + number * 137 % (kMostPoints - 100));
        for (size_t i = 0; i < 2 * kMostPoints; ++i) {
            session.input[i] = static_cast<uint16_t>(i * 31 + number * 17);
            conductances[i / 2] = static_cast<float>(i / 2) * 0.25F + static_cast<float>(number);
        }
        ExcitatoryG = InhibitoryG = conductances.data();
        bool isSaved = ITCSaveToFile() == ITC_SUCCESS;
        for (; !isSaved && *limit != nullptr; isSaved = ITCSaveToFile() == ITC_SUCCESS) {
            if (!Report(false)) return 1;
            if (*++limit != nullptr && std::strcmp(*limit, "end") == 0) return 0;
            LimitFileSize(*limit);
        }
        if (!isSaved || !Report(true)) return 1;
    }
    return testing::Test::HasFailure() ? 1 : 0;
}
