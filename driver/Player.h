/*
 * Player.h: what `corvantis record` asks of an acquisition interface.
 *
 * The library prepares an epoch and stores it; moving its samples is the business of the
 * interface's driver. A laboratory writes these calls for its own driver, in a shared library that
 * exports CorvantisPlayer, and names that library in its protocols; the simulated interface is
 * played in the same way.
 *
 * Conventions
 *  1. Calls return one of PlayerResult. After anything but Player_Success the problem, if the
 *     caller gave one, holds a sentence for people and, where there is one, the number of the
 *     setting in question. A refused call changes nothing.
 *  2. The order is open, change as often as settings differ, then for each epoch start, write and
 *     read in turn, stop; between epochs wait; at the end close. Samples are written before start
 *     too: an interface that plays at once needs some. A stop drops what is left of them.
 *  3. A sample is a signed 16-bit converter count in unsigned storage. Samples are interleaved: the
 *     sample of sequence entry c at point p is number p * entries + c.
 *  4. The calls are made from one thread at a time. None waits for the interface but `wait`: where
 *     nothing can be moved, nothing is, and the caller asks again.
 *  5. What is handed over is the caller's and need only last as long as the call, but the device,
 *     which stays, and the conductances of an epoch, which stay until its stop.
 */
#ifndef CORVANTIS_PLAYER_H
#define CORVANTIS_PLAYER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32)
#define PLAYER_EXPORT __declspec(dllexport)
#else
#define PLAYER_EXPORT __attribute__((visibility("default")))
#endif

enum {
    Player_Version = 1,        /* of these declarations */
    Player_TextLength = 256,   /* bytes of a problem's text, terminator included */
    Player_LongestDelay = 4096 /* samples between a played sample and its echo */
};

typedef enum PlayerResult {
    Player_Success = 0,
    Player_BadSetting = 1, /* no such setting, or no such value of it */
    Player_Refused = 2,    /* out of order, or more than this interface can do */
    Player_Overflow = 3,   /* acquired samples were lost because nobody read them in time */
    Player_Underrun = 4,   /* nothing was left to play in mid-epoch */
    Player_Lost = 5,       /* the interface does not answer any more; only close follows */
    Player_OutOfMemory = 6
} PlayerResult;

typedef struct PlayerProblem {
    int32_t setting;              /* number of the setting among those given, or -1 */
    char text[Player_TextLength]; /* UTF-8 */
} PlayerProblem;

/* One setting as a protocol has it: `cell.model`, `electrode.accessResistance`. */
typedef struct PlayerSetting {
    const char* name; /* its places joined by dots */
    const char* text; /* as written; of a truth value "true" or "false" */
    double number;    /* not a number where it is none */
} PlayerSetting;

/* What a player knows of one of its settings. */
typedef struct PlayerSettingInfo {
    const char* name;
    const char* unit;    /* "" without one */
    const char* meaning; /* a clause */
    const char* choices; /* of a text: separated by "|", "" for any; of a number null */
    double least, most;  /* of a number */
    const char* unless;  /* what holds if it is not given, as it would be written */
} PlayerSettingInfo;

typedef struct PlayerEpoch {
    int32_t entries;          /* of the channel sequence */
    const uint32_t* sequence; /* a word an entry, as ITC18_SetSequence has them */
    int32_t interval;         /* one pass through the sequence [µs], a multiple of entries */
    int32_t points;           /* passes */
    int32_t trigger;          /* 1: begins with the external trigger, 0: at once */
    int32_t latency; /* of dynamic clamp [points]: from a potential to the current it makes */
    const float* excitatory; /* conductance at each point [nS], or null: no dynamic clamp */
    const float* inhibitory; /* as many, null if the other is */
    double excitatoryReversal, inhibitoryReversal; /* [mV] */
} PlayerEpoch;

typedef struct PlayerCalls {
    int32_t version;   /* Player_Version */
    int32_t simulated; /* 1: there is no cell, which recordings say of themselves; else 0 */

    /* The settings that open and change take, for help, schemas and checks: count of them. */
    const PlayerSettingInfo* (*settings)(int32_t* count);

    /*
     * Open an interface.
     *   device   the driver's device structure as the library has opened it
     *   settings the whole rig: each name at most once; what is not named is as `unless` says
     *   player   where to put the player, which lasts until close
     */
    int32_t (*open)(void* device, const PlayerSetting* settings, int32_t count, void** player,
                    PlayerProblem* problem);

    /* Change some settings between two epochs; the others stay. All or none. */
    int32_t (*change)(void* player, const PlayerSetting* settings, int32_t count,
                      PlayerProblem* problem);

    /*
     * Begin an epoch with the sequence and interval that the device holds.
     *   delay  samples, 0 to Player_LongestDelay, that are read before the one that shows the first
     *          played sample: the caller writes as many more at the end, the last point's again,
     *          and leaves out the first ones it reads
     */
    int32_t (*start)(void* player, const PlayerEpoch* epoch, int32_t* delay,
                     PlayerProblem* problem);

    /* Hand over samples to be played: as many as fit, 0 to count. */
    int32_t (*write)(void* player, const uint16_t* samples, int32_t count, int32_t* written,
                     PlayerProblem* problem);

    /* Take acquired samples: as many as there are, 0 to count. */
    int32_t (*read)(void* player, uint16_t* samples, int32_t count, int32_t* taken,
                    PlayerProblem* problem);

    /* End the epoch, whole or not. The outputs stay where the last played point left them. */
    int32_t (*stop)(void* player, PlayerProblem* problem);

    /*
     * Let time pass between two epochs.
     *   microseconds  0 or more
     *   levels        what the analogue outputs 0 to 3 and the digital output stand at meanwhile,
     *                 [DAC codes], or null: as they are
     */
    int32_t (*wait)(void* player, int64_t microseconds, const uint16_t* levels,
                    PlayerProblem* problem);

    /* Let go of everything; also after Player_Lost. */
    void (*close)(void* player);
} PlayerCalls;

/* The one symbol that a player's library exports. The table is the library's; no call in it is
 * null. */
typedef const PlayerCalls* CorvantisPlayerFunction(void);
PLAYER_EXPORT const PlayerCalls* CorvantisPlayer(void);

#ifdef __cplusplus
}
#endif

#endif
