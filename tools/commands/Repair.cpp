// Repairing a data file.
//
// Procedure
//  1. Open FILE for reading only, and read its header. Refuse an OUT that is the same file, or that
//     exists unless it may be replaced.
//  2. Follow the epochs end to end from byte 580 to the place that the header has for the table,
//     each one's end found from its own header and stimulus records. If they are as many as the
//     table or the header counts (without a table, no more: saves that failed are counted), exactly
//     they are kept: no search and nothing that they or a later save hold can lead astray. The same
//     from byte 580 to where a table of the header's count would end the file.
//  3. Otherwise walk again, from each damaged epoch to the next place of the table that has one.
//     What lies between two such places is accounted for and is not searched. The table is that of
//     the header's place or, where the header leads elsewhere, of the end of the file.
//  4. Without a table, search where no epoch follows for the next sound one. If it lies inside the
//     epoch before and leads beyond that one's end, that one's length was damaged, and it is
//     dropped. An epoch that was found by searching is said to be in doubt.
//  5. If no whole table is there, an interrupted save is the usual cause. Keep the epoch that the
//     header does not count if its bytes are known to have arrived (LastSave.h says how).
//  6. Write a header that is FILE's but for count and table position, every complete epoch byte for
//     byte and, if wanted, the last one cut to its whole points: its epochPoints and the
//     conductances change accordingly, everything else stays.
//  7. Write the table of real starts. Force OUT to the disk under a temporary name and rename it.
//
// Known limits
//  - There are no checksums: changed samples, comments or parameter values are copied as they are.
//  - Where a small new epoch ends before the old table did, its bytes can be those of the table, or
//    of a save that failed and was killed while it undid itself. It counts as unfinished until the
//    file is longer than before the save.
//  - An epoch whose time has the bits of the number 580, below 1e-42, and whose save was
//    interrupted as the second of its file passes for a table. Both readings are said.
//  - Bytes that a power failure has kept from the disk read as zeros; headers of zeros are no
//    epochs, but among samples they are not recognised.
//  - Without a table, an epoch whose damaged length ends where a later epoch begins swallows those
//    between, and samples of a damaged epoch that look like an epoch are taken for one.
//  - An epoch whose epochPoints was damaged to a smaller number is kept as it says; its remaining
//    samples are dropped, and said to belong to nothing.
//  - An epoch of no sequence entry, which holds no sample, is known by the table or the header's
//    count alone; without them it counts as damaged, and so does the epoch of a killed save.
//  - An epoch of unknown type ends where the table says that the next one begins; without a table,
//    where the search finds the next one.
//  - Versions that left the remains of a failed save behind the table: if the next save of an epoch
//    of that very size was killed, old samples can pass for new ones.
//  - The search finds no epoch whose padding another program has filled, and none of interval 0.
//  - The stimulus of an epoch that was cut short is not computable: its lengths no longer add up.
//  - Epochs that would begin at 4 GiB or above cannot be recorded in a table and are dropped.
#include "commands/Repair.h"

#include <algorithm>
#include <limits>

#include "commands/Findings.h"
#include "files/Failure.h"
#include "files/NewFile.h"
#include "output/Text.h"
#include "survey/Survey.h"

namespace corvantis::tool {
namespace {

constexpr int64_t kCopyBlock = 1 << 20;
constexpr int64_t kLargestPosition = std::numeric_limits<uint32_t>::max();

struct Dropped {
    int64_t begin;
    int64_t end;
    std::string reason;
};

struct Account {
    size_t kept = 0;
    size_t uncounted = 0;  // of these, not in the header's count
    std::optional<UnfinishedEpoch> cut;
    std::vector<Dropped> dropped;
    std::vector<Remark> doubts;
    bool IsWhole() const { return dropped.empty() && doubts.empty() && !cut; }
};

class OutputFile {
  public:
    OutputFile(const DataFile& from, NewFile& to, const Terminal& terminal)
        : from_(from), to_(to), progress_(terminal, "copying", from.Size()) {}

    // For an epoch of that size, with the table behind it.
    bool HasRoom(int64_t size) const { return position_ + size <= kLargestPosition; }

    // Byte for byte.
    void Append(const EpochPlace& epoch) {
        Begin();
        Copy(epoch.start, epoch.end);
    }

    void AppendCut(const UnfinishedEpoch& epoch) {
        const int64_t start = position_;
        Begin();
        CopyParameters(epoch);
        Copy(epoch.place.samples,
             epoch.place.samples + int64_t{2} * epoch.wholePoints * epoch.place.entries);
        const int64_t field = start + static_cast<int64_t>(offsetof(ITCEpochHeader, epochPoints));
        WriteAt(field, [&](FILE* stream) { return WriteArray_int(stream, &epoch.wholePoints, 1); });
    }

    void Finish() {
        ITCFileHeader header = from_.Header();
        header.numEpochs = static_cast<int32_t>(starts_.size());
        header.epochTablePosition = static_cast<int32_t>(static_cast<uint32_t>(position_));
        WriteAt(0, [&](FILE* stream) { return Write_ITCFileHeader(stream, &header); });
        WriteAt(position_, [&](FILE* stream) {
            return WriteArray_int(stream, starts_.data(), header.numEpochs);
        });
        to_.Commit();
    }

  private:
    void Begin() { starts_.push_back(static_cast<int32_t>(static_cast<uint32_t>(position_))); }

    void Copy(int64_t begin, int64_t end) {
        while (begin < end) {
            progress_.Reach(begin);
            const auto bytes = from_.Bytes(begin, std::min(end - begin, kCopyBlock));
            if (bytes.empty()) throw Failure(from_.Path(), "became shorter while it was read");
            WriteAt(position_, [&](FILE* stream) {
                return std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size();
            });
            begin += static_cast<int64_t>(bytes.size());
            position_ += static_cast<int64_t>(bytes.size());
        }
    }

    // Each conductance array shrinks with the points.
    void CopyParameters(const UnfinishedEpoch& epoch) {
        int64_t from = epoch.place.start;
        for (const int64_t arrays : epoch.place.conductances) {
            if (arrays == 0) continue;
            Copy(from, arrays);
            const int64_t whole = int64_t{4} * epoch.place.points;
            const int64_t kept = int64_t{4} * epoch.wholePoints;
            Copy(arrays, arrays + kept);
            Copy(arrays + whole, arrays + whole + kept);
            from = arrays + 2 * whole;
        }
        Copy(from, epoch.place.samples);
    }

    template <class Writing>
    void WriteAt(int64_t position, Writing write) {
        const bool placed = fseeko(to_.Get(), position, SEEK_SET) == 0;
        if (!placed || !write(to_.Get())) to_.CheckWritten();
    }

    const DataFile& from_;
    NewFile& to_;
    Progress progress_;
    int64_t position_ = kFirstEpoch;
    std::vector<int32_t> starts_;
};

std::string Why(const Mismatch& mismatch) {
    return fmt::format("found {}, expected {}", mismatch.found, mismatch.expected);
}

bool AppendUnfinished(const UnfinishedEpoch& epoch, const RepairOptions& options,
                      OutputFile& output) {
    if (!options.keepPartial || epoch.wholePoints == 0) return false;
    if (!output.HasRoom(epoch.place.end - epoch.place.start)) return false;
    output.AppendCut(epoch);
    return true;
}

void CountUncounted(const DataFile& file, Account& account) {
    const auto counted = static_cast<size_t>(std::max(file.Header().numEpochs, 0));
    account.uncounted = account.kept > counted ? account.kept - counted : 0;
}

Account WriteRepaired(const DataFile& file, const Survey& survey, const RepairOptions& options,
                      OutputFile& output) {
    Account account;
    for (const Stretch& stray : survey.strays) {
        const std::string what = stray.number ? fmt::format("epoch {}: ", *stray.number) : "";
        account.dropped.push_back({stray.begin, stray.end, what + Why(stray.mismatch)});
    }
    for (const Remark& remark : survey.remarks) {
        if (remark.isDoubt) account.doubts.push_back(remark);
    }
    for (const EpochPlace& epoch : survey.epochs) {
        if (output.HasRoom(epoch.end - epoch.start)) {
            output.Append(epoch);
            ++account.kept;
        } else {
            account.dropped.push_back({epoch.start, epoch.end, "beyond the table's 32 bits"});
        }
    }
    CountUncounted(file, account);
    if (survey.unfinished && AppendUnfinished(*survey.unfinished, options, output)) {
        account.cut = survey.unfinished;
    } else if (survey.unfinished) {
        const UnfinishedEpoch& last = *survey.unfinished;
        account.dropped.push_back(
            {last.place.start, file.Size(),
             fmt::format("an unfinished epoch, {} of {} points can be had: {}", last.wholePoints,
                         last.place.points, Why(last.mismatch))});
    }
    if (const int64_t known = survey.numbers + (survey.unfinished ? 1 : 0);
        known < NumbersOf(file, survey)) {
        account.dropped.push_back({file.Size(), file.Size(),
                                   fmt::format("the file ends before {} epochs that it counts",
                                               NumbersOf(file, survey) - known)});
    }
    output.Finish();
    return account;
}

void PrintAccount(const DataFile& file, const Account& account, const RepairOptions& options,
                  const Terminal& terminal) {
    terminal.Print("{}: kept {} complete epochs of {}", DisplayText(options.output), account.kept,
                   DisplayText(file.Path()));
    if (account.uncounted > 0) {
        terminal.Print(", {} of them not counted by its header", account.uncounted);
    }
    terminal.Print("\n");
    if (account.cut) {
        terminal.Print("{}: kept epoch {} cut to {} of {} points: {}\n",
                       DisplayText(options.output), account.kept, account.cut->wholePoints,
                       account.cut->place.points, Why(account.cut->mismatch));
    }
    for (const Dropped& dropped : account.dropped) {
        terminal.Print("{}: dropped bytes {} to {}: {}\n", DisplayText(options.output),
                       dropped.begin, dropped.end, dropped.reason);
    }
    for (const Remark& doubt : account.doubts) {
        terminal.Print("{}: in doubt at byte {} of {}: {}\n", DisplayText(options.output),
                       doubt.offset, DisplayText(file.Path()), Why(doubt.mismatch));
    }
}

nlohmann::json ToJson(const DataFile& file, const Account& account, const RepairOptions& options) {
    nlohmann::json dropped = nlohmann::json::array();
    for (const Dropped& piece : account.dropped) {
        dropped.push_back({{"begin", piece.begin}, {"end", piece.end}, {"reason", piece.reason}});
    }
    nlohmann::json doubts = nlohmann::json::array();
    for (const Remark& doubt : account.doubts) {
        doubts.push_back({{"offset", doubt.offset}, {"reason", Why(doubt.mismatch)}});
    }
    nlohmann::json json = {{"file", DisplayText(file.Path())},      {"doubts", doubts},
                           {"output", DisplayText(options.output)}, {"kept", account.kept},
                           {"uncounted", account.uncounted},        {"dropped", dropped}};
    if (account.cut) json["cutToPoints"] = account.cut->wholePoints;
    return json;
}

}  // namespace

int RunRepair(const RepairOptions& options, const Terminal& terminal) {
    const DataFile file(options.file);
    if (file.IsSame(options.output)) {
        throw Failure(options.output, "is the file to repair; name another one");
    }
    if (file.IsBeingRecorded()) {
        terminal.Say("corvantis: {}: is being recorded; repaired is what it holds at this moment\n",
                     DisplayText(options.file));
    }
    NewFile repaired(options.output, options.force);
    repaired.TakeRights(file.Status());
    const Survey survey = SurveyFile(file, terminal);
    OutputFile output(file, repaired, terminal);
    const Account account = WriteRepaired(file, survey, options, output);
    if (options.json) {
        terminal.Print("{}\n", ToJson(file, account, options).dump(2));
    } else if (!terminal.quiet || !account.IsWhole()) {
        PrintAccount(file, account, options, terminal);
    }
    return account.IsWhole() ? kFine : kFindings;
}

}  // namespace corvantis::tool
