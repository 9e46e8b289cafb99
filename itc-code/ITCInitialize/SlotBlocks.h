// Which of the slots' records the library has put there itself, and of which type: of these alone
// it knows how large they are.
#pragma once

#include <cstdint>

namespace corvantis {

void InstallSlotRecord(uint32_t channel, void* record, uint32_t type);
// Whether the slot holds a record that the library has put there, and has not given back since.
bool IsInstalled(uint32_t channel);
// The type of that record.
uint32_t InstalledType(uint32_t channel);

// A block that is given back may lie where an application's own record lies next.
void ForgetInstalled(const void* block);
void ForgetInstalledRecords();
// The records of all slots are forgotten, not released.
void EmptySlots();

}  // namespace corvantis
