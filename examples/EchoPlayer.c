/*
 * EchoPlayer.c: the smallest player, to begin one's own with. Its interface is an array: what is
 * written to the output of an entry is read at the input of that entry. See docs/player.md.
 */
#include <stdlib.h>
#include <string.h>

#include "Player.h"

enum { kHeld = 65536 }; /* samples that this interface holds */

typedef struct Echo {
    uint16_t samples[kHeld]; /* a ring */
    int64_t written, taken;  /* samples of this epoch */
    int started;
} Echo;

static int32_t Say(PlayerProblem* problem, int32_t result, int32_t setting, const char* text) {
    if (problem == NULL) return result;
    problem->setting = setting;
    strncpy(problem->text, text, Player_TextLength - 1);
    problem->text[Player_TextLength - 1] = '\0';
    return result;
}

/* A driver's settings would stand here, each with its name, unit, meaning, range and default. */
static const PlayerSettingInfo* Settings(int32_t* count) {
    *count = 0;
    return NULL;
}

static int32_t Change(void* player, const PlayerSetting* settings, int32_t count,
                      PlayerProblem* problem) {
    (void)player;
    (void)settings;
    return count == 0 ? Player_Success
                      : Say(problem, Player_BadSetting, 0, "the echo player has no settings");
}

/* `device` is the structure that the driver's own calls take. */
static int32_t Open(void* device, const PlayerSetting* settings, int32_t count, void** player,
                    PlayerProblem* problem) {
    const int32_t result = Change(NULL, settings, count, problem);
    (void)device;
    if (result != Player_Success) return result;
    *player = calloc(1, sizeof(Echo));
    return *player != NULL ? Player_Success : Say(problem, Player_OutOfMemory, -1, "memory is out");
}

static int32_t Start(void* player, const PlayerEpoch* epoch, int32_t* delay,
                     PlayerProblem* problem) {
    Echo* const echo = player;
    if (echo->started) return Say(problem, Player_Refused, -1, "an epoch is under way");
    if (epoch->trigger) return Say(problem, Player_Refused, -1, "an echo has no trigger");
    if (epoch->excitatory != NULL)
        return Say(problem, Player_Refused, -1, "an echo has no amplifier for dynamic clamp");
    echo->started = 1;
    *delay = 0;
    return Player_Success;
}

static int32_t Write(void* player, const uint16_t* samples, int32_t count, int32_t* written,
                     PlayerProblem* problem) {
    Echo* const echo = player;
    (void)problem;
    for (*written = 0; *written < count && echo->written < echo->taken + kHeld; ++*written)
        echo->samples[echo->written++ % kHeld] = samples[*written];
    return Player_Success;
}

static int32_t Read(void* player, uint16_t* samples, int32_t count, int32_t* taken,
                    PlayerProblem* problem) {
    Echo* const echo = player;
    if (!echo->started) return Say(problem, Player_Refused, -1, "no epoch is under way");
    for (*taken = 0; *taken < count && echo->taken < echo->written; ++*taken)
        samples[*taken] = echo->samples[echo->taken++ % kHeld];
    return Player_Success;
}

static int32_t Stop(void* player, PlayerProblem* problem) {
    (void)problem;
    memset(player, 0, sizeof(Echo));
    return Player_Success;
}

/* An interface would put the levels out and let the time pass. */
static int32_t Wait(void* player, int64_t microseconds, const uint16_t* levels,
                    PlayerProblem* problem) {
    (void)player;
    (void)microseconds;
    (void)levels;
    (void)problem;
    return Player_Success;
}

const PlayerCalls* CorvantisPlayer(void) {
    static const PlayerCalls calls = {
        .version = Player_Version,
        .simulated = 1,
        .settings = Settings,
        .open = Open,
        .change = Change,
        .start = Start,
        .write = Write,
        .read = Read,
        .stop = Stop,
        .wait = Wait,
        .close = free,
    };
    return &calls;
}
