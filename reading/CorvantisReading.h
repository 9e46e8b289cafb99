/**
 * @file CorvantisReading.h
 * @brief Reading recordings of Corvantis: any number of them, from any number of threads, from
 * files or from the caller's own bytes; samples as recorded, stimuli as played.
 *
 * Valid C99 and C++20; needs nothing but this header and libCorvantisReading. Conventions that hold
 * for every declaration below:
 *
 * 1. Handles. All state belongs to a handle, a #CorvantisRecording. Nothing is shared between two,
 *    nothing is printed, and no generator of the process is touched.
 * 2. Threads. Any number of threads may read from one recording at the same time, and from
 *    different ones. #CorvantisRefresh and #CorvantisClose alone must have theirs to themselves.
 * 3. Result codes. An operation returns an int32_t from #CorvantisResult, 0 for success, and hands
 *    values back through pointers, which after a failure hold nothing of use. The last parameter of
 *    most, a #CorvantisProblem or null, then says what went wrong; after success it is untouched.
 *    Codes that every operation may return are not listed again: #CORVANTIS_BAD_ARGUMENT for a null
 *    pointer or for what is not there (an entry, a range, a field), #CORVANTIS_OUT_OF_MEMORY,
 *    #CORVANTIS_FILE_ERROR where the bytes cannot be read or end too early, and
 *    #CORVANTIS_CHANGED.
 * 4. Ownership. The caller owns all memory that it hands over, for as long as the call lasts.
 *    Texts behind `const char*` are constants of the library. A recording is released by
 *    #CorvantisClose.
 * 5. Indices. Epochs count from 0 to #CorvantisEpochs, by the file's own table, and keep their
 *    numbers whatever became of the others: one that is damaged is #CORVANTIS_DAMAGED. Sequence
 *    entries and components of a sum count from 0; #CORVANTIS_ALL_ENTRIES stands for all entries.
 * 6. Units. A count is a signed converter count, a level in DAC codes is one held in 32 bits, a
 *    length in points or samples is of one sequence entry, an interval is in microseconds.
 * 7. Records. Headers and stimulus records are handed over as they lie in the file, place by place,
 *    but with numbers in the byte order of this machine; #CorvantisFields says what stands where.
 * 8. Texts are UTF-8 and end with a 0; those of a file are made fit for a screen (#CorvantisText).
 */
#ifndef CORVANTIS_READING_H
#define CORVANTIS_READING_H

#include <stdint.h>

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

/** Result codes; those that libCorvantis has too are the same numbers. */
typedef enum CorvantisResult {
    CORVANTIS_SUCCESS = 0, /**< done */
    /** A stimulus that cannot be computed: the file does not hold what it needs, or its lengths do
     * not fit the epoch. */
    CORVANTIS_NO_STIMULUS = 2,
    CORVANTIS_OUT_OF_MEMORY = 5, /**< there is no memory for it */
    CORVANTIS_BAD_ARGUMENT = 6,  /**< a null pointer, or what is asked for is not there */
    /** The file cannot be opened or read, or ends too early. */
    CORVANTIS_FILE_ERROR = 7,
    /** The file was made by a newer version. */
    CORVANTIS_VERSION_TOO_NEW = 9,
    /** What was opened is no recording, but something else. */
    CORVANTIS_NOT_A_RECORDING = 10,
    /** This epoch is damaged, or is not in the file although it was counted. */
    CORVANTIS_DAMAGED = 11,
    /** The file is no longer the one that was opened. */
    CORVANTIS_CHANGED = 12
} CorvantisResult;

/** Fixed sizes of the interface. */
enum {
    CORVANTIS_ENTRIES = 4,             /**< most entries of a channel sequence */
    CORVANTIS_FILE_HEADER_SIZE = 580,  /**< of the file header's record [bytes] */
    CORVANTIS_EPOCH_HEADER_SIZE = 912, /**< of an epoch header's record [bytes] */
    CORVANTIS_RECORD_SIZE = 64,        /**< room for any stimulus record but a sum's [bytes] */
    CORVANTIS_ALL_ENTRIES = -1         /**< as an entry: all of them */
};

/** What went wrong, for a program and for a person. */
typedef struct CorvantisProblem {
    int32_t code;   /**< a #CorvantisResult */
    int32_t reason; /**< where in the text the reason begins, behind file, epoch and byte */
    int64_t offset; /**< in the file [bytes]; -1 where no place is to blame */
    char text[504]; /**< the file, the place, what was found and what was expected */
} CorvantisProblem;

/** An open recording. */
typedef struct CorvantisRecording CorvantisRecording;

/**
 * Where bytes come from, if not from a file. The functions are called by as many threads at once as
 * the caller reads from.
 */
typedef struct CorvantisSource {
    void* context; /**< handed to the functions */
    /** Size now [bytes]; -1 if it cannot be told. */
    int64_t (*size)(void* context);
    /** Read so many bytes from there; fewer only at the end. How many there were; -1: failed. */
    int64_t (*read)(void* context, int64_t offset, void* bytes, int64_t count);
    /** Called once, by #CorvantisClose or a failed opening; may be null. */
    void (*close)(void* context);
} CorvantisSource;

/* ---- Opening ---------------------------------------------------------------------------- */

/**
 * Open a recording for reading. Of a sound one only headers and the ends of its table of positions
 * are read; where these do not agree the whole file is walked for its epochs.
 * @param[in] path the file, UTF-8; neither "~" nor wildcards are expanded
 * @param[out] recording the recording, to be closed; null after a failure
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_VERSION_TOO_NEW, #CORVANTIS_NOT_A_RECORDING or one of
 * convention 3
 */
CORVANTIS_API int32_t CorvantisOpen(const char* path, CorvantisRecording** recording,
                                    CorvantisProblem* problem);
/**
 * As #CorvantisOpen, from the caller's own source.
 * @param[in] source is copied; its `close` is called also after a failure
 * @param[in] name what messages call it, UTF-8
 * @param[out] recording the recording, to be closed; null after a failure
 * @param[out] problem what went wrong, or null
 * @return as #CorvantisOpen
 */
CORVANTIS_API int32_t CorvantisOpenSource(const CorvantisSource* source, const char* name,
                                          CorvantisRecording** recording,
                                          CorvantisProblem* problem);

/**
 * Take in the epochs that another program has saved meanwhile. One that is not complete is never
 * shown, whatever moment of a save this meets; a later call shows it.
 * @param[in,out] recording the recording, which no other thread may use meanwhile
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS; #CORVANTIS_CHANGED if the epochs before are not what they were: the
 * recording then stays as it is
 */
CORVANTIS_API int32_t CorvantisRefresh(CorvantisRecording* recording, CorvantisProblem* problem);
/**
 * Close a recording and release all that belongs to it.
 * @param[in] recording the recording, or null
 */
CORVANTIS_API void CorvantisClose(CorvantisRecording* recording);

/** How the epochs were found. */
typedef enum CorvantisFound {
    CORVANTIS_BY_TABLE = 0,  /**< header and table of positions agree with what stands there */
    CORVANTIS_BY_WALKING = 1 /**< they do not, and the file was walked from epoch to epoch */
} CorvantisFound;

/** What is known of a recording as a whole. */
typedef struct CorvantisRecordingInfo {
    int64_t size;          /**< [bytes] */
    int64_t epochs;        /**< as #CorvantisEpochs */
    int64_t tablePosition; /**< where the table of positions is or would be [bytes] */
    int32_t version;       /**< of the format: up to 8, also negative */
    int32_t found;         /**< a #CorvantisFound */
    uint64_t digest;       /**< of the file header's bytes; the same on every machine */
} CorvantisRecordingInfo;

/**
 * @param[in] recording the recording
 * @param[out] info what is known of it
 * @return #CORVANTIS_SUCCESS
 */
CORVANTIS_API int32_t CorvantisInfo(const CorvantisRecording* recording,
                                    CorvantisRecordingInfo* info);
/**
 * How many epochs the recording has, those included that are damaged or lost but counted. Constant
 * but for #CorvantisRefresh.
 * @param[in] recording the recording
 * @return their number; 0 for null
 */
CORVANTIS_API int64_t CorvantisEpochs(const CorvantisRecording* recording);

/** Where an epoch was when the recording was open before; all of it from #CorvantisEpochInfo. */
typedef struct CorvantisPlace {
    int64_t epoch;   /**< its number */
    int64_t start;   /**< of its header [bytes] */
    int64_t end;     /**< behind its samples [bytes] */
    uint64_t digest; /**< of its header */
} CorvantisPlace;

/**
 * Open a recording by what is known of it from before, so that nothing is searched: its header is
 * read, and of an epoch at a known place that epoch alone. What is known need not be true: it is
 * compared with what is read, and an epoch that is not what it was is #CORVANTIS_CHANGED. Other
 * epochs are found as after #CorvantisOpen.
 * @param[in] name the file, UTF-8; with a source, what messages call it
 * @param[in] source null for a file; else as of #CorvantisOpenSource
 * @param[in] known what #CorvantisInfo said
 * @param[in] places of epochs, by ascending numbers; copied
 * @param[in] count how many places
 * @param[out] recording the recording, to be closed; null after a failure
 * @param[out] problem what went wrong, or null
 * @return as #CorvantisOpen; #CORVANTIS_CHANGED if size or header are not what was known
 */
CORVANTIS_API int32_t CorvantisOpenKnown(const char* name, const CorvantisSource* source,
                                         const CorvantisRecordingInfo* known,
                                         const CorvantisPlace* places, int64_t count,
                                         CorvantisRecording** recording, CorvantisProblem* problem);

/* ---- Findings --------------------------------------------------------------------------- */

/** How much a finding matters. */
typedef enum CorvantisWeight {
    CORVANTIS_NOTE = 0,  /**< worth knowing, nothing is wrong */
    CORVANTIS_DOUBT = 1, /**< can be read in two ways */
    CORVANTIS_FAULT = 2  /**< damage */
} CorvantisWeight;

/** Something in the file that is not as it should be. */
typedef struct CorvantisFinding {
    int64_t offset;     /**< in the file [bytes] */
    int64_t epoch;      /**< the epoch that it is about; -1 for none */
    int32_t weight;     /**< a #CorvantisWeight */
    char place[64];     /**< such as "file header, numEpochs" */
    char found[224];    /**< what stands there */
    char expected[224]; /**< what should */
} CorvantisFinding;

/**
 * Walk the whole file, every byte accounted for but no sample read, and compare it with header and
 * table. Made once; later calls return at once.
 * @param[in] recording the recording
 * @param[out] count how many findings there are, in the order of their offsets
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS or one of convention 3
 */
CORVANTIS_API int32_t CorvantisFindings(const CorvantisRecording* recording, int64_t* count,
                                        CorvantisProblem* problem);
/**
 * @param[in] recording the recording, of which #CorvantisFindings was asked
 * @param[in] index of the finding, from 0
 * @param[out] finding the finding
 * @return #CORVANTIS_SUCCESS
 */
CORVANTIS_API int32_t CorvantisGetFinding(const CorvantisRecording* recording, int64_t index,
                                          CorvantisFinding* finding);

/* ---- Fields by name --------------------------------------------------------------------- */

/** What a field's elements are. */
typedef enum CorvantisKind {
    CORVANTIS_INT8 = 0,   /**< int8_t */
    CORVANTIS_UINT16 = 1, /**< uint16_t */
    CORVANTIS_INT32 = 2,  /**< int32_t */
    CORVANTIS_UINT32 = 3, /**< uint32_t */
    CORVANTIS_FLOAT = 4,  /**< float */
    CORVANTIS_TEXT = 5    /**< characters, up to a 0 or to the element's end (#CorvantisText) */
} CorvantisKind;

/** One field of a record. */
typedef struct CorvantisField {
    const char* name;    /**< as everywhere else */
    const char* unit;    /**< such as "mV"; empty for a number as it stands */
    const char* meaning; /**< in a few words */
    int32_t kind;        /**< a #CorvantisKind */
    int32_t size;        /**< of one element; a text is one element [bytes] */
    int32_t count;       /**< elements; of four, one for each sequence entry or output */
    int32_t place;       /**< in the record [bytes] */
    int32_t isByEntry;   /**< 1 if its elements go by the entries of the channel sequence */
} CorvantisField;

/** Records that are no stimulus; the others go by their type code, 1 to 14. */
enum {
    CORVANTIS_FILE_HEADER = -1, /**< the header of the file */
    CORVANTIS_EPOCH_HEADER = 0  /**< the header of an epoch */
};

/**
 * The fields of a record, in the order of the file.
 * @param[in] record #CORVANTIS_FILE_HEADER, #CORVANTIS_EPOCH_HEADER or a stimulus type
 * @param[out] fields the first of them
 * @param[out] count how many there are; 0 for a type without bytes in the file
 * @return #CORVANTIS_SUCCESS
 */
CORVANTIS_API int32_t CorvantisFields(int32_t record, const CorvantisField** fields,
                                      int32_t* count);

/** What is known of a stimulus type. */
typedef struct CorvantisTypeInfo {
    const char* name;   /**< for people, such as "segmented noise" */
    const char* caveat; /**< why what is computed is not what was played; empty: nothing is known
                             against it */
    int32_t size;       /**< of its record in the file, 0 without one [bytes] */
    int32_t isComputed; /**< 1 if its waveform can be computed from the file */
} CorvantisTypeInfo;

/**
 * @param[in] type a stimulus type; of a code that is none the name is "unknown"
 * @param[out] info what is known of it
 * @return #CORVANTIS_SUCCESS
 */
CORVANTIS_API int32_t CorvantisType(int32_t type, CorvantisTypeInfo* info);

/**
 * The file header of a recording.
 * @param[in] recording the recording
 * @param[out] record room for #CORVANTIS_FILE_HEADER_SIZE bytes
 * @return #CORVANTIS_SUCCESS
 */
CORVANTIS_API int32_t CorvantisFileHeader(const CorvantisRecording* recording, void* record);
/**
 * The header of an epoch.
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[out] record room for #CORVANTIS_EPOCH_HEADER_SIZE bytes
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3
 */
CORVANTIS_API int32_t CorvantisEpochHeader(const CorvantisRecording* recording, int64_t epoch,
                                           void* record, CorvantisProblem* problem);

/** A field of the epoch header and where its values go. */
typedef struct CorvantisColumn {
    const CorvantisField* field; /**< from #CorvantisFields of #CORVANTIS_EPOCH_HEADER */
    void* values;   /**< of the first epoch: size times count bytes; need no alignment */
    int64_t stride; /**< from one epoch's values to the next's [bytes] */
} CorvantisColumn;

/**
 * Fields of many epochs, in one pass over the file.
 * @param[in] recording the recording
 * @param[in] first the first epoch
 * @param[in] epochs how many
 * @param[in] columns the fields
 * @param[in] count how many fields
 * @param[out] missing for each epoch 1 if it cannot be read, its values then being zeros, else 0;
 * null: the first such epoch is a failure
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3
 */
CORVANTIS_API int32_t CorvantisColumns(const CorvantisRecording* recording, int64_t first,
                                       int64_t epochs, const CorvantisColumn* columns,
                                       int32_t count, uint8_t* missing, CorvantisProblem* problem);

/** Where an epoch lies, and what there is to be had of it. */
typedef struct CorvantisEpochInfo {
    int64_t start;                            /**< of its header [bytes] */
    int64_t samples;                          /**< of its samples [bytes] */
    int64_t end;                              /**< behind its samples [bytes] */
    int32_t points;                           /**< of each entry [samples] */
    int32_t entries;                          /**< 0 to 4 */
    int32_t samplingInterval;                 /**< one pass of the sequence [µs] */
    int32_t stimulusTypes[CORVANTIS_ENTRIES]; /**< of each entry; 0 behind the last one */
    /** Input of each entry: 0 to 7, 8 for the digital port; -1 behind the last entry. */
    int32_t inputs[CORVANTIS_ENTRIES];
    /** Output of each entry: 0 to 3, 4 for the digital port; -1 behind the last entry. */
    int32_t outputs[CORVANTIS_ENTRIES];
    /** From one entry to the next within a point, which begins with the first: the sampling
     * interval by the entries, cut to a whole number; 0 without entries [µs]. */
    int32_t entryInterval;
    uint64_t digest; /**< of the header's bytes; the same on every machine */
} CorvantisEpochInfo;

/**
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[out] info where it lies
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3
 */
CORVANTIS_API int32_t CorvantisEpoch(const CorvantisRecording* recording, int64_t epoch,
                                     CorvantisEpochInfo* info, CorvantisProblem* problem);

/** A stimulus record of any type. */
typedef struct CorvantisStimulusRecord {
    int32_t type;       /**< stimulus type */
    int32_t components; /**< of a sum; 0 for any other type */
    int32_t isThere; /**< 1 if the file holds it; 0 for types without bytes, or behind a record of
                          unknown length */
    /** The record; of a sum nothing, since its components are asked for one by one. */
    uint8_t record[CORVANTIS_RECORD_SIZE];
} CorvantisStimulusRecord;

/**
 * The parameters of a stimulus.
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[in] entry sequence entry
 * @param[in] component of a sum; -1 for the entry's own record
 * @param[out] record the record
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3
 */
CORVANTIS_API int32_t CorvantisParameters(const CorvantisRecording* recording, int64_t epoch,
                                          int32_t entry, int32_t component,
                                          CorvantisStimulusRecord* record,
                                          CorvantisProblem* problem);

/* ---- Samples ---------------------------------------------------------------------------- */

/**
 * Acquired samples as recorded.
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[in] entry sequence entry, or #CORVANTIS_ALL_ENTRIES: of each point the values of all
 * entries, one after the other
 * @param[in] first first point
 * @param[in] count points
 * @param[out] values room for them
 * @param[in] stride from one point to the next in `values`, at least as many as a point has
 * [values]; 0: without gaps
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3
 */
CORVANTIS_API int32_t CorvantisCounts(const CorvantisRecording* recording, int64_t epoch,
                                      int32_t entry, int64_t first, int64_t count, int16_t* values,
                                      int64_t stride, CorvantisProblem* problem);
/** As #CorvantisCounts, in the units of #CorvantisScale, each entry in its own. */
CORVANTIS_API int32_t CorvantisValues(const CorvantisRecording* recording, int64_t epoch,
                                      int32_t entry, int64_t first, int64_t count, double* values,
                                      int64_t stride, CorvantisProblem* problem);

/**
 * As #CorvantisCounts, of many epochs one after the other, in one pass over the file.
 * @param[in] recording the recording
 * @param[in] first the first epoch
 * @param[in] epochs how many
 * @param[in] entry sequence entry, or #CORVANTIS_ALL_ENTRIES, of which there must be as many in
 * each epoch as in the first of them that can be read
 * @param[in] firstPoint first point
 * @param[in] count points, without gaps
 * @param[out] values of the first epoch
 * @param[in] stride from one epoch's values to the next's [values]
 * @param[out] missing for each epoch 1 if it cannot be read or has no such points, its values then
 * being zeros, else 0; null: the first such epoch is a failure
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3
 */
CORVANTIS_API int32_t CorvantisManyCounts(const CorvantisRecording* recording, int64_t first,
                                          int64_t epochs, int32_t entry, int64_t firstPoint,
                                          int64_t count, int16_t* values, int64_t stride,
                                          uint8_t* missing, CorvantisProblem* problem);

/** The two conductances of a dynamic clamp. */
enum {
    CORVANTIS_EXCITATORY = 0, /**< the first array in the file */
    CORVANTIS_INHIBITORY = 1  /**< the second */
};

/**
 * Conductances that a dynamic clamp was given, in nS.
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[in] entry sequence entry, whose stimulus is a dynamic clamp
 * @param[in] which #CORVANTIS_EXCITATORY or #CORVANTIS_INHIBITORY
 * @param[in] first first point
 * @param[in] count points
 * @param[out] values room for them [nS]
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3
 */
CORVANTIS_API int32_t CorvantisConductance(const CorvantisRecording* recording, int64_t epoch,
                                           int32_t entry, int32_t which, int64_t first,
                                           int64_t count, float* values, CorvantisProblem* problem);

/* ---- Stimuli ---------------------------------------------------------------------------- */

/** Why a computed stimulus may not be what was played; of several reasons the highest. */
typedef enum CorvantisDoubtReason {
    CORVANTIS_NO_DOUBT = 0,
    /** Its noise goes on behind that of earlier epochs: right if each epoch of the file was
     * computed once, in this order, and nothing else in between. */
    CORVANTIS_RESTS_ON_ORDER = 1,
    /** Its noise goes on behind what was computed before the file's first epoch. */
    CORVANTIS_BEGAN_BEFORE_FILE = 2,
    /** Its noise goes on behind an epoch that is damaged, missing or cannot be computed. */
    CORVANTIS_BEHIND_UNKNOWN = 3,
    /** Its noise came from the recording machine's own generator (format version 4 and below); what
     * is computed is what the GNU C library's would have given. */
    CORVANTIS_OLD_GENERATOR = 4,
    /** What was played followed the cell (dynamic clamp). */
    CORVANTIS_FOLLOWED_CELL = 5
} CorvantisDoubtReason;

/** A doubt about a computed stimulus. */
typedef struct CorvantisDoubt {
    int32_t reason; /**< a #CorvantisDoubtReason */
    int64_t epoch;  /**< the epoch that it comes from; -1 for none */
    char text[248]; /**< in words; empty without a doubt */
} CorvantisDoubt;

/**
 * The stimulus as it was played, computed from the records of this epoch and, where its noise goes
 * on behind earlier noise, of the epochs before it. The first call that needs those goes through
 * them once and keeps what they left behind.
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[in] entry sequence entry, or #CORVANTIS_ALL_ENTRIES
 * @param[in] first first point
 * @param[in] count points; 0 asks for the doubt alone, and computes nothing
 * @param[out] values room for them
 * @param[in] stride as in #CorvantisCounts
 * @param[out] doubt whether the file determines it, or null
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED, #CORVANTIS_NO_STIMULUS or one of convention 3
 */
CORVANTIS_API int32_t CorvantisStimulus(const CorvantisRecording* recording, int64_t epoch,
                                        int32_t entry, int64_t first, int64_t count,
                                        int16_t* values, int64_t stride, CorvantisDoubt* doubt,
                                        CorvantisProblem* problem);
/** As #CorvantisStimulus, in the units of #CorvantisScale, each entry in its own. */
CORVANTIS_API int32_t CorvantisStimulusValues(const CorvantisRecording* recording, int64_t epoch,
                                              int32_t entry, int64_t first, int64_t count,
                                              double* values, int64_t stride, CorvantisDoubt* doubt,
                                              CorvantisProblem* problem);

/**
 * The parameters of a stimulus as JSON, in the form of `stimulus` in docs/recording.schema.json:
 * type, name, parameters by their fields' names, those that are levels in units too, components.
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[in] entry sequence entry
 * @param[out] text room for it, UTF-8 with a 0 behind; null if `capacity` is 0
 * @param[in] capacity of the room [bytes]
 * @param[out] length of the whole text without the 0 [bytes], also where the room is too small
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3: #CORVANTIS_BAD_ARGUMENT if
 * the room is too small, and is left alone
 */
CORVANTIS_API int32_t CorvantisStimulusJson(const CorvantisRecording* recording, int64_t epoch,
                                            int32_t entry, char* text, int64_t capacity,
                                            int64_t* length, CorvantisProblem* problem);

/** As #CorvantisStimulusJson, in words such as "pulse 100 pA on -40 pA, 500 ms after 100 ms". */
CORVANTIS_API int32_t CorvantisStimulusWords(const CorvantisRecording* recording, int64_t epoch,
                                             int32_t entry, char* text, int64_t capacity,
                                             int64_t* length, CorvantisProblem* problem);

/** As #CorvantisStimulusWords, of one component of a sum from 0, or -1 for all of it. */
CORVANTIS_API int32_t CorvantisComponentWords(const CorvantisRecording* recording, int64_t epoch,
                                              int32_t entry, int32_t component, char* text,
                                              int64_t capacity, int64_t* length,
                                              CorvantisProblem* problem);

/** What is said of an epoch in words. */
typedef enum CorvantisSubject {
    /** The stimuli as of #CorvantisStimulusWords, those of several entries with " | " between. */
    CORVANTIS_SAY_STIMULUS = 0,
    /** The same as JSON: an array with an item an entry, each as of #CorvantisStimulusJson. */
    CORVANTIS_SAY_JSON = 1,
    /** Why a stimulus cannot be computed, or may not be what was played; empty without a doubt. */
    CORVANTIS_SAY_DOUBT = 2,
    /** What is wrong with a damaged epoch; empty for any other. */
    CORVANTIS_SAY_DAMAGE = 3
} CorvantisSubject;

/** A text of each of many epochs, one behind the other. */
typedef struct CorvantisTexts {
    int32_t subject;  /**< a #CorvantisSubject */
    char* text;       /**< room for the texts, UTF-8, without a 0 between them */
    int64_t capacity; /**< of the room [bytes] */
    int64_t* ends;    /**< of each epoch: where its text ends [bytes] */
} CorvantisTexts;

/** As `doubt` of an epoch whose stimulus cannot be computed at all. */
enum { CORVANTIS_NOT_COMPUTED = -1 };

/**
 * What there is to say of many epochs, in one pass over the file.
 * @param[in] recording the recording
 * @param[in] first the first epoch
 * @param[in] epochs how many
 * @param[in] texts what to say, each subject with its room
 * @param[in] count how many subjects
 * @param[out] infos of each epoch, zeros for a damaged one; or null
 * @param[out] doubts of each epoch the highest #CorvantisDoubtReason of any entry, or
 * CORVANTIS_NOT_COMPUTED; 0 for a damaged one; or null, which saves looking for them unless they
 * are a subject
 * @param[out] missing for each epoch 1 if it is damaged, else 0
 * @param[out] described how many epochs, from the first on, all texts had room for
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, also where the room ended before the epochs, or one of convention 3
 */
CORVANTIS_API int32_t CorvantisDescribe(const CorvantisRecording* recording, int64_t first,
                                        int64_t epochs, const CorvantisTexts* texts, int32_t count,
                                        CorvantisEpochInfo* infos, int32_t* doubts,
                                        uint8_t* missing, int64_t* described,
                                        CorvantisProblem* problem);

/**
 * What one component adds to a sum, as #CorvantisStimulusValues gives the whole. A sum's components
 * share a buffer: a component that is shorter than the one before it adds the rest of that one once
 * more.
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[in] entry sequence entry, whose stimulus is a sum
 * @param[in] component from 0
 * @param[in] first first point
 * @param[in] count points
 * @param[out] values room for them
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED, #CORVANTIS_NO_STIMULUS or one of convention 3
 */
CORVANTIS_API int32_t CorvantisComponentValues(const CorvantisRecording* recording, int64_t epoch,
                                               int32_t entry, int32_t component, int64_t first,
                                               int64_t count, double* values,
                                               CorvantisProblem* problem);

/* ---- Units ------------------------------------------------------------------------------ */

/** What a unit measures, of those that electrophysiology rests on. */
typedef enum CorvantisQuantity {
    CORVANTIS_OTHER = 0,     /**< anything else, and whatever is not in the entry's own unit */
    CORVANTIS_POTENTIAL = 1, /**< volts, such as mV */
    CORVANTIS_CURRENT = 2,   /**< amperes, such as pA */
    CORVANTIS_ADMITTANCE = 3 /**< siemens, such as nS */
} CorvantisQuantity;

/** Which way an entry's samples go. */
enum {
    CORVANTIS_RESPONSE = 0,   /**< acquired */
    CORVANTIS_STIMULUS = 1,   /**< played; parameters in DAC codes scale like it */
    CORVANTIS_CONDUCTANCE = 2 /**< of a dynamic clamp */
};

/**
 * From counts to units: value = counts / countsPerVolt / gain * factor, in double precision and in
 * this order. `unit` is the entry's own; "V" where its gain or factor is 0 or not finite, or its
 * unit has no name; "counts" where even the converter's scale is not usable; "word" for the digital
 * port, whose samples are 16 lines, taken as a number from 0 to 65535.
 */
typedef struct CorvantisScaleInfo {
    double countsPerVolt; /**< of the converter, 1 where samples stay counts */
    double gain;          /**< of a response [V/unit], else 1 */
    double factor;        /**< of a stimulus [units/V], else 1 */
    int32_t isWord;       /**< 1 for the digital port */
    char unit[60];        /**< of the values */
    char formula[192];    /**< with this entry's numbers, for people */
    int32_t quantity;     /**< a #CorvantisQuantity: what the entry's own unit measures */
    double si;            /**< volts, amperes or siemens in one of `unit`; 1 for anything else */
} CorvantisScaleInfo;

/**
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[in] entry sequence entry
 * @param[in] direction #CORVANTIS_RESPONSE, #CORVANTIS_STIMULUS or #CORVANTIS_CONDUCTANCE
 * @param[out] scale the scale
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3
 */
CORVANTIS_API int32_t CorvantisScale(const CorvantisRecording* recording, int64_t epoch,
                                     int32_t entry, int32_t direction, CorvantisScaleInfo* scale,
                                     CorvantisProblem* problem);

/**
 * What an axis of values is called, such as "Membrane Potential" for a response in mV.
 * @param[in] direction #CORVANTIS_RESPONSE, #CORVANTIS_STIMULUS or #CORVANTIS_CONDUCTANCE
 * @param[in] unit of the values, or null
 * @return its name, such as "Response" where the unit does not tell more; never null
 */
CORVANTIS_API const char* CorvantisAxisName(int32_t direction, const char* unit);

/* ---- Steps, and what a response does during them ---------------------------------------- */

/** How steps are measured. */
enum {
    CORVANTIS_SPIKE_THRESHOLD =
        -20, /**< a spike crosses it upwards, where nothing else is said [mV] */
    /** The steady state of a response is its mean over the last of so many parts of a step. */
    CORVANTIS_STEADY_PART = 5
};

/** A step of a stimulus from the holding level and back to it, or to the epoch's end. */
typedef struct CorvantisStep {
    int64_t before; /**< point from which on the stimulus is at the holding level before it */
    int64_t start;  /**< its first point */
    int64_t stop;   /**< the point behind its last one */
    double level;   /**< of the stimulus during it, in the unit of #CorvantisScale */
} CorvantisStep;

/** How the stimulus of a sequence entry runs. */
typedef struct CorvantisCourse {
    double holding; /**< its first value, in the unit of #CorvantisScale */
    int64_t start;  /**< its first point at another level; 0 without one */
    int64_t stop;   /**< the point behind the last one at another level, or the epoch's end */
    /**
     * A number from 1 to 2^53 - 1 that two epochs share if their stimuli differ in nothing but the
     * level of the longest step, or, without steps, in nothing but the amplitudes of their records;
     * their intervals and units being the same. 0 where what was played is not known.
     */
    int64_t family;
    int32_t steps;   /**< how many it has; a pulse of no height is one, too */
    int32_t longest; /**< the longest of them, of equal ones the first; -1 without steps */
} CorvantisCourse;

/**
 * The steps of a stimulus, found in what was played. One that changes more than 64 times has none
 * but pulses of no height.
 * @param[in] recording the recording
 * @param[in] epoch its number, of an epoch with points
 * @param[in] entry sequence entry
 * @param[out] course how the stimulus runs
 * @param[out] steps room for steps, in the order of their first points; null if `capacity` is 0
 * @param[in] capacity of the room; steps beyond it are not given, but counted in `course`
 * @param[out] doubt as of #CorvantisStimulus
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED, #CORVANTIS_NO_STIMULUS or one of convention 3
 */
CORVANTIS_API int32_t CorvantisSteps(const CorvantisRecording* recording, int64_t epoch,
                                     int32_t entry, CorvantisCourse* course, CorvantisStep* steps,
                                     int32_t capacity, CorvantisDoubt* doubt,
                                     CorvantisProblem* problem);

/** What a response does during a step, in the unit of #CorvantisScale. */
typedef struct CorvantisStepResponse {
    double baseline; /**< its mean from `before` of the step to its start */
    double peak;     /**< its value during the step that is farthest from the baseline */
    double steady;   /**< its mean over the last #CORVANTIS_STEADY_PART of the step */
    int64_t spikes;  /**< upward crossings of the threshold during the step; -1 of no potential */
    int64_t late;    /**< those in that last part */
} CorvantisStepResponse;

/**
 * Measure the response to a step.
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[in] entry sequence entry
 * @param[in] step from #CorvantisSteps, or of the caller's own
 * @param[in] threshold of spikes [mV]
 * @param[out] response what was measured
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3
 */
CORVANTIS_API int32_t CorvantisMeasureStep(const CorvantisRecording* recording, int64_t epoch,
                                           int32_t entry, const CorvantisStep* step,
                                           double threshold, CorvantisStepResponse* response,
                                           CorvantisProblem* problem);

/**
 * Count the spikes of a response: where it is above the threshold, and was not at the point before.
 * @param[in] recording the recording
 * @param[in] epoch its number
 * @param[in] entry sequence entry
 * @param[in] first first point
 * @param[in] count points
 * @param[in] threshold [mV]
 * @param[out] spikes how many; -1 if the response is no potential, whatever the range
 * @param[out] problem what went wrong, or null
 * @return #CORVANTIS_SUCCESS, #CORVANTIS_DAMAGED or one of convention 3
 */
CORVANTIS_API int32_t CorvantisSpikes(const CorvantisRecording* recording, int64_t epoch,
                                      int32_t entry, int64_t first, int64_t count, double threshold,
                                      int64_t* spikes, CorvantisProblem* problem);

/* ---- Texts ------------------------------------------------------------------------------ */

/**
 * A text of a record made fit for a screen: up to its first 0, taken as UTF-8 if it is that, else
 * as Mac OS Roman; control characters, and those that reverse a line, become spaces.
 * @param[in] bytes the text as it lies in the record
 * @param[in] size of its element [bytes]
 * @param[out] text room for it; three times the size and one are enough
 * @param[in] capacity of the room [bytes]
 * @return #CORVANTIS_SUCCESS; #CORVANTIS_BAD_ARGUMENT if the room is too small, which then holds as
 * many whole characters as fit
 */
CORVANTIS_API int32_t CorvantisText(const char* bytes, int32_t size, char* text, int32_t capacity);

#ifdef __cplusplus
}
#endif

#endif
