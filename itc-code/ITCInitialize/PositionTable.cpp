// Allocation and growth of the table of epoch positions.
#include "ITCInitialize/PositionTable.h"

#include <algorithm>

#include "Corvantis.h"
#include "ITCInitialize/State.h"
#include "ITCUtilities/Memory.h"

namespace corvantis {
namespace {

// A damaged header's count must not make a new file begin with gigabytes of positions.
constexpr int64_t kMostMissing = 65536;

const uint32_t* knownTable = nullptr;
int64_t knownEntries = 0;
// Entries that the known table has memory for; it grows ahead, or each of very many epochs would
// copy the positions of all before it.
int64_t capacity = 0;
// Entries that growing owes the table, for epochs that were counted when memory was out.
int64_t owedEntries = 0;
const uint32_t* releasedTable = nullptr;

void UseTable(OwnedBlock<uint32_t> table, int64_t entries) {
    EpochPosition = table.release();
    knownTable = EpochPosition;
    knownEntries = EpochPosition == nullptr ? 0 : entries;
    capacity = knownEntries;
    owedEntries = 0;
    releasedTable = nullptr;
}

void AddEntries(uint32_t* table, int64_t entries, int64_t wanted, uint32_t position) {
    std::fill(table + entries, table + wanted, position);
    knownEntries = wanted;
    owedEntries = 0;
}

}  // namespace

bool AllocatePositionTable(int64_t entries) {
    UseTable(AllocateZeroed<uint32_t>(entries), entries);
    return EpochPosition != nullptr;
}

bool RenewPositionTable() {
    const int64_t entries = PositionTableEntries();
    OwnedBlock<uint32_t> fresh = AllocateArray<uint32_t>(std::max<int64_t>(entries, 1));
    if (fresh == nullptr) return false;
    fresh[0] = kFirstEpochPosition;
    std::copy_n(EpochPosition, entries, fresh.get());
    UseTable(std::move(fresh), std::max<int64_t>(entries, 1));
    return true;
}

void ResetPositionTable() {
    EpochPosition[0] = kFirstEpochPosition;
    knownEntries = 1;
}

bool GrowPositionTable(int64_t epochs, uint32_t position) {
    const int64_t wanted = epochs + 1;
    const int64_t entries = std::min(PositionTableEntries(), epochs);
    if (EpochPosition != knownTable || wanted > capacity) {
        const int64_t room = wanted + wanted / 2;
        OwnedBlock<uint32_t> grown = AllocateArray<uint32_t>(room);
        if (grown == nullptr) {
            ++owedEntries;
            return false;
        }
        std::copy_n(EpochPosition, entries, grown.get());
        ReleasePositionTable();
        UseTable(std::move(grown), entries);
        capacity = room;
    }
    AddEntries(EpochPosition, entries, wanted, position);
    return true;
}

void ReleasePositionTable() {
    if (EpochPosition == nullptr || EpochPosition == releasedTable) return;
    ITCFree(EpochPosition);
    releasedTable = EpochPosition;
}

std::optional<uint32_t> NextEpochPosition(int64_t epochs, uint32_t end) {
    const int64_t entries = PositionTableEntries();
    if (epochs < 0 || epochs - entries > kMostMissing) return std::nullopt;
    if (epochs < entries) return EpochPosition[epochs];
    // An epoch whose save fails gives its place to the next.
    const bool isOwed = entries > 0 && epochs < entries + owedEntries;
    return isOwed ? EpochPosition[entries - 1] : end;
}

// A table that the application put there is taken at its word: one entry more than epochs.
int64_t PositionTableEntries() {
    if (EpochPosition == nullptr || EpochPosition == releasedTable) return 0;
    return EpochPosition == knownTable ? knownEntries : int64_t{CurrentFileHeader().numEpochs} + 1;
}

}  // namespace corvantis
