/*
 * ITC18.h: the calls of the ITC18 driver library that Corvantis makes.
 *
 * Conventions
 *  1. The device is a block of plain memory that the caller allocates, ITC18_GetStructureSize()
 *     bytes of it, need not clear, and may free once the device is closed. Its contents are the
 *     driver's own. It must stay where it is, with its contents untouched, while it is open.
 *  2. A result of 0 is success. Any other value means that the call was refused and that the
 *     device is as it was before the call.
 *  3. The order is Open, Initialize, then SetSamplingInterval and SetSequence, then
 *     InitializeAcquisition before each acquisition, at the end Close.
 *  4. The calls are made from one thread at a time.
 */
#ifndef ITC18_H
#define ITC18_H

#include <stdint.h>

#if defined(_WIN32) && defined(ITC18_BUILDING)
#define ITC18_API __declspec(dllexport)
#elif defined(_WIN32)
#define ITC18_API __declspec(dllimport)
#elif defined(__GNUC__)
#define ITC18_API __attribute__((visibility("default")))
#else
#define ITC18_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Returns the size of the device structure [bytes]. May be called at any time. */
ITC18_API int32_t ITC18_GetStructureSize(void);

/*
 * Opens an interface into the caller's structure; writes the whole structure.
 *   device        the structure
 *   deviceNumber  which of the connected interfaces, from 0
 * An interface is open in one structure at a time. The library asks for it again, without closing
 * it first, when it is started anew: a driver either hands it over to the new structure, as the
 * simulated interface does, or refuses.
 */
ITC18_API int32_t ITC18_Open(void* device, int32_t deviceNumber);

/*
 * Brings an open interface into its initial state: no sequence, no sampling interval, no
 * acquisition prepared. May be repeated.
 *   device   an open device
 *   options  0, the standard configuration
 */
ITC18_API int32_t ITC18_Initialize(void* device, int32_t options);

/*
 * Sets the time that each entry of the sequence takes, so a pass through a sequence of n entries
 * takes n intervals. May be called before or after InitializeAcquisition.
 *   device    an initialised device
 *   interval  time per sequence entry [µs], 4 to 65535
 *   options   0, the interface's own clock
 */
ITC18_API int32_t ITC18_SetSamplingInterval(void* device, int32_t interval, int32_t options);

/*
 * Loads the sequence that an acquisition repeats; the words are copied.
 *   device  an initialised device
 *   length  number of entries, 1 to what the device's sequence memory holds
 *   words   one word per entry: an input select (0x80 times the analogue input 0 to 7, or 0x400,
 *           the digital input), plus an output select (0x800 times the analogue output 0 to 3, or
 *           0x2000, the digital output), plus the end mark 0xC000 on the last entry alone
 * An acquisition that was prepared for the previous sequence has to be prepared again.
 */
ITC18_API int32_t ITC18_SetSequence(void* device, int32_t length, const uint32_t* words);

/*
 * Prepares one acquisition with the loaded sequence.
 *   device  an initialised device with a sequence
 */
ITC18_API int32_t ITC18_InitializeAcquisition(void* device);

/*
 * Closes an open device and lets go of its interface, which can then be opened again.
 *   device  an open device
 */
ITC18_API int32_t ITC18_Close(void* device);

#ifdef __cplusplus
}
#endif

#endif
