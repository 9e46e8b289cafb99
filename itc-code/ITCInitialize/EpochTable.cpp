// Allocation and growth of the table of epoch positions.
#include "ITCInitialize/EpochTable.h"

#include <algorithm>

#include "Corvantis.h"
#include "ITCInitialize/Memory.h"
#include "ITCInitialize/State.h"

namespace corvantis {
namespace {

const uint32_t* knownTable = nullptr;
int64_t knownEntries = 0;
// Entries that growing owes the table, for epochs that were counted when memory was out.
int64_t owedEntries = 0;
const uint32_t* releasedTable = nullptr;

void UseTable(OwnedBlock<uint32_t> table, int64_t entries) {
    EpochPosition = table.release();
    knownTable = EpochPosition;
    knownEntries = EpochPosition == nullptr ? 0 : entries;
    owedEntries = 0;
    releasedTable = nullptr;
}

}  // namespace

bool AllocateEpochTable(int64_t entries) {
    UseTable(AllocateZeroed<uint32_t>(entries), entries);
    return EpochPosition != nullptr;
}

bool GrowEpochTable(int64_t epochs) {
    OwnedBlock<uint32_t> grown = AllocateArray<uint32_t>(epochs + 1);
    if (grown == nullptr) {
        ++owedEntries;
        return false;
    }
    const int64_t entries = std::min(EpochTableEntries(), epochs + 1);
    std::copy_n(EpochPosition, entries, grown.get());
    std::fill(grown.get() + entries, grown.get() + epochs + 1, grown.get()[entries - 1]);
    ReleaseEpochTable();
    UseTable(std::move(grown), epochs + 1);
    return true;
}

void ReleaseEpochTable() {
    if (EpochPosition == nullptr || EpochPosition == releasedTable) return;
    ITCFree(EpochPosition);
    releasedTable = EpochPosition;
}

std::optional<uint32_t> NextEpochPosition(int64_t epochs) {
    const int64_t entries = EpochTableEntries();
    if (epochs < 0 || entries < 1 || entries + owedEntries <= epochs) return std::nullopt;
    return EpochPosition[std::min(epochs, entries - 1)];
}

// A table that the application put there is taken at its word: one entry more than epochs.
int64_t EpochTableEntries() {
    if (EpochPosition == nullptr || EpochPosition == releasedTable) return 0;
    return EpochPosition == knownTable ? knownEntries : int64_t{CurrentFileHeader().numEpochs} + 1;
}

}  // namespace corvantis
