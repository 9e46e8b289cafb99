// Records the same epochs each time it is run, one byte on standard error for each that is saved.
// Usage: KillRecorder FILE EPOCHS
#include <cstdlib>

#include "tool/SavedSteps.h"

namespace {

using namespace corvantis_test;

constexpr size_t kMostPoints = 1500;

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) return 2;
    // The four shapes that an epoch has in the file, in turn and of different lengths.
    const Preparation shapes[] = {[] { SetUpPulseEpoch(); }, SetUpDynamicClamp, SetUpSum,
                                  [] { SetUpPulseEpoch(2); }};
    LibrarySession session;
    std::vector<float> conductances(kMostPoints);
    if (ITCCreateFile(arguments[1], 1) != ITC_SUCCESS) return 1;
    for (size_t number = 0; number < std::strtoul(arguments[2], nullptr, 10); ++number) {
        shapes[number % 4]();
        epochhdr->epochTime = static_cast<float>(number);
        epochhdr->epochPoints = static_cast<int32_t>(100 + number * 137 % (kMostPoints - 100));
        for (size_t i = 0; i < 2 * kMostPoints; ++i) {
            session.input[i] = static_cast<uint16_t>(i * 31 + number * 17);
            conductances[i / 2] = static_cast<float>(i / 2) * 0.25F + static_cast<float>(number);
        }
        ExcitatoryG = InhibitoryG = conductances.data();
        if (ITCSaveToFile() != ITC_SUCCESS || write(STDERR_FILENO, ".", 1) != 1) return 1;
    }
    return testing::Test::HasFailure() ? 1 : 0;
}
