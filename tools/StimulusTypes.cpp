// Names of the stimulus types, and the sizes that the library counts for them.
#include "StimulusTypes.h"

#include <array>

#include "Corvantis.h"
#include "Failure.h"

namespace corvantis {
namespace {

constexpr std::array<std::string_view, ITC_STIMULUS_SPATIAL + 1> kNames = {
    "none",      "sine",          "noise",        "pulse",       "ramp",
    "file wave", "generic",       "sum",          "triggers",    "segmented",
    "binary",    "dynamic clamp", "circle pulse", "alternating", "spatial"};

void StartLibrary() {
    static uint16_t* noSamples = nullptr;
    const int32_t capacity = 0;
    if (ITCInitAnalysis(&noSamples, &noSamples, &capacity) != ITC_SUCCESS) {
        throw Failure("out of memory");
    }
}

}  // namespace

bool IsSimpleType(int32_t type) {
    return type >= ITC_STIMULUS_SINE && type <= ITC_STIMULUS_SPATIAL && type != ITC_STIMULUS_SUMMED;
}

std::string_view TypeName(int32_t type) {
    return type < 0 || type > ITC_STIMULUS_SPATIAL ? "unknown" : kNames[static_cast<size_t>(type)];
}

int64_t CountedSize(int32_t type) {
    uint32_t size = 0;
    if (ITCStmParamsSize(&size, static_cast<uint32_t>(type)) == ITC_NOT_STARTED) {
        StartLibrary();
        ITCStmParamsSize(&size, static_cast<uint32_t>(type));
    }
    return size;
}

}  // namespace corvantis
