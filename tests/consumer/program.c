/* A C99 program against the installed library: one pulse, computed without a device. */
#include <Corvantis.h>

int main(void) {
    const ITCPulseParameters pulse = {10000, 30000, 2, 1, 1, {0, 0, 0}};
    int16_t samples[4] = {0, 0, 0, 0};
    ITCStmCreatePulse(samples, &pulse);
    const uint16_t top = (uint16_t)samples[1];
    printf("pulse at %u, pipeline of %u\n", (unsigned)top, (unsigned)pipelineLength);
    return top == 40000 && pipelineLength == 5 ? 0 : 1;
}
