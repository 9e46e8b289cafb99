/* Writes what the library reads of every epoch: responses, then stimuli, as the host's int16.
 * read_epochs FILE OUTPUT */
#include <stdio.h>

#include "Corvantis.h"

enum { kCapacity = 1 << 20 };

int main(int argc, char** argv) {
    static uint16_t samples[kCapacity];
    int32_t epochs = 0;
    FILE* output = argc == 3 ? fopen(argv[2], "wb") : NULL;
    if (output == NULL || ITCInitializeAnalysis(kCapacity) || ITCOpenFileForInput(argv[1]))
        return 2;
    ITCGetNumberEpochs(&epochs);
    for (int32_t epoch = 0; epoch < epochs; ++epoch) {
        for (int stimulus = 0; stimulus < 2; ++stimulus) {
            if (stimulus ? ITCReadEpochStm(epoch, samples) : ITCReadEpoch(epoch, samples)) return 1;
            const int32_t count = epochhdr->epochPoints * epochhdr->sequenceLength;
            fwrite(samples, sizeof samples[0], (size_t)count, output);
        }
    }
    return fclose(output);
}
