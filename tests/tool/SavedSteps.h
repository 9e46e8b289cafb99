// Recordings made by the library, with the file's bytes after every save.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "PulseEpoch.h"

namespace corvantis_test {

using Preparation = std::function<void()>;

inline constexpr int32_t kStepPoints = 6;
inline std::vector<float> excitatory = {1, 2, 3, 4, 5, 6};
inline std::vector<float> inhibitory = {-1, -2, -3, -4, -5, -6};

inline void SetUpDynamicClamp() {
    const ITCGClampParameters reversals = {0, -70};
    SetUpAcquisition(1, kStepPoints);
    ExcitatoryG = excitatory.data();
    InhibitoryG = inhibitory.data();
    ASSERT_EQ(ITCGClampParams(0, &reversals, 77), 0);
}

inline void SetUpSum() {
    ITCSummedParameters sum = {.count = 2, .componentType = {}, .components = {}};
    const ITCFilewaveParameters wave = {nullptr, 0};
    SetUpAcquisition(1, kStepPoints);
    ASSERT_EQ(ITCSummedParams(0, &sum), 0);
    ASSERT_EQ(ITCAddPulseParams(0, &kPulse), 0);
    ASSERT_EQ(ITCAddFilewaveParams(0, &wave), 0);
}

inline void SetUpWaves() {
    static const uint16_t samples[kStepPoints] = {1, 2, 3, 4, 5, 6};
    const ITCFilewaveParameters wave = {samples, kStepPoints};
    const ITCTrigSeriesParameters triggers = {0, 1, 2, kStepPoints, 0, 0, {}};
    SetUpAcquisition(2, kStepPoints);
    ASSERT_EQ(ITCFilewaveParams(0, &wave), 0);
    ASSERT_EQ(ITCTrigSeriesParams(1, &triggers), 0);
}

// The file before the first save and after each one.
inline std::vector<Bytes> RecordSteps(const std::string& path,
                                      const std::vector<Preparation>& epochs) {
    std::vector<Bytes> steps;
    LibrarySession session;
    PseudoRandom random;
    random.Fill(session.input);
    EXPECT_EQ(ITCCreateFile(path.c_str(), 1), 0);
    fflush(ITCOpenFilePtr);
    steps.push_back(FileContent(path));
    for (const Preparation& prepare : epochs) {
        prepare();
        std::rotate(session.input.begin(), session.input.begin() + 1, session.input.end());
        QuietOutput quiet;
        EXPECT_EQ(ITCSaveToFile(), 0);
        steps.push_back(FileContent(path));
    }
    return steps;
}

// Two entries, 200 µs, four points; gains and units for the first entry, the digital port read by
// the second; other scales for inputs, 3200, and outputs, 6400 counts per volt.
inline Bytes UnitsFileBytes() {
    Bytes file = DataFileBytes({PulseEpochBytes({3200, 1, 0, 2, 0xF380, 0xFFFF, 1600, 4})});
    Put(file, 528, Hex("45C80000"));
    Put(file, 580 + 516, Hex("3F000000"));  // ampGain[0] 0.5 V per unit
    Put(file, 580 + 548, Hex("42C80000"));  // convFactor[0] 100 units per V
    Put(file, 580 + 588, Big32(0xCC00));    // channelSequence[1]
    Put(file, 580 + 609, Text("pA", 16));
    Put(file, 580 + 673, Text("mV", 16));
    return file;
}

// Where the table of a sound file begins, and so where the next save does.
inline size_t TableOf(const Bytes& file) { return Word(file, 536) == 0 ? 580 : Word(file, 540); }

}  // namespace corvantis_test
