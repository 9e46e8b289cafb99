// The four stimulus slots, one for each sequence entry: finding and releasing their records.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Corvantis.h"
#include "ITCInitialize/SlotBlocks.h"

namespace corvantis {

// The type code in the epoch header, sign-extended. The channel must be one.
int32_t SlotType(uint32_t channel);

// The slot's record if memory of that type is really there, else null. The type byte alone is not
// to be believed: an epoch read from a file replaces all four, the records only of its entries.
void* SlotRecord(uint32_t channel, int32_t type);
void* SlotRecord(uint32_t channel);
// The bytes of the slot's record that may be read, at most `limit`.
size_t SlotRecordSize(uint32_t channel, size_t limit);
// Whether the slot holds a record of just the type that the header states, as after a read of it.
bool HoldsOwnType(uint32_t channel);
ITCSummedParameters* SummedSlotRecord(uint32_t channel);

// The component's record, or null for one that is not there.
const void* ComponentRecord(const ITCSummedParameters& summed, int64_t component);

// The slot's record alone; components of a sum are lost.
void ReleaseSlotRecord(uint32_t channel);
// The slot's record, with its components if it is a sum.
void ReleaseSlot(uint32_t channel);
// The records of all slots, whose pointers stay as they were.
void ReleaseSlotRecordsAtEnd();

}  // namespace corvantis
