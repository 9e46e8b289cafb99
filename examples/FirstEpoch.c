/* first-epoch FILE: records one epoch on the simulated interface, then recomputes its stimulus. */
#include <stdio.h>
#include <string.h>

#include "Corvantis.h"
#include "ITC18Simulator.h"

enum { kPoints = 12000 };

int main(int argc, char** argv) {
    static uint16_t acquired[kPoints], stimulus[kPoints], played[kPoints];
    uint16_t *input = acquired, *output = stimulus;
    const int32_t capacity = kPoints;
    const ITCPulseParameters step = {
        .amplitude = 1600, .prePoints = 1000, .points = 10000, .tailPoints = 1000};

    if (argc != 2 || ITCInit(&input, &output, &capacity, 0) || ITCCreateFile(argv[1], 0)) return 1;
    ITCWriteFileCom("SIMULATED: no cell was recorded");
    ITCWriteEpochCom("current step of 200 pA");
    if (ITCSetSeq("0", "0") || ITCSetAcqParams(50, kPoints, 0, 0) || ITCPulseParams(0, &step) ||
        ITCUpdateStm() || ITCInitAcq())
        return 1;
    /* A real interface's driver would play the output buffer and fill the input buffer here. */
    if (ITC18Simulator_Play(itc, output, input, kPoints) || ITCSaveToFile() || ITCCloseFile())
        return 1;

    memcpy(played, stimulus, sizeof played);
    memset(stimulus, 0, sizeof stimulus);
    if (ITCOpenFile(argv[1]) || ITCRetrieveEpochStm(0)) return 1;
    const bool identical = memcmp(played, stimulus, sizeof played) == 0;
    printf("%s: %s\n", ITCGetEpochCom(), identical ? "recomputed bit for bit" : "different");
    return ITCCloseFile() || ITCFinish() || !identical;
}
