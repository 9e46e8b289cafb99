/*
 * two-outputs FILE: records one epoch that drives the outputs 0 and 2, and reads it back.
 *
 * Output 2 belongs to the second sequence entry, so everything that concerns it has the number 1:
 * its slot, its units, its samples at every point.
 */
#include <stdio.h>

#include "Corvantis.h"
#include "ITC18Simulator.h"

enum { kPoints = 2000, kEntries = 2 };

static int SetUp(void) {
    const ITCPulseParameters step = {
        .amplitude = 1600, .prePoints = 500, .points = 1000, .tailPoints = 500};
    const ITCRampParameters ramp = {.amplitude = 3200, .points = kPoints};
    ITCWriteInputUnits("mV", 0);
    ITCWriteAmpGain(0.01F, 0, 0, 0);
    ITCWriteInputUnits("V", 1);
    ITCWriteAmpGain(1, 0, 0, 1);
    return ITCSetSeq("02", "02") || ITCSetAcqParams(100, kPoints, 0, 0) ||
           ITCPulseParams(0, &step) || ITCRampParams(1, &ramp) || ITCUpdateStm() || ITCInitAcq();
}

/* The simulated interface leads output 2 to input 2: the second entry reads what it has played. */
static int IsEchoed(const uint16_t* input, const uint16_t* output) {
    for (int p = 0; p < kPoints; ++p) {
        if (input[p * kEntries + 1] != output[p * kEntries + 1]) return 0;
    }
    return output[1000 * kEntries + 1] == 1600;
}

int main(int argc, char** argv) {
    static uint16_t acquired[kPoints * kEntries], stimulus[kPoints * kEntries];
    uint16_t *input = acquired, *output = stimulus;
    const int32_t capacity = kPoints * kEntries;
    int32_t channel = -1, type = -1;

    if (argc != 2 || ITCInit(&input, &output, &capacity, 0) || ITCCreateFile(argv[1], 0)) return 1;
    if (SetUp() || ITC18Simulator_Play(itc, output, input, kPoints) || ITCSaveToFile()) return 1;
    if (ITCCloseFile() || ITCOpenFile(argv[1]) || ITCRetrieveEpoch(0)) return 1;
    if (ITCGetOutputChan(0, 1, &channel) || ITCGetStmType(0, 1, 0, &type)) return 1;
    printf("entry 1: output %d, stimulus of type %d, in %.16s, %s\n", channel, type,
           ITCGetInputUnits(1), IsEchoed(input, output) ? "echoed" : "not echoed");
    return ITCCloseFile() || ITCFinish();
}
