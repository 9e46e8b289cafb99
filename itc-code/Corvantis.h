/**
 * @file Corvantis.h
 * @brief The whole public interface of Corvantis: synthesise stimuli, set up an ITC18 interface,
 * record epochs into a data file, and read or recompute them later, bit for bit.
 *
 * Valid C99 and C++20. Conventions that hold for every declaration below:
 *
 * 1. Result codes. An operation returns an int32_t from #ITCResult, 0 for success, and hands
 *    values back through pointers. A code that a declaration does not list is not returned by it.
 *    After a failure everything is as it was unless the declaration says otherwise, as these do: a
 *    refused #ITCSetSeq keeps the new sequence, a failed #ITCSaveToFile has counted its epoch, a
 *    failed opening or creating leaves the file before it behind, a failed read keeps what it read,
 *    a builder or adder out of memory leaves the slot empty or the component's type set, and a
 *    start-up that fails keeps the blocks that it took.
 * 2. State. The library holds one device, one open file, one current file header, one current epoch
 *    header, four stimulus slots and one table of epoch positions, all in the globals below. Unless
 *    a declaration says that it needs no start-up, it returns #ITC_NOT_STARTED before #ITCInit or
 *    #ITCInitAnalysis, and after #ITCFinish or #ITCFinishAnalysis. Without a start-up there answer:
 *    accessors of the current headers, as of blank ones; creating and opening files, with
 *    #ITC_FILE_ERROR; closing; stimulus values by epoch number, with #ITC_FILE_ERROR;
 *    #ITCFreeParams and #ITCFinishAnalysis, with 0; and in full all that needs no state: codecs,
 *    generators, random numbers, transform, interleaving, stopwatch, paths, #ITCMalloc, #ITCFree.
 *    A test of arguments that a declaration puts before anything else comes before this one too.
 * 3. Threads. Nothing is guarded. Call the library from one thread at a time.
 * 4. Ownership. The library owns the headers, the table of epoch positions, the slot records and
 *    the components of summed records. The caller owns its sample buffers and its own records; a
 *    builder copies the record it is given. Pointers returned by accessors point into the library's
 *    state: read or write through them at once, never free them.
 * 5. Pointers. A pointer that is handed over points to what its declaration says, and is null only
 *    where the declaration speaks of it.
 * 6. Indices. Epochs, sequence entries, slots and components count from 0. Slot c belongs to
 *    sequence entry c, whichever output that entry drives: after ITCSetSeq("01", "02") slot 1 plays
 *    at output 2. So it is with `stimType` and with all other arrays of four in the epoch header,
 *    gains and units among them. A parameter `channel` is such a number, of a slot and its entry,
 *    unless its declaration speaks of inputs or outputs of the interface.
 * 7. Units. A level is in DAC codes (16-bit converter counts) held in 32 bits, a length in samples
 *    ("points") of one sequence entry, a sampling interval in microseconds. A computed sample is
 *    truncated toward zero and its low 16 bits are stored: there is no clamping.
 * 8. Standard output. Start-up, stimulus calculation and some failures print a line each on the
 *    standard output of the process; each declaration names what it prints.
 *
 * One epoch, from end to end:
 *   - once: #ITCInit, #ITCCreateFile; #ITCWriteFileCom at any time before a save
 *   - #ITCSetSeq: which input and output each sequence entry has
 *   - #ITCSetAcqParams: interval and points, for the sequence that is set. It tests the points of
 *     one entry; that points times entries fit the buffers is tested by #ITCUpdateStm and
 *     #ITCSaveToFile, and a longer epoch passes until then
 *   - a builder, such as #ITCPulseParams, for the slot of every entry: it tests its lengths against
 *     those points. For a sum #ITCSummedParams, then an adder for each component. Slots keep their
 *     records from epoch to epoch, for as long as their lengths fit
 *   - #ITCUpdateStm: computes the output buffer
 *   - #ITCInitAcq: arms the device; the driver's own calls then play the output buffer and fill the
 *     input buffer
 *   - #ITCWriteEpochCom, #ITCWriteAmpGain, #ITCWriteInputUnits and their like: fields of the epoch
 *     header, which also stay from epoch to epoch
 *   - #ITCSaveToFile; if it returns #ITC_FILE_ERROR the epoch is not in the file, and may be saved
 *     again
 *   - once: #ITCCloseFile, #ITCFinish
 */
#ifndef CORVANTIS_H
#define CORVANTIS_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#if defined(_MSC_VER)
#include <winsock2.h> /* struct timeval */
#else
#include <sys/time.h>
#endif

#ifndef CORVANTIS_API
#if defined(_WIN32) && defined(CORVANTIS_BUILDING)
/** Marks a symbol that the shared library exports. */
#define CORVANTIS_API __declspec(dllexport)
#elif defined(_WIN32) && !defined(CORVANTIS_STATIC)
#define CORVANTIS_API __declspec(dllimport)
#elif defined(__GNUC__)
#define CORVANTIS_API __attribute__((visibility("default")))
#else
#define CORVANTIS_API
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** Result codes of every operation, for messages in these words; 3 and 8 are never returned. */
typedef enum ITCResult {
    /** "done" */
    ITC_SUCCESS = 0,
    /** "the library is not started, or the device refused: is it on, connected and not in use?" */
    ITC_NOT_STARTED = 1,
    /** "a slot has no stimulus, one of another type or one that cannot be computed, or the epoch is
     * larger than the output buffer" */
    ITC_STIMULUS_ERROR = 2,
    /** "the device refused the sampling interval, or the stored epoch is larger than the buffers"
     */
    ITC_TOO_LARGE = 4,
    /** "out of memory" */
    ITC_OUT_OF_MEMORY = 5,
    /** "bad sequence, interval, latency or index, more points than the buffers hold, or a stimulus
     * whose lengths do not add up to the epoch's points" */
    ITC_BAD_ARGUMENT = 6,
    /** "the file cannot be created, opened, read or written, exists already, is recorded by another
     * program, or has no such epoch" */
    ITC_FILE_ERROR = 7,
    /** "the file was made by a newer version" */
    ITC_VERSION_TOO_NEW = 9
} ITCResult;

/** Fixed sizes of the interface. */
enum {
    ITC_CHANNELS = 4,         /**< most sequence entries, stimulus slots, and analogue outputs */
    ITC_COMMENT_LENGTH = 512, /**< characters of a comment, terminator included */
    ITC_UNITS_LENGTH = 16,    /**< characters of a unit name; a full one has no terminator */
    ITC_USER_VALUES = 24,     /**< free user values of an epoch */
    ITC_COMPONENTS = 256,     /**< most components of a summed stimulus */
    ITC_FILE_VERSION = 8      /**< format version of the files that this library creates */
};

/** Stimulus type codes: the values of `stimType` and `componentType`. */
typedef enum ITCStimulusType {
    ITC_STIMULUS_SINE = 1,                 /**< #ITCSineParameters */
    ITC_STIMULUS_NOISE = 2,                /**< #ITCNoiseParameters, filtered Gaussian noise */
    ITC_STIMULUS_PULSE = 3,                /**< #ITCPulseParameters */
    ITC_STIMULUS_RAMP = 4,                 /**< #ITCRampParameters */
    ITC_STIMULUS_FILEWAVE = 5,             /**< #ITCFilewaveParameters, the caller's own wave */
    ITC_STIMULUS_GENERIC = 6,              /**< #ITCGenericParameters, stored but not computed */
    ITC_STIMULUS_SUMMED = 7,               /**< #ITCSummedParameters, a sum of components */
    ITC_STIMULUS_TRIGGER_SERIES = 8,       /**< #ITCTrigSeriesParameters */
    ITC_STIMULUS_SEGMENTED_NOISE = 9,      /**< #ITCSegmentedNoiseParameters */
    ITC_STIMULUS_BINARY_NOISE = 10,        /**< #ITCBinaryNoiseParameters */
    ITC_STIMULUS_DYNAMIC_CLAMP = 11,       /**< #ITCGClampParameters */
    ITC_STIMULUS_CIRCLE_PULSE = 12,        /**< #ITCCirclePulseParameters, stored, not computed */
    ITC_STIMULUS_ALTERNATING_VOLTAGE = 13, /**< #ITCAlternateVoltageParameters */
    ITC_STIMULUS_SPATIAL = 14              /**< #ITCSpatialStmParameters */
} ITCStimulusType;

/* ---- Stimulus records ------------------------------------------------------------------- */

/** Sine: amplitude * sin(6.283184 * i / period) + mean, i counting the points from 0. */
typedef struct ITCSineParameters {
    int32_t amplitude;   /**< peak amplitude [DAC codes] */
    int32_t mean;        /**< holding level, about which the sine oscillates [DAC codes] */
    int32_t period;      /**< period of the sine [samples] */
    int32_t phase;       /**< kept and stored; the calculation does not read it */
    int32_t points;      /**< length of the sine [samples] */
    int32_t tailPoints;  /**< at the holding level behind it [samples] */
    int32_t prePoints;   /**< at the holding level before it [samples] */
    int32_t reserved[3]; /**< kept in memory, zero on file */
} ITCSineParameters;

/**
 * Filtered Gaussian noise; see #ITCStmCreateNoise for its two methods. For this and the other two
 * noises the seeds 0 and 1 are the same sequence.
 */
typedef struct ITCNoiseParameters {
    int32_t amplitude;       /**< standard deviation [DAC codes] */
    int32_t mean;            /**< holding level [DAC codes] */
    int32_t seed;            /**< 0 or above reproduces its waveform; below 0 continues */
    int32_t points;          /**< length of the noise [samples] */
    int32_t tailPoints;      /**< at the holding level behind it [samples] */
    int32_t prePoints;       /**< at the holding level before it [samples] */
    int32_t smoothingPoints; /**< window of the older method's moving average [samples] */
    int32_t cutoffFrequency; /**< corner of the low-pass filter [Hz] */
    int32_t filterOrder;     /**< cascaded first-order sections of that filter [>= 0] */
} ITCNoiseParameters;

/** Pulse: mean + amplitude on every point. */
typedef struct ITCPulseParameters {
    int32_t amplitude;   /**< added to the holding level during the pulse [DAC codes] */
    int32_t mean;        /**< holding level [DAC codes] */
    int32_t points;      /**< length of the pulse [samples] */
    int32_t tailPoints;  /**< at the holding level behind it [samples] */
    int32_t prePoints;   /**< at the holding level before it [samples] */
    int32_t reserved[3]; /**< kept in memory, zero on file */
} ITCPulseParameters;

/** Ramp: mean + amplitude * i / points; the level mean + amplitude itself is not reached. */
typedef struct ITCRampParameters {
    int32_t amplitude;   /**< rise over the points [DAC codes] */
    int32_t mean;        /**< holding level, from which the ramp starts [DAC codes] */
    int32_t points;      /**< length of the ramp [samples] */
    int32_t tailPoints;  /**< at the holding level behind it [samples] */
    int32_t prePoints;   /**< at the holding level before it [samples] */
    int32_t reserved[3]; /**< kept in memory, zero on file */
} ITCRampParameters;

/** A wave supplied by the caller, played as it is; never stored in the data file. */
typedef struct ITCFilewaveParameters {
    const uint16_t* samples; /**< the caller's samples; must outlive every calculation */
    int32_t length;          /**< samples to play [samples] */
} ITCFilewaveParameters;

/** Generic stimulus: stored with the epoch, not computed by the library. */
typedef struct ITCGenericParameters {
    int32_t amplitude;   /**< as the application means it [DAC codes] */
    int32_t mean;        /**< holding level [DAC codes] */
    int32_t points;      /**< length of the stimulus [samples] */
    int32_t tailPoints;  /**< at the holding level behind it [samples] */
    int32_t prePoints;   /**< at the holding level before it [samples] */
    int32_t reserved[3]; /**< kept in memory, zero on file */
} ITCGenericParameters;

/** Sum of up to 256 components; its slot's record owns the component records. */
typedef struct ITCSummedParameters {
    int32_t count;                        /**< components in use [0..256] */
    int8_t componentType[ITC_COMPONENTS]; /**< #ITCStimulusType of each; sums do not nest */
    void* components[ITC_COMPONENTS];     /**< record of each, null where none was added */
} ITCSummedParameters;

/** Trigger series: baseline + amplitude on every interval-th point, baseline elsewhere. */
typedef struct ITCTrigSeriesParameters {
    int32_t baseline;    /**< holding level [DAC codes] */
    int32_t amplitude;   /**< added to the baseline on a trigger sample [DAC codes] */
    int32_t interval;    /**< from one trigger sample to the next [samples, not 0] */
    int32_t points;      /**< [samples] */
    int32_t tailPoints;  /**< [samples] */
    int32_t prePoints;   /**< [samples] */
    int32_t reserved[3]; /**< kept in memory */
} ITCTrigSeriesParameters;

/** Segmented noise: one Gaussian level per segment, added to the holding level. */
typedef struct ITCSegmentedNoiseParameters {
    int32_t amplitude;     /**< standard deviation of the levels [DAC codes] */
    int32_t mean;          /**< holding level [DAC codes] */
    int32_t seed;          /**< 0 or above reproduces its waveform; below 0 continues */
    int32_t points;        /**< length of the noise [samples] */
    int32_t tailPoints;    /**< at the holding level behind it [samples] */
    int32_t prePoints;     /**< at the holding level before it [samples] */
    int32_t segmentPoints; /**< length of a segment [samples, not 0] */
    int32_t reserved[3];   /**< kept in memory, zero on file */
} ITCSegmentedNoiseParameters;

/** Binary noise: plus or minus the amplitude per segment, added to the holding level. */
typedef struct ITCBinaryNoiseParameters {
    int32_t amplitude;     /**< magnitude of the levels [DAC codes] */
    int32_t mean;          /**< holding level [DAC codes] */
    int32_t seed;          /**< 0 or above reproduces its waveform; below 0 continues */
    int32_t points;        /**< length of the noise [samples] */
    int32_t tailPoints;    /**< at the holding level behind it [samples] */
    int32_t prePoints;     /**< at the holding level before it [samples] */
    int32_t segmentPoints; /**< length of a segment [samples, not 0] */
    int32_t reserved[3];   /**< kept in memory, zero on file */
} ITCBinaryNoiseParameters;

/** Dynamic clamp: the output is zero; the conductances are #ExcitatoryG and #InhibitoryG. */
typedef struct ITCGClampParameters {
    float excitatoryReversal; /**< reversal potential of the excitatory conductance [mV] */
    float inhibitoryReversal; /**< reversal potential of the inhibitory conductance [mV] */
} ITCGClampParameters;

/** Circle pulse: stored with the epoch, not computed by the library. */
typedef struct ITCCirclePulseParameters {
    int32_t value0;     /**< kept as given */
    int32_t value1;     /**< kept as given */
    int32_t value2;     /**< kept as given */
    int32_t tripleA[3]; /**< kept as given */
    int32_t tripleB[3]; /**< kept as given */
    int32_t points;     /**< length of the stimulus [samples] */
    int32_t tailPoints; /**< at the holding level behind it [samples] */
    int32_t prePoints;  /**< at the holding level before it [samples] */
} ITCCirclePulseParameters;

/** Alternating voltage: mean and mean + amplitude in turn, halfPeriod samples each. */
typedef struct ITCAlternateVoltageParameters {
    int32_t halfPeriod;  /**< at each level [samples, not 0] */
    int32_t amplitude;   /**< added to the mean on the second level [DAC codes] */
    int32_t mean;        /**< first level, and the holding level [DAC codes] */
    int32_t points;      /**< length of the alternation [samples] */
    int32_t tailPoints;  /**< at the holding level behind it [samples] */
    int32_t prePoints;   /**< at the holding level before it [samples] */
    int32_t reserved[3]; /**< kept in memory, zero on file */
} ITCAlternateVoltageParameters;

/** Spatial stimulus: its output is all zero; what is shown is no business of the library. */
typedef struct ITCSpatialStmParameters {
    int32_t points;      /**< zero samples generated [samples] */
    int32_t reserved[3]; /**< kept in memory, zero on file */
} ITCSpatialStmParameters;

/* ---- Headers ---------------------------------------------------------------------------- */

/** The data file's header: 580 bytes in memory and, big-endian, at the start of the file. */
typedef struct ITCFileHeader {
    int8_t version;                       /**< format version [1..8] */
    uint8_t padding0[3];                  /**< zero on file */
    int32_t fileLongA;                    /**< spare; kept as it stands */
    char fileComment[ITC_COMMENT_LENGTH]; /**< comment on the whole file, terminated within */
    int8_t fileFlagA;                     /**< 1; kept as it stands */
    int8_t fileFlagB;                     /**< 2; kept as it stands */
    uint8_t padding1[2];                  /**< zero on file */
    float inputScale;                     /**< scale of the inputs, 3200 [counts/V] */
    float outputScale;                    /**< scale of the outputs, 3200 [counts/V] */
    int8_t pipelineDepth;                 /**< the device's pipeline length, 5 [samples] */
    uint8_t padding2[3];                  /**< zero on file */
    int32_t numEpochs;                    /**< epochs in the file */
    int32_t epochTablePosition; /**< file offset of the position table, unsigned [bytes] */
    float offset;               /**< a value for the whole file, kept as given */
    int8_t fileFlagC;           /**< 2; kept as it stands */
    int8_t fileFlagD;           /**< 1; kept as it stands */
    int8_t stmDataFormat;       /**< format code of stored stimulus data */
    uint8_t padding3[1];        /**< zero on file */
    int32_t fileLongB;          /**< spare; kept as it stands */
    uint8_t reserved[24];       /**< zero on file */
} ITCFileHeader;

/** An epoch's header: 912 bytes in memory and, big-endian, at the start of each epoch. */
typedef struct ITCEpochHeader {
    float epochTime;                       /**< time of the epoch, as the application counts */
    char epochComment[ITC_COMMENT_LENGTH]; /**< comment on the epoch, terminated within */
    float ampGain[ITC_CHANNELS];           /**< amplifier gain of each entry's input [V/unit] */
    float ampValue[ITC_CHANNELS];          /**< second amplifier value of each entry */
    float convFactor[ITC_CHANNELS]; /**< conversion factor of each entry's output [units/V] */
    int8_t ampCode[ITC_CHANNELS];   /**< amplifier code of each entry */
    int8_t acqSettingB;             /**< second acquisition setting */
    uint8_t padding0[3];            /**< zero on file */
    int32_t samplingInterval;       /**< one pass of the sequence [µs] */
    int32_t epochPoints;            /**< points of each sequence entry [samples] */
    int32_t sequenceLength;         /**< length of the channel sequence [entries, 1..4] */
    uint32_t channelSequence[ITC_CHANNELS];           /**< device word of each sequence entry */
    int8_t spareChannelBytes[ITC_CHANNELS];           /**< never set by the library */
    int8_t acqSettingA;                               /**< first acquisition setting */
    int8_t stimType[ITC_CHANNELS];                    /**< #ITCStimulusType of each entry */
    char outputUnits[ITC_CHANNELS][ITC_UNITS_LENGTH]; /**< unit name of each entry's stimulus */
    char inputUnits[ITC_CHANNELS][ITC_UNITS_LENGTH];  /**< unit name of each entry's response */
    int8_t ampMode[ITC_CHANNELS];                     /**< amplifier mode of each entry */
    uint8_t padding1[3];                              /**< zero on file */
    int32_t meanOutput[ITC_CHANNELS];  /**< mean output level of each entry [DAC codes] */
    float temperature;                 /**< temperature [°C] */
    uint16_t digitalOutput;            /**< digital output word */
    uint16_t wavelength;               /**< wavelength [nm] */
    float ndf[ITC_CHANNELS];           /**< neutral density filter of each entry */
    uint16_t ledSetting[ITC_CHANNELS]; /**< setting of each LED */
    float userValue[ITC_USER_VALUES];  /**< free values of the experimenter */
    uint16_t pointsLatency;            /**< dynamic-clamp latency [samples] */
    uint8_t reserved[22];              /**< zero on file */
} ITCEpochHeader;

/* ---- State ------------------------------------------------------------------------------ */

/**
 * 0 until the library is started, 1 afterwards; nothing clears it. What counts as started is this 1
 * and both headers being there: not so after an ending, and so again, with headers but without
 * sample buffers, after a start-up behind it that the device stopped.
 */
CORVANTIS_API extern int32_t InitFlag;
/** When #ITCInit started the library [s since 1 January 1970 UTC]. */
CORVANTIS_API extern int32_t InitializationTime;
/** The current file header; owned by the library. */
CORVANTIS_API extern ITCFileHeader* filehdr;
/** The current epoch header; owned by the library. */
CORVANTIS_API extern ITCEpochHeader* epochhdr;
/** The stimulus record of each sequence entry, or null; its type is the entry's `stimType`. */
CORVANTIS_API extern void* StmParameters[ITC_CHANNELS];
/** File offset of each epoch [bytes]; one entry more than epochs while a file is written. */
CORVANTIS_API extern uint32_t* EpochPosition;
/** Capacity of each of the two sample buffers [samples, all sequence entries together]. */
CORVANTIS_API extern int32_t* ITCbufsize;
/** Handle of the acquired samples, interleaved: point p of entry c at p * sequenceLength + c. */
CORVANTIS_API extern uint16_t** ITCInputBuffer;
/** Handle of the stimulus samples, interleaved like the acquired ones. */
CORVANTIS_API extern uint16_t** ITCOutputBuffer;
/** The one data file; keeps its old value after #ITCCloseFile. */
CORVANTIS_API extern FILE* ITCOpenFilePtr;
/** The driver's device structure; never freed. */
CORVANTIS_API extern void* itc;
/** Excitatory conductance, one value per point [nS]; set by the application. */
CORVANTIS_API extern float* ExcitatoryG;
/** Inhibitory conductance, one value per point [nS]; set by the application. */
CORVANTIS_API extern float* InhibitoryG;

/** Input select bits of the ITC18 sequence word for analogue inputs 0 to 7. */
CORVANTIS_API extern const uint32_t itcInputs18[8];
/** Output select bits of the ITC18 sequence word for analogue outputs 0 to 3. */
CORVANTIS_API extern const uint32_t itcOutputs18[4];
/** Input codes of the ITC16; for applications, not used by the library. */
CORVANTIS_API extern const uint32_t itcInputs16[8];
/** Output codes of the ITC16; for applications, not used by the library. */
CORVANTIS_API extern const uint32_t itcOutputs16[4];
/**
 * The interface's pipeline length, 5: samples between an output and its echo at the input. The
 * simulated interface has no such delay, and the library shifts nothing by it.
 */
CORVANTIS_API extern const uint32_t pipelineLength;

/* ---- Start-up, ending, memory ----------------------------------------------------------- */

/**
 * Start the library with a device: allocate the headers and the position table, open and initialise
 * the interface, set the file header's defaults and load the one-entry sequence "0"/"0".
 * Prints "opening", "initializing", "itc18" and "setting defaults", a line each, as it goes.
 * A second start-up takes fresh blocks and forgets the old ones, with an ending in between or not;
 * the simulated interface is taken over by it. If the device cannot be opened, a session that was
 * not ended goes on in the fresh blocks with its headers, positions, slots, buffers and file, but
 * acquires only after #ITCQuickReInit or another start-up.
 * @param[in] inputBuffer handle of the acquired samples; kept, owned by the caller
 * @param[in] outputBuffer handle of the stimulus samples; kept, owned by the caller
 * @param[in] bufsize capacity of each buffer; its value is copied [samples]
 * @param[in] deviceNumber number of the interface, passed to the driver
 * @return #ITC_SUCCESS; #ITC_OUT_OF_MEMORY, blocks taken so far stay; #ITC_NOT_STARTED if the
 * device fails: until it is open #InitFlag stays as it was, afterwards the library counts as
 * started
 */
CORVANTIS_API int32_t ITCInit(uint16_t** inputBuffer, uint16_t** outputBuffer,
                              const int32_t* bufsize, int32_t deviceNumber);
/**
 * Start the library without a device, for reading files. Prints nothing, sets no header defaults
 * (#ITCCreateFile sets them in a file header that is still blank).
 * #ITCFinishAnalysis releases both handles and both buffers: each must be a block from #ITCMalloc,
 * never an array of the caller, which would end the program there. #ITCInitializeAnalysis takes
 * such blocks by itself; whoever has buffers of another kind ends with #ITCFinish instead.
 * @param[in] inputBuffer handle of the acquired samples
 * @param[in] outputBuffer handle of the stimulus samples
 * @param[in] bufsize capacity of each buffer; its value is copied [samples]
 * @return #ITC_SUCCESS; #ITC_OUT_OF_MEMORY, blocks taken so far stay
 */
CORVANTIS_API int32_t ITCInitAnalysis(uint16_t** inputBuffer, uint16_t** outputBuffer,
                                      const int32_t* bufsize);
/**
 * Close and re-open the device of an earlier #ITCInit and load its defaults: an interval of 10 µs
 * in the device, and the sequence "0"/"0" in device and epoch header, so that #ITCSetSeq and
 * #ITCSetAcqParams are due again. `samplingInterval`, `epochPoints`, all other fields, slots,
 * buffers and the file stay. After a start-up that could not open the device this goes on for it:
 * the library then counts as started and the file header has its defaults; sample buffers are those
 * of a session before that was not ended, or none, and then #ITCInit is the way. Prints nothing.
 * @param[in] deviceNumber number of the interface, passed to the driver
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED if there is no device or it fails
 */
CORVANTIS_API int32_t ITCQuickReInit(int32_t deviceNumber);
/**
 * End a start-up made by #ITCInit: close the device, free the headers and the position table.
 * The sample buffers, slot records, capacity cell and the data file stay, and from now on the
 * library touches none of the first three; #InitFlag stays 1 and the pointers keep their values.
 * Only a new start-up may follow.
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED
 */
CORVANTIS_API int32_t ITCFinish(void);
/**
 * Allocate a block as the library does; needs no start-up. The block is not cleared.
 * @param[in] count ignored
 * @param[in] size size of the block, never multiplied by the count [bytes]
 * @return the block, to be released with #ITCFree, or null
 */
CORVANTIS_API void* ITCMalloc(size_t count, size_t size);
/**
 * Release a block from #ITCMalloc; needs no start-up.
 * @param[in] block the block, or null
 * @return #ITC_SUCCESS
 */
CORVANTIS_API int32_t ITCFree(void* block);

/* ---- Acquisition ------------------------------------------------------------------------ */

/**
 * Set the channel sequence in the epoch header and the device. Entry c takes its stimulus from slot
 * c, whichever output it drives.
 * @param[in] inputs one character per sequence entry: '0' to '7', or 'D' for the digital input
 * @param[in] outputs as many characters: '0' to '3', or 'D' for the digital output
 * @return #ITC_SUCCESS; #ITC_BAD_ARGUMENT for unequal lengths or more than four entries, nothing
 * changed, or for a bad character, the header's length and words changed up to it;
 * #ITC_NOT_STARTED, also if there is no device or the driver refuses the sequence, which the header
 * then keeps. Empty texts set `sequenceLength` to 49152.
 */
CORVANTIS_API int32_t ITCSetSeq(const char* inputs, const char* outputs);
/**
 * Set the sampling interval and the length of the coming epoch in the epoch header; the sequence
 * must have been set. Nothing changes on failure. The device works with whole microseconds per
 * entry: the interval divided by the entries, truncated. 100 µs of three entries are 33 µs each, so
 * that a pass takes 99 µs where the file says 100: give a multiple of the entries.
 * @param[in] samplingInterval one pass of the sequence [µs, 4 to 65535 per entry]
 * @param[in] epochPoints points per sequence entry [samples, at most the buffers' capacity]; that
 * all entries together fit too is not tested here, but by #ITCUpdateStm and #ITCSaveToFile
 * @param[in] acqSettingA stored as it is
 * @param[in] acqSettingB stored as it is
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_BAD_ARGUMENT
 */
CORVANTIS_API int32_t ITCSetAcqParams(int32_t samplingInterval, int32_t epochPoints,
                                      int8_t acqSettingA, int8_t acqSettingB);
/**
 * Hand the per-entry sampling interval, truncated, to the device and arm it.
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED, also if the device cannot be armed; #ITC_TOO_LARGE if the
 * interval is refused, after printing "Fail-point (itc-code/ITCInitialize:436)"
 */
CORVANTIS_API int32_t ITCInitAcq(void);
/**
 * Interleave per-entry samples: perEntry[c][p] goes to interleaved[p * entries + c].
 * Needs no start-up and checks nothing.
 * @param[out] interleaved points * entries samples
 * @param[in] perEntry one array of points samples per entry
 * @param[in] entries number of entries; 0 or less does nothing
 * @param[in] points samples of each entry; 0 or less does nothing [samples]
 */
CORVANTIS_API void ITCInterleaveData(uint16_t* interleaved, uint16_t* const* perEntry,
                                     int32_t entries, int32_t points);
/**
 * Split interleaved samples: interleaved[p * entries + c] goes to perEntry[c][p], the inverse of
 * #ITCInterleaveData. Needs no start-up and checks nothing.
 * @param[in] interleaved points * entries samples
 * @param[out] perEntry one array of points samples per entry
 * @param[in] entries number of entries; 0 or less does nothing
 * @param[in] points samples of each entry; 0 or less does nothing [samples]
 */
CORVANTIS_API void ITCSplitData(const uint16_t* interleaved, uint16_t* const* perEntry,
                                int32_t entries, int32_t points);

/* ---- Stimulus records of the sequence entries ------------------------------------------- */

/**
 * Size of a stimulus type's record as the data file counts it.
 * @param[out] size [bytes]; untouched on failure
 * @param[in] type #ITCStimulusType; summed (7) has no entry
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_FILE_ERROR for a type without a size
 */
CORVANTIS_API int32_t ITCStmParamsSize(uint32_t* size, uint32_t type);

/**
 * @name Builders
 * Make a copy of the caller's record the stimulus of a slot, that of the sequence entry of the same
 * number, and set its `stimType`. The slot's previous record is released, with its components if it
 * was a sum.
 * @param[in] channel stimulus slot [0..3]
 * @param[in] params the caller's record; copied, stays the caller's
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_STIMULUS_ERROR for another slot or a null record;
 * #ITC_BAD_ARGUMENT if prePoints + points + tailPoints is not the epoch's `epochPoints` (not tested
 * for file wave, sum, dynamic clamp, circle pulse and spatial); #ITC_OUT_OF_MEMORY, the slot is
 * then empty and `stimType` still holds the old type
 * @{
 */
/** Install a sine. */
CORVANTIS_API int32_t ITCSineParams(int32_t channel, const ITCSineParameters* params);
/** Install filtered noise. */
CORVANTIS_API int32_t ITCNoiseParams(int32_t channel, const ITCNoiseParameters* params);
/** Install a pulse. */
CORVANTIS_API int32_t ITCPulseParams(int32_t channel, const ITCPulseParameters* params);
/** Install a ramp. */
CORVANTIS_API int32_t ITCRampParams(int32_t channel, const ITCRampParameters* params);
/** Install the caller's own wave, whose samples are not copied. */
CORVANTIS_API int32_t ITCFilewaveParams(int32_t channel, const ITCFilewaveParameters* params);
/** Install a trigger series. */
CORVANTIS_API int32_t ITCTrigSeriesParams(int32_t channel, const ITCTrigSeriesParameters* params);
/** Install segmented noise. */
CORVANTIS_API int32_t ITCSegmentedNoiseParams(int32_t channel,
                                              const ITCSegmentedNoiseParameters* params);
/** Install binary noise. */
CORVANTIS_API int32_t ITCBinaryNoiseParams(int32_t channel, const ITCBinaryNoiseParameters* params);
/** Install a circle pulse. */
CORVANTIS_API int32_t ITCCirclePulseParams(int32_t channel, const ITCCirclePulseParameters* params);
/** Install an alternating voltage. */
CORVANTIS_API int32_t ITCAltVoltageParams(int32_t channel,
                                          const ITCAlternateVoltageParameters* params);
/** Install a spatial stimulus. */
CORVANTIS_API int32_t ITCSpatialParams(int32_t channel, const ITCSpatialStmParameters* params);
/** @} */
/**
 * Install a generic record in slot 0, as the other builders do.
 * @param[in] params the caller's record; copied
 * @return as the builders
 */
CORVANTIS_API int32_t ITCGenericParams(const ITCGenericParameters* params);
/**
 * Install a summed record without components, as the other builders do; the component adders fill
 * it. All component pointers of the caller's own record become null.
 * @param[in] channel stimulus slot [0..3]
 * @param[in,out] params the caller's record: `count` says how many components may be added
 * @return as the builders
 */
CORVANTIS_API int32_t ITCSummedParams(int32_t channel, ITCSummedParameters* params);
/**
 * Install a dynamic-clamp record, as the other builders do, and set the header's `pointsLatency`.
 * The latency is tested before anything else; a bad one prints a line that names the limit.
 * @param[in] channel stimulus slot [0..3]
 * @param[in] params the caller's record; copied
 * @param[in] pointsLatency latency [samples, 6 to 65535]; a negative one passes, its low 16 bits
 * count
 * @return as the builders; #ITC_BAD_ARGUMENT for a latency out of range
 */
CORVANTIS_API int32_t ITCGClampParams(int32_t channel, const ITCGClampParameters* params,
                                      int32_t pointsLatency);

/**
 * Release a slot's record, with its components if it is a sum. Its `stimType` stays. Before a
 * start-up and for a slot outside 0 to 3 nothing happens.
 * @param[in] channel stimulus slot [0..3]
 * @return #ITC_SUCCESS
 */
CORVANTIS_API int32_t ITCFreeParams(uint32_t channel);

/**
 * @name Component adders
 * Add a copy of the caller's record to the first free component of a slot's summed stimulus.
 * Lengths are not compared with the epoch.
 * @param[in] channel stimulus slot [0..3], whose `stimType` is summed
 * @param[in] params the caller's record; copied, stays the caller's
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_STIMULUS_ERROR if the slot holds no sum or all of
 * its `count` components are in use; #ITC_OUT_OF_MEMORY, `componentType` is then set already
 * @{
 */
/** Add a sine. */
CORVANTIS_API int32_t ITCAddSineParams(uint32_t channel, const ITCSineParameters* params);
/** Add filtered noise. */
CORVANTIS_API int32_t ITCAddNoiseParams(uint32_t channel, const ITCNoiseParameters* params);
/** Add a pulse. */
CORVANTIS_API int32_t ITCAddPulseParams(uint32_t channel, const ITCPulseParameters* params);
/** Add a ramp. */
CORVANTIS_API int32_t ITCAddRampParams(uint32_t channel, const ITCRampParameters* params);
/** Add the caller's own wave, whose samples are not copied. */
CORVANTIS_API int32_t ITCAddFilewaveParams(uint32_t channel, const ITCFilewaveParameters* params);
/** Add segmented noise. */
CORVANTIS_API int32_t ITCAddSegmentedNoiseParams(uint32_t channel,
                                                 const ITCSegmentedNoiseParameters* params);
/** Add binary noise. */
CORVANTIS_API int32_t ITCAddBinaryNoiseParams(uint32_t channel,
                                              const ITCBinaryNoiseParameters* params);
/** Add dynamic clamp; the latency in the header stays. */
CORVANTIS_API int32_t ITCAddGClampParams(uint32_t channel, const ITCGClampParameters* params);
/** Add a circle pulse. */
CORVANTIS_API int32_t ITCAddCirclePulseParams(uint32_t channel,
                                              const ITCCirclePulseParameters* params);
/** Add an alternating voltage. */
CORVANTIS_API int32_t ITCAddAltVoltParams(uint32_t channel,
                                          const ITCAlternateVoltageParameters* params);
/** @} */

/**
 * Give a new seed to a noise record in a slot; takes effect at the next calculation.
 * @param[in] newSeed 0 or above for a reproducible waveform
 * @param[in] channel stimulus slot [0..3], of type 2, 9 or 10, or summed
 * @param[in] component component of a summed stimulus, of type 2, 9 or 10; else ignored
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_STIMULUS_ERROR if no such noise record is there
 */
CORVANTIS_API int32_t ITCNewRandomSeed(int32_t newSeed, uint32_t channel, uint32_t component);

/* ---- Waveforms -------------------------------------------------------------------------- */

/**
 * Compute every sequence entry's stimulus from its slot and interleave them into the output buffer.
 * Prints what #ITCCalcStimulus prints. On failure the output buffer is untouched.
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_STIMULUS_ERROR if an entry cannot be computed, has
 * no record, would leave the epoch's points, or if the epoch does not fit the output buffer;
 * #ITC_OUT_OF_MEMORY
 */
CORVANTIS_API int32_t ITCUpdateStm(void);
/**
 * Compute one stimulus record's samples. Prints "stim type %d", and "alt voltage create" for 13.
 * @param[in] type #ITCStimulusType; generic, summed and circle pulse have no waveform
 * @param[out] buffer room for every point that the record describes [samples]
 * @param[in] params record of that type; not read for dynamic clamp
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_STIMULUS_ERROR, nothing written, if the type or the
 * record cannot be computed or filtered noise failed
 */
CORVANTIS_API int32_t ITCCalcStimulus(uint32_t type, uint16_t* buffer, const void* params);
/**
 * Compute a summed stimulus: the sample-wise sum of its components, modulo 65536.
 * A failure after the first component leaves the sum so far, and loses a work buffer.
 * @param[out] output room for the epoch's `epochPoints` [samples]
 * @param[in] summed the record; its components are in use up to `count`
 * @return #ITC_SUCCESS; #ITC_STIMULUS_ERROR for a component that is missing or cannot be computed
 * within the epoch's points; #ITC_OUT_OF_MEMORY, output untouched
 */
CORVANTIS_API int32_t ITCStmCreateSum(uint16_t* output, const ITCSummedParameters* summed);
/**
 * Compute filtered Gaussian noise; needs no start-up. While the current file header's `version` is
 * 4 or less: a moving average of deviates from the platform's `rand`; else deviates of #ran2 shaped
 * in the frequency domain with the power response (1 + (f / cutoffFrequency)^2)^-filterOrder.
 * @param[out] buffer prePoints + points + tailPoints samples
 * @param[in] params the record
 * @return #ITC_SUCCESS; #ITC_STIMULUS_ERROR, older method only, if half the window does not fit
 * into prePoints and into tailPoints; #ITC_OUT_OF_MEMORY; nothing is written on failure
 */
CORVANTIS_API int32_t ITCStmCreateNoise(uint16_t* buffer, const ITCNoiseParameters* params);

/**
 * @name Stand-alone generators
 * Compute one waveform into the caller's buffer, sample for sample what #ITCCalcStimulus computes
 * for the record's type, without a slot, a start-up or any print. The sine reads the current epoch
 * header's `samplingInterval`, the dynamic clamp its `epochPoints`. An interval, half period or
 * segment of 0 gives the holding level throughout.
 * @param[out] buffer room for every point that the record describes [samples]
 * @param[in] params the record
 * @return the two noise generators return 0, the others nothing
 * @{
 */
/** Compute a sine. */
CORVANTIS_API void ITCStmCreateSine(int16_t* buffer, const ITCSineParameters* params);
/** Compute a pulse. */
CORVANTIS_API void ITCStmCreatePulse(int16_t* buffer, const ITCPulseParameters* params);
/** Compute a ramp. */
CORVANTIS_API void ITCStmCreateRamp(int16_t* buffer, const ITCRampParameters* params);
/** Compute the caller's own wave. */
CORVANTIS_API void ITCStmCreateFilewave(int16_t* buffer, const ITCFilewaveParameters* params);
/** Compute a trigger series. */
CORVANTIS_API void ITCStmCreateTrigSeries(int16_t* buffer, const ITCTrigSeriesParameters* params);
/** Compute segmented noise. */
CORVANTIS_API uint32_t ITCStmCreateSegmentedNoise(int16_t* buffer,
                                                  const ITCSegmentedNoiseParameters* params);
/** Compute binary noise. */
CORVANTIS_API uint32_t ITCStmCreateBinaryNoise(int16_t* buffer,
                                               const ITCBinaryNoiseParameters* params);
/** Compute an alternating voltage. */
CORVANTIS_API void ITCStmCreateAltVoltage(int16_t* buffer,
                                          const ITCAlternateVoltageParameters* params);
/** Compute a spatial stimulus. */
CORVANTIS_API void ITCStmCreateSpatial(int16_t* buffer, const ITCSpatialStmParameters* params);
/** @} */
/**
 * Dynamic clamp's output: `epochPoints` zero samples, the count from the current epoch header.
 * @param[out] buffer [samples]
 */
CORVANTIS_API void ITCStmCreateGClamp(int16_t* buffer);

/* ---- Random numbers and Fourier transform ----------------------------------------------- */

/**
 * Uniform deviate of L'Ecuyer's combined generator with a Bays-Durham shuffle over 1024 entries
 * (P. L'Ecuyer, Communications of the ACM 31:742-774, 1988; C. Bays and S. D. Durham, ACM TOMS
 * 2:59-64, 1976), in the form that Numerical Recipes calls ran2, with moduli of our own that exceed
 * 31 bits: a few draws early in a sequence leave the state word negative, and the next one restarts
 * from it.
 * @param[in,out] idum state word; 0 or below restarts the generator from its magnitude
 * @return a deviate, nearly always above 0, never above 1
 */
CORVANTIS_API float ran2(int32_t* idum);
/**
 * #ran2 under the name that says why it is called: to restart from a word of 0 or below.
 * @param[in,out] idum state word
 * @return the first deviate of the sequence, which the noise generators discard
 */
CORVANTIS_API float ITCSeedRandom(int32_t* idum);
/**
 * Standard normal deviate on #ran2 (polar method: G. Marsaglia and T. A. Bray, SIAM Review
 * 6:260-264, 1964). Every second call returns the spare of the pair before; a restart of #ran2
 * keeps it.
 * @param[in,out] idum state word of #ran2
 * @return a deviate of mean 0 and variance 1
 */
CORVANTIS_API float ITCNormalDeviate(int32_t* idum);
/**
 * Standard normal deviate on the platform's `rand`, for stimuli of files of version 4 and older.
 * @return a deviate of mean 0 and variance 1; every second call returns the spare of the pair
 * before
 */
CORVANTIS_API float V4ITCNormalDeviate(void);
/**
 * Small congruential generator for callers (the example of B. W. Kernighan and D. M. Ritchie, The C
 * Programming Language); nothing in the library draws from it.
 * @return a number [0..32767]
 */
CORVANTIS_API uint32_t kr_rand(void);
/**
 * Seed #kr_rand.
 * @param[in] seed the new state; it is 1 when the library is loaded
 */
CORVANTIS_API void kr_srand(uint32_t seed);
/**
 * Complex Fourier transform in place (G. C. Danielson and C. Lanczos, Journal of the Franklin
 * Institute 233:365-380, 1942), with 2 pi taken as 6.283184. Needs no start-up, allocates nothing.
 * @param[in] isign +1: X[k] = sum of x[n] exp(+2 pi i n k / nn); -1: the inverse, divided by nn
 * @param[in] nn complex points, a power of two; for any other number nothing is done
 * @param[in,out] data 2 * nn + 1 values: [0] is never touched, point k is [2k + 1] + i [2k + 2]
 */
CORVANTIS_API void ITCfft(int32_t isign, uint32_t nn, float* data);

/* ---- Data file -------------------------------------------------------------------------- */

/**
 * Create the data file and write the current file header. The epoch count and positions are not
 * reset: a second file without a new start-up continues those of the first, and one that is created
 * after another was opened those of that. Positions that are missing then are where the new file
 * ends. Until it is closed or left behind the file is locked, where the system has such locks, and
 * other programs cannot create or empty it; programs that the application starts do not get it.
 * @param[in] pattern path, on Windows in UTF-8; "~" and wildcards are expanded as by the shell when
 * they match a file, the first match is used, and the text itself is used when nothing matches
 * @param[in] overwrite not 0: replace an existing file
 * @return #ITC_SUCCESS; #ITC_FILE_ERROR, also if the file exists and may not be replaced, or if
 * another program records it
 */
CORVANTIS_API int32_t ITCCreateFile(const char* pattern, int32_t overwrite);
/**
 * Open a data file for reading and load its file header and table of epoch positions. A file that
 * is open already is left behind, not closed; a failure may leave this one open. Nothing can be
 * saved into it.
 * @param[in] pattern path, expanded as by #ITCCreateFile
 * @return #ITC_SUCCESS; #ITC_OUT_OF_MEMORY; #ITC_FILE_ERROR, also if the file ends inside of the
 * table: the whole entries are then loaded, and their epochs can be read; #ITC_VERSION_TOO_NEW,
 * header and table loaded
 */
CORVANTIS_API int32_t ITCOpenFile(const char* pattern);
/**
 * As #ITCOpenFile, in a mode that empties the file: always ends with #ITC_FILE_ERROR and an empty
 * file, which is open for saving; or with a file that stays as it is, because it cannot be opened
 * or another program records it. Kept for old callers; never use it on data.
 * @param[in] pattern path, expanded as by #ITCCreateFile
 * @return #ITC_FILE_ERROR; #ITC_OUT_OF_MEMORY
 */
CORVANTIS_API int32_t ITCOpenFileForEdit(const char* pattern);
/**
 * Close the open data file; #ITCOpenFilePtr keeps its value.
 * @return 0, or -1 if closing failed or no file is open (as the standard fclose)
 */
CORVANTIS_API int32_t ITCCloseFile(void);
/**
 * Append the current epoch: header, stimulus records of every sequence entry, and the samples of
 * the input buffer; then the position table and the file header. Flushes the stream. With the
 * environment variable CORVANTIS_SYNC set, and not to 0, the bytes are also forced to the disk, the
 * epoch and the table before the header that counts them: a save that returned 0 then survives a
 * loss of power, at the price of waiting for the disk twice.
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_OUT_OF_MEMORY; #ITC_FILE_ERROR before anything is
 * changed if no file is open for writing, the file was deleted, the samples exceed the input
 * buffer, the sequence is impossible or the file would pass 4 GiB; #ITC_FILE_ERROR with the epoch
 * counted already if a stimulus is missing or a write fails: the file is cut back to what it was,
 * and epochs saved before and after keep their right positions. Counted or not, the epoch may be
 * saved again
 */
CORVANTIS_API int32_t ITCSaveToFile(void);
/**
 * Write a slot's stimulus record, with conductances or components, at the file's current position.
 * @param[in] channel stimulus slot [0..3]
 * @param[in,out] size counter to which the counted size is added [bytes]
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_STIMULUS_ERROR for an empty slot, a type without a
 * size or conductances that are not there; #ITC_FILE_ERROR
 */
CORVANTIS_API int32_t ITCWriteStmParams(uint32_t channel, uint32_t* size);
/**
 * Read a slot's stimulus record from the file's current position, of the type in `stimType`. The
 * slot's old record is released, its components are not.
 * @param[in] channel stimulus slot [0..3]
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_STIMULUS_ERROR for a type without a size;
 * #ITC_OUT_OF_MEMORY; #ITC_FILE_ERROR; the slot then holds nothing or what was read so far
 */
CORVANTIS_API int32_t ITCReadStmParams(uint32_t channel);
/**
 * Make an epoch's header and stimulus records the current ones.
 * @param[in] epoch [0..numEpochs - 1]
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_FILE_ERROR, headers and slots read so far stay
 */
CORVANTIS_API int32_t ITCEpochParameters(int32_t epoch);
/**
 * As #ITCEpochParameters, then read the epoch's samples into the input buffer.
 * @param[in] epoch [0..numEpochs - 1]
 * @return as #ITCEpochParameters; #ITC_TOO_LARGE if the buffers are too small, after printing
 * "Fail-point (itc-code/ITCFileAccess:703)"
 */
CORVANTIS_API int32_t ITCRetrieveEpoch(int32_t epoch);
/**
 * As #ITCEpochParameters, then recompute the epoch's stimulus into the output buffer.
 * @param[in] epoch [0..numEpochs - 1]
 * @return as #ITCEpochParameters; #ITC_TOO_LARGE as #ITCRetrieveEpoch, with line 759;
 * #ITC_STIMULUS_ERROR if the stimulus cannot be recomputed
 */
CORVANTIS_API int32_t ITCRetrieveEpochStm(int32_t epoch);
/**
 * As #ITCEpochParameters, then read a dynamic-clamp entry's conductances into #ExcitatoryG and
 * #InhibitoryG, which must hold the epoch's `epochPoints`. The arrays are found only in an epoch
 * with a single sequence entry.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[in] channel stimulus slot [0..3]
 * @return as #ITCEpochParameters; #ITC_TOO_LARGE as #ITCRetrieveEpoch, with line 815;
 * #ITC_STIMULUS_ERROR if the slot is no dynamic clamp or the arrays are null
 */
CORVANTIS_API int32_t ITCRetrieveEpochStmGClamp(int32_t epoch, uint32_t channel);
/**
 * Seed of the filtered-noise record in a slot.
 * @param[out] result the seed
 * @param[in] channel stimulus slot [0..3]
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_STIMULUS_ERROR if the type is not 2
 */
CORVANTIS_API int32_t ITCRetrieveRandomSeed(int32_t* result, uint32_t channel);

/**
 * @name Values of a stimulus record
 * Amplitude and mean of types 1, 2, 3, 4, 6, 9, 10 and 13; lengths of these and of 12; 0 for 11.
 * @param[out] value [DAC codes] or [samples]; untouched on failure
 * @param[in] type #ITCStimulusType of the record
 * @param[in] record the record; not read for type 11
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_STIMULUS_ERROR for every other type
 * @{
 */
/** Amplitude [DAC codes]. */
CORVANTIS_API int32_t ITCRetrieveStmAmp(int32_t* value, int8_t type, const void* record);
/** Mean, the holding level [DAC codes]. */
CORVANTIS_API int32_t ITCRetrieveStmMean(int32_t* value, int8_t type, const void* record);
/** Points of the stimulus [samples]. */
CORVANTIS_API int32_t ITCRetrieveStmPts(int32_t* value, int8_t type, const void* record);
/** Points before it [samples]. */
CORVANTIS_API int32_t ITCRetrieveStmPrePts(int32_t* value, int8_t type, const void* record);
/** Points after it [samples]. */
CORVANTIS_API int32_t ITCRetrieveStmTailPts(int32_t* value, int8_t type, const void* record);
/** @} */

/* ---- Codecs ----------------------------------------------------------------------------- */

/**
 * @name Record codecs
 * Write a record at the stream's position in the data file's encoding, or read one from there.
 * Padding is written as zeros and ignored on reading; reserved fields in memory stay. Every element
 * is attempted, also after a failure; a stream that ends inside the record, padding included,
 * fails. They need no start-up, never seek to a position of their own and never close the stream.
 * @param[in] stream open stream, positioned by the caller
 * @param[in,out] record the record
 * @return true if every byte was transferred
 * @{
 */
/** Write 580 bytes. */
CORVANTIS_API bool Write_ITCFileHeader(FILE* stream, const ITCFileHeader* record);
/** Read 580 bytes. */
CORVANTIS_API bool Read_ITCFileHeader(FILE* stream, ITCFileHeader* record);
/** Write 912 bytes. */
CORVANTIS_API bool Write_ITCEpochHeader(FILE* stream, const ITCEpochHeader* record);
/** Write 40 bytes. */
CORVANTIS_API bool Write_ITCSineParameters(FILE* stream, const ITCSineParameters* record);
/** Read 40 bytes. */
CORVANTIS_API bool Read_ITCSineParameters(FILE* stream, ITCSineParameters* record);
/** Write 36 bytes. */
CORVANTIS_API bool Write_ITCNoiseParameters(FILE* stream, const ITCNoiseParameters* record);
/** Read 36 bytes. */
CORVANTIS_API bool Read_ITCNoiseParameters(FILE* stream, ITCNoiseParameters* record);
/** Write 32 bytes. */
CORVANTIS_API bool Write_ITCPulseParameters(FILE* stream, const ITCPulseParameters* record);
/** Read 32 bytes. */
CORVANTIS_API bool Read_ITCPulseParameters(FILE* stream, ITCPulseParameters* record);
/** Write 32 bytes. */
CORVANTIS_API bool Write_ITCRampParameters(FILE* stream, const ITCRampParameters* record);
/** Read 32 bytes. */
CORVANTIS_API bool Read_ITCRampParameters(FILE* stream, ITCRampParameters* record);
/** Write 32 bytes. */
CORVANTIS_API bool Write_ITCGenericParameters(FILE* stream, const ITCGenericParameters* record);
/** Read 32 bytes. */
CORVANTIS_API bool Read_ITCGenericParameters(FILE* stream, ITCGenericParameters* record);
/** Write 40 bytes. */
CORVANTIS_API bool Write_ITCSegmentedNoiseParameters(FILE* stream,
                                                     const ITCSegmentedNoiseParameters* record);
/** Read 40 bytes. */
CORVANTIS_API bool Read_ITCSegmentedNoiseParameters(FILE* stream,
                                                    ITCSegmentedNoiseParameters* record);
/** Write 40 bytes. */
CORVANTIS_API bool Write_ITCBinaryNoiseParameters(FILE* stream,
                                                  const ITCBinaryNoiseParameters* record);
/** Read 40 bytes. */
CORVANTIS_API bool Read_ITCBinaryNoiseParameters(FILE* stream, ITCBinaryNoiseParameters* record);
/** Write 48 bytes. */
CORVANTIS_API bool Write_ITCCirclePulseParameters(FILE* stream,
                                                  const ITCCirclePulseParameters* record);
/** Read 48 bytes. */
CORVANTIS_API bool Read_ITCCirclePulseParameters(FILE* stream, ITCCirclePulseParameters* record);
/** Write 36 bytes. */
CORVANTIS_API bool Write_ITCAlternateVoltageParameters(FILE* stream,
                                                       const ITCAlternateVoltageParameters* record);
/** Read 36 bytes. */
CORVANTIS_API bool Read_ITCAlternateVoltageParameters(FILE* stream,
                                                      ITCAlternateVoltageParameters* record);
/** Write 16 bytes. */
CORVANTIS_API bool Write_ITCSpatialStimulusParameters(FILE* stream,
                                                      const ITCSpatialStmParameters* record);
/** Read 16 bytes. */
CORVANTIS_API bool Read_ITCSpatialStimulusParameters(FILE* stream, ITCSpatialStmParameters* record);
/** Write 1284 bytes; the components are records of their own. */
CORVANTIS_API bool Write_ITCSummedParameters(FILE* stream, const ITCSummedParameters* record);
/** Read 1284 bytes; component pointers stay. */
CORVANTIS_API bool Read_ITCSummedParameters(FILE* stream, ITCSummedParameters* record);
/** Write 8 bytes. */
CORVANTIS_API bool Write_ITCGClampParameters(FILE* stream, const ITCGClampParameters* record);
/** Read 8 bytes. */
CORVANTIS_API bool Read_ITCGClampParameters(FILE* stream, ITCGClampParameters* record);
/** @} */
/**
 * Read an epoch header. Files of version 6 and older have no stored latency: it is computed from
 * the sequence's length and stimulus types.
 * @param[in] stream open stream, positioned by the caller
 * @param[out] record the record
 * @param[in] version the file header's `version`, sign-extended
 * @return true if every byte was transferred
 */
CORVANTIS_API bool Read_ITCEpochHeader(FILE* stream, ITCEpochHeader* record, int32_t version);
/**
 * Write a stimulus record of a given type. A type without an encoding (file wave, summed, trigger
 * series, or none of ours) prints "FileIO: Unrecognized stimulus-type" and a fail-point on one
 * line, transfers nothing and counts as done.
 * @param[in] stream open stream, positioned by the caller
 * @param[in] record record of that type
 * @param[in] type #ITCStimulusType, sign-extended
 * @return true if every byte was transferred
 */
CORVANTIS_API bool Write_ITCStimulusParameters(FILE* stream, const void* record, uint32_t type);
/**
 * Read a stimulus record of a given type; a type without an encoding as in
 * #Write_ITCStimulusParameters.
 * @param[in] stream open stream, positioned by the caller
 * @param[out] record record of that type
 * @param[in] type #ITCStimulusType, sign-extended
 * @return true if every byte was transferred
 */
CORVANTIS_API bool Read_ITCStimulusParameters(FILE* stream, void* record, uint32_t type);

/**
 * @name Array codecs
 * Write or read an array big-endian, element by element: 4 bytes each for long (whatever its size
 * in memory), int and float, 2 bytes for short. Every element is attempted, also after a failure.
 * @param[in] stream open stream, positioned by the caller
 * @param[in,out] values the elements
 * @param[in] count elements; 0 transfers nothing and succeeds, a negative count fails
 * @return true if every element was transferred
 * @{
 */
/** Write 4 bytes per element. */
CORVANTIS_API bool WriteArray_long(FILE* stream, const long* values, int count);
/** Read 4 bytes per element. */
CORVANTIS_API bool ReadArray_long(FILE* stream, long* values, int count);
/** Write 4 bytes per element. */
CORVANTIS_API bool WriteArray_int(FILE* stream, const int32_t* values, int count);
/** Read 4 bytes per element. */
CORVANTIS_API bool ReadArray_int(FILE* stream, int32_t* values, int count);
/** Write 2 bytes per element. */
CORVANTIS_API bool WriteArray_short(FILE* stream, const int16_t* values, int count);
/** Read 2 bytes per element. */
CORVANTIS_API bool ReadArray_short(FILE* stream, int16_t* values, int count);
/** Write 4 bytes per element. */
CORVANTIS_API bool WriteArray_float(FILE* stream, const float* values, int count);
/** Read 4 bytes per element. */
CORVANTIS_API bool ReadArray_float(FILE* stream, float* values, int count);
/** @} */

/* ---- Fields of the current headers ------------------------------------------------------ */

/**
 * @name Current file header
 * They act on the header in memory; #ITCSaveToFile stores it. Before a start-up they act on a blank
 * one. A comment longer than 511 characters is cut; a null text stores nothing.
 * @param[in] text, value what to store
 * @return the value, or a pointer to the stored text inside the header
 * @{
 */
/** Epochs in the file. */
CORVANTIS_API int32_t ITCGetNumEpochs(void);
/** Store the comment of the file. */
CORVANTIS_API char* ITCWriteFileCom(const char* text);
/** The comment of the file. */
CORVANTIS_API char* ITCGetFileCom(void);
/** Store the offset of the file, in whatever unit the application keeps it. */
CORVANTIS_API void ITCWriteOffset(float value);
/** The offset of the file. */
CORVANTIS_API double ITCGetOffset(void);
/** @} */

/**
 * @name Current epoch header
 * They act on the header in memory; #ITCSaveToFile stores it and reading an epoch replaces it.
 * Before a start-up they act on a blank one. Outside the range of an entry or an index a writer
 * stores nothing, and a reader gives 0 or an empty text. A unit name keeps its first 16 characters,
 * without terminator if it has 16; a comment its first 511. A null text stores nothing.
 * @param[in] text, value, gain, code, factor, mode what to store, with the unit of its field
 * @param[in] channel sequence entry [0..3], not the number of an input or output; of LEDs, the LED
 * @param[in] index user value [0..23]
 * @return the value, or a pointer to the stored text inside the header
 * @{
 */
/** Time of the epoch, as the application counts. */
CORVANTIS_API double ITCGetEpochTime(void);
/** Store the comment of the epoch. */
CORVANTIS_API char* ITCWriteEpochCom(const char* text);
/** The comment of the epoch. */
CORVANTIS_API char* ITCGetEpochCom(void);
/** Store the unit name of an entry's input. */
CORVANTIS_API char* ITCWriteInputUnits(const char* text, int32_t channel);
/** Store the unit name of an entry's output. */
CORVANTIS_API char* ITCWriteOutputUnits(const char* text, int32_t channel);
/** Unit name of an entry's input, at most 16 characters. */
CORVANTIS_API char* ITCGetInputUnits(int32_t channel);
/** Unit name of an entry's output, at most 16 characters. */
CORVANTIS_API char* ITCGetOutputUnits(int32_t channel);
/** Entries of the channel sequence. */
CORVANTIS_API int32_t ITCGetSegments(void);
/** Points per sequence entry [samples]. */
CORVANTIS_API int32_t ITCGetDataPts(void);
/** One pass of the sequence [µs]. */
CORVANTIS_API int32_t ITCGetSampInterval(void);
/** Store gain [V per input unit], second value and code of an entry's amplifier. */
CORVANTIS_API void ITCWriteAmpGain(float gain, float value, int8_t code, int32_t channel);
/** Store an entry's conversion factor [output units per volt]. */
CORVANTIS_API void ITCWriteConvFactor(float factor, int32_t channel);
/** Conversion factor of an entry [output units per volt]. */
CORVANTIS_API double ITCGetConvFactor(int32_t channel);
/** Store the mode of an entry's amplifier. */
CORVANTIS_API void ITCWriteAmpMode(int8_t mode, int32_t channel);
/** Store an entry's mean output level [DAC codes]. */
CORVANTIS_API void ITCWriteMeanOutput(int32_t value, int32_t channel);
/** Store a neutral density filter. */
CORVANTIS_API void ITCWriteNDF(float value, int32_t channel);
/** Store an LED setting. */
CORVANTIS_API void ITCWriteLEDSetting(uint16_t value, int32_t channel);
/** Store a free value. */
CORVANTIS_API void ITCWriteUserValue(float value, int32_t index);
/** Store the temperature [°C]. */
CORVANTIS_API void ITCWriteTemperature(float value);
/** Store the digital output word. */
CORVANTIS_API void ITCWriteDigitalOutput(uint16_t value);
/** Store the wavelength [nm]. */
CORVANTIS_API void ITCWriteWavelength(uint16_t value);
/** #ITCStimulusType of an entry, sign-extended. */
CORVANTIS_API int32_t ITCGetStimType(int32_t channel);
/** @} */
/**
 * Read an entry's three amplifier settings from the current epoch header.
 * @param[out] gain, value, code `ampGain`, `ampValue` and `ampCode` of the entry
 * @param[in] channel sequence entry [0..3]; of another, all three are 0
 */
CORVANTIS_API void ITCGetAmpSettings(float* gain, float* value, int8_t* code, int32_t channel);
/**
 * Copy the first bytes of a slot's stimulus record.
 * @param[in] channel stimulus slot [0..3]; an empty slot copies nothing
 * @param[out] destination room for byteCount
 * @param[in] byteCount at most the record's size is copied [bytes]
 * @return the destination
 */
CORVANTIS_API void* ITCGetStimParams(int32_t channel, void* destination, uint32_t byteCount);

/* ---- Reading recorded files ------------------------------------------------------------- */

/**
 * Start the library for reading files, with sample buffers of its own.
 * @param[in] bufsize capacity of each buffer [samples, 0 or above]
 * @return #ITC_SUCCESS; #ITC_OUT_OF_MEMORY
 */
CORVANTIS_API int32_t ITCInitializeAnalysis(int32_t bufsize);
/**
 * As #ITCOpenFile.
 * @param[in] pattern path, expanded as by #ITCCreateFile
 * @return as #ITCOpenFile
 */
CORVANTIS_API int32_t ITCOpenFileForInput(const char* pattern);
/**
 * As #ITCOpenFileForEdit: empties the file.
 * @param[in] pattern path, expanded as by #ITCCreateFile
 * @return as #ITCOpenFileForEdit
 */
CORVANTIS_API int32_t ITCOpenFileForEditing(const char* pattern);
/**
 * As #ITCCloseFile.
 * @return 0, or -1
 */
CORVANTIS_API int32_t ITCCloseOpenFile(void);
/**
 * End a start-up for reading: free the sample buffers and their handles, which must be blocks from
 * #ITCMalloc, the headers, the position table, the capacity and the slot records (components of
 * sums stay). After #ITCInit, whose buffers are the caller's, use #ITCFinish. Closes no file;
 * pointers and #InitFlag keep their values.
 * @return #ITC_SUCCESS
 */
CORVANTIS_API int32_t ITCFinishAnalysis(void);

/**
 * Read an epoch's samples.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[out] destination `epochPoints` * `sequenceLength` samples, interleaved
 * @return as #ITCRetrieveEpoch
 */
CORVANTIS_API int32_t ITCReadEpoch(int32_t epoch, uint16_t* destination);
/**
 * Recompute an epoch's stimulus.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[out] destination `epochPoints` * `sequenceLength` samples, interleaved
 * @return as #ITCRetrieveEpochStm
 */
CORVANTIS_API int32_t ITCReadEpochStm(int32_t epoch, uint16_t* destination);
/**
 * Read an epoch's comment, without its terminator.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[out] destination room for 512 characters
 * @return #ITC_SUCCESS; #ITC_FILE_ERROR on any failure
 */
CORVANTIS_API int32_t ITCReadEpochComment(int32_t epoch, char* destination);
/**
 * Read a dynamic-clamp entry's conductances, also into fresh #ExcitatoryG and #InhibitoryG
 * arrays; arrays that these pointed to before are not freed.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[in] channel sequence entry [0..3]
 * @param[out] excitatory `epochPoints` values [nS]
 * @param[out] inhibitory `epochPoints` values [nS]
 * @return #ITC_FILE_ERROR if the epoch cannot be read or the entry is no dynamic clamp;
 * #ITC_TOO_LARGE if it has more samples than the buffers hold, whatever the file holds of it;
 * #ITC_OUT_OF_MEMORY; else as #ITCRetrieveEpochStmGClamp
 */
CORVANTIS_API int32_t ITCReadEpochStmGClamp(int32_t epoch, uint32_t channel, float* excitatory,
                                            float* inhibitory);

/**
 * @name Epoch header fields by epoch number
 * Read the epoch's header and stimulus records, which become the current ones, and deliver a field.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[in] channel sequence entry [0..3]; of LEDs, the LED
 * @param[in] index user value [0..23]
 * @param[out] result the field, in the unit of the header; untouched on failure
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_BAD_ARGUMENT for an entry or index out of range;
 * #ITC_FILE_ERROR if the epoch cannot be read
 * @{
 */
/** Entries of the channel sequence. */
CORVANTIS_API int32_t ITCGetEpochSegments(int32_t epoch, int32_t* result);
/** Points per sequence entry [samples]. */
CORVANTIS_API int32_t ITCGetEpochSize(int32_t epoch, int32_t* result);
/** One pass of the sequence [µs]. */
CORVANTIS_API int32_t ITCGetSamplingInterval(int32_t epoch, int32_t* result);
/** Amplifier gain of an entry [V per input unit]. */
CORVANTIS_API int32_t ITCGetAmpGain(int32_t epoch, int32_t channel, float* result);
/** Amplifier mode of an entry, a signed byte as a float. */
CORVANTIS_API int32_t ITCGetAmpMode(int32_t epoch, int32_t channel, float* result);
/** Mean output level of an entry [DAC codes]. */
CORVANTIS_API int32_t ITCGetMeanOutput(int32_t epoch, int32_t channel, int32_t* result);
/** A free value. */
CORVANTIS_API int32_t ITCGetUserValue(int32_t epoch, int32_t index, float* result);
/** Setting of an LED. */
CORVANTIS_API int32_t ITCGetLEDSetting(int32_t epoch, int32_t channel, uint16_t* result);
/** Neutral density filter of an entry. */
CORVANTIS_API int32_t ITCGetNDF(int32_t epoch, int32_t channel, float* result);
/** Wavelength [nm]. */
CORVANTIS_API int32_t ITCGetWavelength(int32_t epoch, uint16_t* result);
/** Digital output word. */
CORVANTIS_API int32_t ITCGetDigitalOutput(int32_t epoch, uint16_t* result);
/** Temperature [°C]. */
CORVANTIS_API int32_t ITCGetTemperature(int32_t epoch, float* result);
/** @} */
/**
 * Number of epochs in the open file.
 * @param[out] result the current file header's `numEpochs`
 * @return #ITC_SUCCESS, also before a start-up, when the result is 0
 */
CORVANTIS_API int32_t ITCGetNumberEpochs(int32_t* result);
/**
 * Format code of the open file's stored stimulus data.
 * @param[out] result the current file header's `stmDataFormat`, sign-extended
 * @return #ITC_SUCCESS, also before a start-up, when the result is 0
 */
CORVANTIS_API int32_t ITCGetStmDataFormat(int32_t* result);
/**
 * Input channel of a sequence entry.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[in] entry sequence entry [0..3]
 * @param[out] result [0..7], or 8 for the digital input; untouched for a word that names none
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_BAD_ARGUMENT for another entry; #ITC_FILE_ERROR
 */
CORVANTIS_API int32_t ITCGetInputChan(int32_t epoch, int32_t entry, int32_t* result);
/**
 * Output channel of a sequence entry.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[in] entry sequence entry [0..3]
 * @param[out] result [0..3], or 4 for the digital output
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_BAD_ARGUMENT for another entry or a word that names
 * no output; #ITC_FILE_ERROR
 */
CORVANTIS_API int32_t ITCGetOutputChan(int32_t epoch, int32_t entry, int32_t* result);
/**
 * First sequence entry that drives an output. Its mask misses the ITC18's channel bits, so channel
 * 0 is always found at entry 0 and the others never: for ITC18 files use #ITCGetOutputChan.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[in] channel output channel [0..3]
 * @param[out] result the entry
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_BAD_ARGUMENT for a channel above 3, before anything
 * is read, or one that is not found; #ITC_FILE_ERROR
 */
CORVANTIS_API int32_t ITCGetSegmentForOutputChan(int32_t epoch, int32_t channel, int32_t* result);
/**
 * First sequence entry that reads an input; limited as #ITCGetSegmentForOutputChan.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[in] channel input channel [0..7]
 * @param[out] result the entry
 * @return #ITC_SUCCESS; #ITC_NOT_STARTED; #ITC_BAD_ARGUMENT for a channel above 7, before anything
 * is read, or one that is not found; #ITC_FILE_ERROR
 */
CORVANTIS_API int32_t ITCGetSegmentForInputChan(int32_t epoch, int32_t channel, int32_t* result);

/**
 * @name Stimulus values by epoch number
 * Read the epoch's header and stimulus records and deliver a value of a slot's record, or of one
 * component when it is a sum. A slot beyond the epoch's entries answers from the record that it
 * holds already, if that is of the type which the header states for it.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[in] channel stimulus slot [0..3], and so sequence entry
 * @param[in] component component of a sum [0..count - 1]; else ignored
 * @param[out] result type code, [DAC codes], [samples] or seed; untouched on failure
 * @return #ITC_SUCCESS; #ITC_FILE_ERROR if the epoch cannot be read, also before a start-up;
 * #ITC_STIMULUS_ERROR if the type has no such value (a seed: type 2 only), or for a slot or
 * component without a record
 * @{
 */
/** The header's #ITCStimulusType of any slot [0..3]; of a sum, any of the 256 stored component
 * types, in use or not. */
CORVANTIS_API int32_t ITCGetStmType(int32_t epoch, int32_t channel, int32_t component,
                                    int32_t* result);
/** Amplitude [DAC codes]. */
CORVANTIS_API int32_t ITCGetStmAmp(int32_t epoch, int32_t channel, int32_t component,
                                   int32_t* result);
/** Mean, the holding level [DAC codes]. */
CORVANTIS_API int32_t ITCGetStmMean(int32_t epoch, int32_t channel, int32_t component,
                                    int32_t* result);
/** Points of the stimulus [samples]. */
CORVANTIS_API int32_t ITCGetStmPts(int32_t epoch, int32_t channel, int32_t component,
                                   int32_t* result);
/** Points before it [samples]. */
CORVANTIS_API int32_t ITCGetStmPrePts(int32_t epoch, int32_t channel, int32_t component,
                                      int32_t* result);
/** Points after it [samples]. */
CORVANTIS_API int32_t ITCGetStmTailPts(int32_t epoch, int32_t channel, int32_t component,
                                       int32_t* result);
/** Seed of filtered noise. */
CORVANTIS_API int32_t ITCGetSeed(int32_t epoch, int32_t channel, int32_t component,
                                 int32_t* result);
/** @} */
/**
 * Reversal potential of the excitatory conductance.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[in] channel stimulus slot [0..3], as for the values above
 * @param[out] result [mV]; untouched on failure
 * @return #ITC_SUCCESS; #ITC_FILE_ERROR if the epoch cannot be read; #ITC_STIMULUS_ERROR if the
 * slot holds no dynamic clamp
 */
CORVANTIS_API int32_t ITCGetGClampERev(int32_t epoch, int32_t channel, float* result);
/**
 * Reversal potential of the inhibitory conductance, as #ITCGetGClampERev.
 * @param[in] epoch [0..numEpochs - 1]
 * @param[in] channel stimulus slot [0..3], as for the values above
 * @param[out] result [mV]; untouched on failure
 * @return as #ITCGetGClampERev
 */
CORVANTIS_API int32_t ITCGetGClampIRev(int32_t epoch, int32_t channel, float* result);

/* ---- Timing and paths ------------------------------------------------------------------- */

/**
 * Start the millisecond stopwatch; needs no start-up of the library.
 * @return 0, or what the system's clock call returned
 */
CORVANTIS_API int32_t ITCStartMsecTimer(void);
/**
 * Read the stopwatch.
 * @return time since its start [ms]; wraps beyond 2147 s
 */
CORVANTIS_API int32_t ITCReadMsecTimer(void);
/**
 * Wait on the wall clock without sleeping; restarts the stopwatch.
 * @param[in] msec time to wait [ms, at most 2147483]; 0 or less returns after one reading, and a
 * time beyond 2147483 ms, which the stopwatch never shows, waits for ever
 * @return the time that ended the wait [ms]
 */
CORVANTIS_API uint32_t ITCWaitMsec(int32_t msec);
/**
 * Subtract two time values, as the example of that name in the GNU C library's manual.
 * @param[out] result x - y, microseconds in 0 to 999999 when x is not before y
 * @param[in] x later time
 * @param[in,out] y earlier time; the same instant may be left in another split
 * @return 1 if x is before y, else 0
 */
CORVANTIS_API int32_t timeval_subtract(struct timeval* result, const struct timeval* x,
                                       struct timeval* y);
/**
 * Turn a colon-separated classic Mac path, volume first, into the POSIX path of the same file. On a
 * Mac the system does it. Elsewhere a volume is looked for as the folder /Volumes/NAME, and one
 * that is not there is taken as "/"; a path that begins with a colon is relative and has no volume,
 * an empty name climbs one folder, and a "/" within a name becomes ":". The file need not exist.
 * @param[in] macPath path in Mac OS Roman
 * @param[out] unixPath the result in the same encoding
 * @param[in] size room in unixPath, terminator included [bytes]
 * @return 0, or -1 if there is no such path or no room for it; unixPath may then hold a part of it
 */
CORVANTIS_API int32_t ConvertMacPathToUnix(const char* macPath, char* unixPath, int32_t size);

#ifdef __cplusplus
}
#endif

#endif /* CORVANTIS_H */
