/* A C99 program against the installed reading library: what it makes of something else. */
#include <CorvantisReading.h>
#include <stdio.h>

int main(int argc, char** argv) {
    CorvantisRecording* recording;
    CorvantisProblem problem;
    const int32_t result = CorvantisOpen(argv[argc - 1], &recording, &problem);
    printf("%d: %s\n", (int)result, problem.text);
    return result == CORVANTIS_NOT_A_RECORDING && recording == NULL ? 0 : 1;
}
