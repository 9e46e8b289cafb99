// The records that the library has put into the slots.
#include "ITCInitialize/SlotBlocks.h"

#include <algorithm>
#include <iterator>

#include "Corvantis.h"

namespace corvantis {
namespace {

struct InstalledRecord {
    const void* record = nullptr;
    uint32_t type = 0;
};

InstalledRecord installed[ITC_CHANNELS];

}  // namespace

void InstallSlotRecord(uint32_t channel, void* record, uint32_t type) {
    StmParameters[channel] = record;
    installed[channel] = {record, type};
}

bool IsInstalled(uint32_t channel) {
    return StmParameters[channel] != nullptr && StmParameters[channel] == installed[channel].record;
}

uint32_t InstalledType(uint32_t channel) { return installed[channel].type; }

void ForgetInstalled(const void* block) {
    for (InstalledRecord& each : installed) {
        if (each.record == block) each = {};
    }
}

void ForgetInstalledRecords() {
    std::fill(std::begin(installed), std::end(installed), InstalledRecord{});
}

void EmptySlots() {
    std::fill(std::begin(StmParameters), std::end(StmParameters), nullptr);
    ForgetInstalledRecords();
}

}  // namespace corvantis
