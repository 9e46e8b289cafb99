/*
 * ITC18Simulator.h: what the simulated ITC18 interface offers beside the driver calls: playing an
 * acquisition at once or as a stream, injecting faults, looking at the device.
 *
 * The device
 *   Four interfaces are connected, numbers 0 to 3, each with a model neuron of its own. Their
 *   state lies inside the simulator, keyed by the address of the caller's structure; what stands
 *   in that structure is never read. Refused calls give the results of ITC18Simulator_Result.
 *   An interface that is open elsewhere is taken over by whoever opens it, as if closed before; so
 *   is a structure in which another interface is open.
 *
 * Time
 *   The sampling interval is in microseconds per sequence entry. A pass through the sequence takes
 *   entries × interval; all its entries act together at its start: first every output takes its
 *   sample (two entries with the same output: the later one stands), then every input is read,
 *   then the outputs hold until the next pass. There is no pipeline delay, whatever the library's
 *   pipelineLength says of the real interface: the input sample of point p was read in the pass
 *   that played point p. An input sample therefore shows the neuron
 *   as the commands up to point p - 1 left it, and an echoing input shows point p itself.
 *
 * Wiring
 *   analogue output 0      current command of the amplifier, 400 pA into the neuron per volt
 *   analogue input 0       the neuron's membrane potential, 1 V at the converter per 100 mV
 *                          (amplifier gain 10), rounded to the nearest count and clamped to 16 bits
 *   analogue inputs 1-3    the analogue output of the same number
 *   analogue inputs 4-7    not connected, read 0
 *   digital input          the digital output
 *   Outputs that the sequence does not drive stand at 0. Samples are signed 16-bit converter
 *   counts, 3200 per volt, in unsigned storage (two's complement).
 *
 * The neuron
 *   See cells/SquidAxon.h: Hodgkin and Huxley's squid axon membrane, 2000 µm², 20 pF, resting at
 *   -65 mV with 43 MOhm. A long step from rest fires it once from about 46 pA and repetitively,
 *   at 50 Hz, from about 126 pA; 200 pA give 68 Hz. The spikes get smaller as the current grows,
 *   from about 1.4 nA all but the first stay below 0 mV, and above 3.1 nA it rests depolarised.
 *   At the start of every play it is in the steady state of its holding command, which is the
 *   first sample that the play gives to output 0, or 0 where the sequence does not drive that.
 *   (A step without points before it is thus all holding command and evokes nothing.)
 *
 * Streaming
 *   What is said above holds for an acquisition that is played at once. Beside it an acquisition
 *   is streamed as rig programs do it: connect, then for each one start, write and read in turn,
 *   stop. What is connected, one of several cells behind an electrode and an amplifier, is as the
 *   settings say, lives on from one acquisition to the next, and sees the same time: while streams
 *   run and calls wait, not between calls. The outputs hold.
 *   As it is without further settings, a stream gives what the same samples played at once give
 *   from the same state on, however they are cut into pieces. Settings add the pipeline's delay;
 *   the skew of a pass, whose entries then act one interval after the other, the cell going on in
 *   between; the pace, in which buffers overflow and run empty; a trigger to wait for; and faults.
 *   The settings `interface.*` say so one by one.
 *   An interface that is lost fails every call, of the driver too, until it is opened again.
 *
 * Equal calls give equal samples: what is random comes from seeds, and the one clock, which
 * real-time pacing and stalls go by, decides when samples move and not what they are. The simulator
 * is called from one thread at a time.
 */
#ifndef ITC18_SIMULATOR_H
#define ITC18_SIMULATOR_H

#include "ITC18.h"
#include "Player.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Scaling, in floating point because C++ frowns on enumerators in such arithmetic. */
#define ITC18Simulator_CountsPerVolt 3200.0     /* every analogue input and output */
#define ITC18Simulator_PicoamperesPerVolt 400.0 /* at output 0 */
#define ITC18Simulator_MillivoltsPerVolt 100.0  /* at input 0 */
#define ITC18Simulator_CountsPerPicoampere \
    (ITC18Simulator_CountsPerVolt / ITC18Simulator_PicoamperesPerVolt) /* 8, at output 0 */
#define ITC18Simulator_CountsPerMillivolt \
    (ITC18Simulator_CountsPerVolt / ITC18Simulator_MillivoltsPerVolt) /* 32, at input 0 */

enum ITC18Simulator_Limit {
    ITC18Simulator_Devices = 4,            /* interfaces connected */
    ITC18Simulator_SequenceMemory = 256,   /* sequence entries that a device holds */
    ITC18Simulator_ShortestInterval = 4,   /* [µs] */
    ITC18Simulator_LongestInterval = 65535 /* [µs] */
};

enum ITC18Simulator_Result {
    ITC18Simulator_Success = 0,
    ITC18Simulator_NullPointer = 1,
    ITC18Simulator_BadDeviceNumber = 2, /* 3 is not used */
    ITC18Simulator_NotOpen = 4,
    ITC18Simulator_NotInitialized = 5,
    ITC18Simulator_BadOptions = 6,
    ITC18Simulator_BadInterval = 7,
    ITC18Simulator_BadSequenceLength = 8, /* the words have not been read */
    ITC18Simulator_BadSequenceWord = 9,   /* unknown bits, or no such input or output */
    ITC18Simulator_BadEndMark = 10,       /* missing on the last entry, or on an earlier one */
    ITC18Simulator_NoSequence = 11,
    ITC18Simulator_NoInterval = 12,
    ITC18Simulator_NotPrepared = 13, /* no InitializeAcquisition since the last play */
    ITC18Simulator_BadPoints = 14,
    ITC18Simulator_BadCall = 15,
    ITC18Simulator_OutOfMemory = 16
};

enum ITC18Simulator_Call {
    ITC18Simulator_CallGetStructureSize = 0,
    ITC18Simulator_CallOpen = 1,
    ITC18Simulator_CallInitialize = 2,
    ITC18Simulator_CallSetSamplingInterval = 3,
    ITC18Simulator_CallSetSequence = 4,
    ITC18Simulator_CallInitializeAcquisition = 5,
    ITC18Simulator_CallClose = 6,
    ITC18Simulator_CallChange = 7, /* from here on those of streams */
    ITC18Simulator_CallStart = 8,
    ITC18Simulator_CallGetRoom = 9,
    ITC18Simulator_CallWrite = 10,
    ITC18Simulator_CallRead = 11,
    ITC18Simulator_CallStop = 12,
    ITC18Simulator_CallWait = 13,
    ITC18Simulator_Calls = 14
};

typedef struct ITC18Simulator_State {
    int32_t open; /* 1 or 0, as the next two; everything else is 0 while it is 0 */
    int32_t initialized;
    int32_t prepared;       /* a play may follow */
    int32_t interval;       /* per sequence entry [µs]; 0 = not set */
    int32_t sequenceLength; /* entries; 0 = no sequence */
    uint32_t sequence[ITC18Simulator_SequenceMemory];
} ITC18Simulator_State;

/*
 * Plays an output buffer and collects the input buffer of the same points. Returns at once, not
 * after the time that the acquisition stands for. Uses up the preparation: the next play needs
 * another ITC18_InitializeAcquisition. A refused play writes nothing and changes nothing.
 *   device  a device that is prepared and has its interval set
 *   output  points × entries samples, the sample of entry c at point p at index p × entries + c
 *   input   room for as many, filled in the same order; may be the output buffer itself, must not
 *           overlap it otherwise
 *   points  passes through the sequence, 1 or more
 */
ITC18_API int32_t ITC18Simulator_Play(void* device, const uint16_t* output, uint16_t* input,
                                      int32_t points);

/*
 * Makes one of the calls fail on every device until told otherwise. A failing call leaves
 * the device as it is, except that ITC18_Close lets go of the interface all the same: otherwise
 * nobody who ignores its result could open the interface again.
 *   call    one of ITC18Simulator_Call
 *   result  what the call returns instead (GetStructureSize: as the size); 0 = works again
 */
ITC18_API int32_t ITC18Simulator_FailCall(int32_t call, int32_t result);

/* As ITC18Simulator_FailCall, but of the coming calls the nth alone, from 1. */
ITC18_API int32_t ITC18Simulator_FailNthCall(int32_t call, int32_t nth, int32_t result);

/* Copies the state of an interface, 0 to 3, open or not, into *state. */
ITC18_API int32_t ITC18Simulator_GetState(int32_t deviceNumber, ITC18Simulator_State* state);

/*
 * The calls of streams. They return one of PlayerResult, say in `problem`, which may be null, what
 * is wrong, and are those of Player.h: `device` is the player. CorvantisSimulatedPlayer is made of
 * them.
 */

/* The settings of interface, amplifier, electrode and cell. */
ITC18_API const PlayerSettingInfo* ITC18Simulator_Settings(int32_t* count);

/*
 * Connects a preparation to an open device, in place of the one before, at rest at a command of 0.
 * It stays connected until it is disconnected, or the device is opened anew or closed. A failing
 * call of streams works again, unless the settings say otherwise.
 */
ITC18_API int32_t ITC18Simulator_Connect(void* device, const PlayerSetting* settings, int32_t count,
                                         PlayerProblem* problem);
ITC18_API void ITC18Simulator_Disconnect(void* device);

/*
 * Between two epochs, before samples are written. The cell's state stays while its model does, and
 * played time, by which stall and loss are set, goes on.
 */
ITC18_API int32_t ITC18Simulator_Change(void* device, const PlayerSetting* settings, int32_t count,
                                        PlayerProblem* problem);

/* The device must be prepared, and hold the epoch's sequence and interval. */
ITC18_API int32_t ITC18Simulator_Start(void* device, const PlayerEpoch* epoch, int32_t* delay,
                                       PlayerProblem* problem);

typedef struct ITC18Simulator_Room {
    int32_t writable; /* samples that the output buffer has room for, the epoch's or more */
    int32_t readable; /* samples that the input buffer holds */
} ITC18Simulator_Room;

/* What can be written and read now. */
ITC18_API int32_t ITC18Simulator_GetRoom(void* device, ITC18Simulator_Room* room,
                                         PlayerProblem* problem);

ITC18_API int32_t ITC18Simulator_Write(void* device, const uint16_t* samples, int32_t count,
                                       int32_t* written, PlayerProblem* problem);
ITC18_API int32_t ITC18Simulator_Read(void* device, uint16_t* samples, int32_t count,
                                      int32_t* taken, PlayerProblem* problem);
ITC18_API int32_t ITC18Simulator_Stop(void* device, PlayerProblem* problem);

/* In real-time pacing it sleeps. */
ITC18_API int32_t ITC18Simulator_Wait(void* device, int64_t microseconds, const uint16_t* levels,
                                      PlayerProblem* problem);

/* The external trigger, for which a started epoch may wait; nothing if none does. */
ITC18_API int32_t ITC18Simulator_Trigger(void* device);

/*
 * Moves the clock of all devices by hand, forward: it stands still from the first such call until
 * ITC18Simulator_Reset, and nothing sleeps by it.
 */
ITC18_API void ITC18Simulator_AdvanceClock(int64_t microseconds);

/*
 * Closes every device, removes every fault and lets the clock go again, as if the simulator had
 * just been loaded.
 */
ITC18_API void ITC18Simulator_Reset(void);

#ifdef __cplusplus
}
#endif

#endif
