// Records the same epochs each time it is run, one byte on standard error for each that is saved.
// Usage: KillRecorder FILE EPOCHS
#include "tool/SavedSteps.h"

int main(int count, char** arguments) {
    using namespace corvantis_test;
    // The four shapes that an epoch has in the file, in turn and of different lengths.
    const Preparation shapes[] = {[] { SetUpPulseEpoch(); }, SetUpDynamicClamp, SetUpSum,
                                  [] { SetUpPulseEpoch(2); }};
    LibrarySession session;
    std::vector<float> conductances(1500);
    bool saved = count == 3 && ITCCreateFile(arguments[1], 1) == ITC_SUCCESS;
    for (size_t number = 0; saved && number < std::stoul(arguments[2]); ++number) {
        shapes[number % 4]();
        epochhdr->epochPoints = static_cast<int32_t>(100 + number * 137 % 1400);
        for (size_t i = 0; i < 3000; ++i) {
            session.input[i] = static_cast<uint16_t>(i * 31 + number * 17);
            conductances[i / 2] = static_cast<float>(i / 2) * 0.25F + static_cast<float>(number);
        }
        ExcitatoryG = InhibitoryG = conductances.data();
        saved = ITCSaveToFile() == ITC_SUCCESS && write(STDERR_FILENO, ".", 1) == 1;
    }
    return saved && !testing::Test::HasFailure() ? 0 : 1;
}
