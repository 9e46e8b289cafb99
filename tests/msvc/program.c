/* A program as Microsoft's compiler makes it, without a C library: records an epoch on the
 * simulated interface and reads it back through functions of its own. It ends with the number of
 * the step that failed, or 0. */
#include "Corvantis.h"
#include "CorvantisReading.h"
#include "ITC18Simulator.h"

__declspec(dllimport) void ExitProcess(unsigned code);
__declspec(dllimport) void* CreateFileA(const char* name, unsigned access, unsigned shared,
                                        void* security, unsigned disposition, unsigned flags,
                                        void* like);
__declspec(dllimport) int ReadFile(void* file, void* bytes, unsigned size, unsigned* read,
                                   void* place);
__declspec(dllimport) int CloseHandle(void* file);

/* The compiler asks for it where there are floating-point numbers. */
int _fltused = 0;

enum { kPoints = 1000, kMost = 8192, kRead = (int)0x80000000, kOpenExisting = 3 };

static const char kName[] = "msvc.dat";
static uint16_t acquired[kPoints], stimulus[kPoints];
static unsigned char bytes[kMost];
static unsigned size;
static int closed;

static int64_t SizeOf(void* context) { return *(unsigned*)context; }

static int64_t ReadAt(void* context, int64_t offset, void* to, int64_t count) {
    int64_t there = *(unsigned*)context - offset;
    if (there > count) there = count;
    for (int64_t i = 0; i < there; ++i) ((volatile unsigned char*)to)[i] = bytes[offset + i];
    return there;
}

static void Close(void* context) { closed += context == &size; }

static int Record(void) {
    uint16_t *input = acquired, *output = stimulus;
    const int32_t capacity = kPoints;
    int32_t seed = -1;
    static const ITCPulseParameters step = {1600, -5, 800, 100, 100, {0, 0, 0}};
    if (ITCInit(&input, &output, &capacity, 0) != 0 || pipelineLength != 5) return 1;
    if (ITCCreateFile(kName, 1) != 0 || filehdr->version != ITC_FILE_VERSION) return 2;
    filehdr->offset = 2.5f;
    if (ITCSetSeq("0", "0") || ITCSetAcqParams(50, kPoints, 0, 0) || ITCPulseParams(0, &step) ||
        ITCUpdateStm() || ITCInitAcq())
        return 3;
    if (ITC18Simulator_Play(itc, output, input, kPoints) || ITCSaveToFile() || ITCCloseFile())
        return 4;
    const float drawn = ran2(&seed);
    return drawn > 0.f && drawn < 1.f && (int16_t)stimulus[500] == 1595 ? 0 : 5;
}

static int Load(void) {
    void* const file = CreateFileA(kName, (unsigned)kRead, 0, NULL, kOpenExisting, 0, NULL);
    if (!ReadFile(file, bytes, kMost, &size, NULL) || !CloseHandle(file)) return 6;
    return size == 580 + 912 + 32 + 2 * kPoints + 4 ? 0 : 7;
}

static int Read(void) {
    static CorvantisProblem problem;
    static CorvantisRecordingInfo info;
    static ITCFileHeader header;
    static int16_t counts[kPoints];
    static double volts[kPoints];
    CorvantisRecording* recording = NULL;
    const CorvantisSource source = {&size, SizeOf, ReadAt, Close};
    if (CorvantisOpenSource(&source, kName, &recording, &problem) != 0) return 8;
    if (CorvantisInfo(recording, &info) != 0 || info.size != size || info.epochs != 1) return 9;
    if (CorvantisFileHeader(recording, &header) != 0 || header.offset != 2.5f) return 9;
    if (CorvantisCounts(recording, 0, 0, 0, kPoints, counts, 0, &problem) != 0) return 10;
    if (CorvantisValues(recording, 0, 0, 0, kPoints, volts, 0, &problem) != 0) return 11;
    for (int i = 0; i < kPoints; ++i) {
        if (counts[i] != (int16_t)acquired[i]) return 12;
        if (volts[i] != counts[i] / 3200.0) return 13;
    }
    if (CorvantisStimulus(recording, 0, 0, 0, kPoints, counts, 0, NULL, &problem) != 0) return 14;
    for (int i = 0; i < kPoints; ++i) {
        if (counts[i] != (int16_t)stimulus[i]) return 15;
    }
    CorvantisClose(recording);
    return closed == 1 ? 0 : 16;
}

void Start(void) {
    int failed = Record();
    if (failed == 0) failed = Load();
    if (failed == 0) failed = Read();
    ExitProcess((unsigned)failed);
}
