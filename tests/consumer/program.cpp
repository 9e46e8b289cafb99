// A C++20 program against the installed library: start for analysis, refuse a file that is not
// there.
#include <Corvantis.h>

#include <cstdio>

int main() {
    if (ITCInitializeAnalysis(1000) != ITC_SUCCESS) return 1;
    const int32_t result = ITCOpenFileForInput("/nonexistent/recording");
    std::printf("opening gave %d\n", static_cast<int>(result));
    ITCFinishAnalysis();
    return result == ITC_FILE_ERROR ? 0 : 1;
}
