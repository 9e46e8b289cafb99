/* Writes what the library reads of every epoch: responses, then stimuli, as the host's int16.
 * A stimulus that cannot be recomputed is left out. read_epochs FILE OUTPUT */
#include <stdio.h>
#include <stdlib.h>

#include "Corvantis.h"

enum { Capacity = 1 << 20 };

static uint16_t samples[Capacity];

static void Keep(FILE* output, int32_t result, int32_t count) {
    if (result == ITC_SUCCESS) fwrite(samples, sizeof samples[0], (size_t)count, output);
}

int main(int argc, char** argv) {
    int32_t epochs = 0;
    FILE* output = argc == 3 ? fopen(argv[2], "wb") : NULL;
    if (output == NULL || ITCInitializeAnalysis(Capacity) != ITC_SUCCESS) return 2;
    if (ITCOpenFileForInput(argv[1]) != ITC_SUCCESS) return 2;
    ITCGetNumberEpochs(&epochs);
    for (int32_t epoch = 0; epoch < epochs; ++epoch) {
        const int32_t read = ITCReadEpoch(epoch, samples);
        const int32_t count = epochhdr->epochPoints * epochhdr->sequenceLength;
        Keep(output, read, count);
        Keep(output, ITCReadEpochStm(epoch, samples), count);
    }
    return fclose(output) == 0 ? 0 : 1;
}
