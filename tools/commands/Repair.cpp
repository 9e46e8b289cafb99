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
#include <optional>
#include <vector>

#include "ITCFileIO/RecordCodec.h"
#include "files/DataFile.h"
#include "files/Failure.h"
#include "files/NewFile.h"
#include "output/RecordValues.h"
#include "text/Text.h"

namespace corvantis::tool {
namespace {

using reading::DisplayText;
using reading::EpochPlace;
using reading::Remark;
using reading::Stretch;
using reading::Survey;
using reading::UnfinishedEpoch;

constexpr size_t kCopyBlock = 1 << 20;
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
        : from_(from),
          view_(from.Contents().View()),
          to_(to),
          progress_(terminal, "copying", view_.Size()),
          block_(kCopyBlock) {}

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
        std::array<uint8_t, sizeof epoch.wholePoints> points;
        StoreBigEndian(points.data(), epoch.wholePoints);
        WriteAt(field, points);
    }

    void Finish() {
        ITCFileHeader header = view_.Header();
        header.numEpochs = static_cast<int32_t>(starts_.size());
        header.epochTablePosition = static_cast<int32_t>(static_cast<uint32_t>(position_));
        std::vector<uint8_t> table(starts_.size() * sizeof(uint32_t));
        for (size_t i = 0; i < starts_.size(); ++i) {
            StoreBigEndian(table.data() + i * sizeof(uint32_t), starts_[i]);
        }
        WriteAt(0, Encode(header));
        WriteAt(position_, table);
        to_.Commit();
    }

  private:
    void Begin() { starts_.push_back(static_cast<uint32_t>(position_)); }

    void Copy(int64_t begin, int64_t end) {
        while (begin < end) {
            progress_.Reach(begin);
            const auto left = static_cast<size_t>(end - begin);
            const std::span piece = std::span(block_).first(std::min(left, kCopyBlock));
            Read(begin, piece);
            WriteAt(position_, piece);
            begin += std::ssize(piece);
            position_ += std::ssize(piece);
        }
    }

    void Read(int64_t position, std::span<uint8_t> piece) const {
        if (view_.Read(position, piece.data(), std::ssize(piece))) return;
        CorvantisProblem problem = {};
        const reading::Reporter reporter(from_.Contents().Name(), &problem);
        reporter.ReportFault(view_);
        throw Failure(problem);
    }

    // Each conductance array shrinks with the points.
    void CopyParameters(const UnfinishedEpoch& epoch) {
        int64_t from = epoch.place.start;
        const auto reading = ReadEpochAt(view_, from, reading::Depth::kRecords);
        for (const reading::Stimulus& stimulus : reading.content.stimuli) {
            const int64_t arrays = stimulus.conductances;
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

    void WriteAt(int64_t position, std::span<const uint8_t> bytes) {
        if (bytes.empty()) return;
        const bool isPlaced = fseeko(to_.Get(), position, SEEK_SET) == 0;
        const size_t written = std::fwrite(bytes.data(), 1, bytes.size(), to_.Get());
        if (!isPlaced || written != bytes.size()) to_.CheckWritten();
    }

    const DataFile& from_;
    const reading::FileView view_;
    NewFile& to_;
    Progress progress_;
    int64_t position_ = reading::kFirstEpoch;
    std::vector<uint8_t> block_;
    std::vector<uint32_t> starts_;
};

bool AppendUnfinished(const UnfinishedEpoch& epoch, const RepairOptions& options,
                      OutputFile& output) {
    if (!options.keepPartial || epoch.wholePoints == 0) return false;
    if (!output.HasRoom(epoch.place.end - epoch.place.start)) return false;
    output.AppendCut(epoch);
    return true;
}

void CountUncounted(const ITCFileHeader& header, Account& account) {
    const auto counted = static_cast<size_t>(std::max(header.numEpochs, 0));
    account.uncounted = account.kept > counted ? account.kept - counted : 0;
}

std::vector<Dropped> DroppedBefore(const Survey& survey) {
    std::vector<Dropped> dropped;
    for (const Stretch& stray : survey.strays) {
        const std::string what = stray.number ? fmt::format("epoch {}: ", *stray.number) : "";
        dropped.push_back({stray.begin, stray.end, what + InWords(stray.mismatch)});
    }
    return dropped;
}

void AppendComplete(const Survey& survey, OutputFile& output, Account& account) {
    for (const EpochPlace& epoch : survey.epochs) {
        if (output.HasRoom(epoch.end - epoch.start)) {
            output.Append(epoch);
            ++account.kept;
        } else {
            account.dropped.push_back({epoch.start, epoch.end, "beyond the table's 32 bits"});
        }
    }
}

void AppendLast(const UnfinishedEpoch& last, int64_t size, const RepairOptions& options,
                OutputFile& output, Account& account) {
    if (AppendUnfinished(last, options, output)) {
        account.cut = last;
        return;
    }
    account.dropped.push_back(
        {last.place.start, size,
         fmt::format("an unfinished epoch, {} of {} points can be had: {}", last.wholePoints,
                     last.place.points, InWords(last.mismatch))});
}

Account WriteRepaired(const DataFile& file, const RepairOptions& options, OutputFile& output) {
    const reading::Walked& walked = file.Walk();
    const Survey& survey = walked.survey;
    const int64_t size = file.Info().size;
    Account account;
    account.dropped = DroppedBefore(survey);
    for (const Remark& remark : survey.remarks) {
        if (remark.isDoubt) account.doubts.push_back(remark);
    }
    AppendComplete(survey, output, account);
    CountUncounted(file.Contents().Moment().header, account);
    if (survey.unfinished) AppendLast(*survey.unfinished, size, options, output, account);
    const int64_t known = survey.numbers + (survey.unfinished ? 1 : 0);
    if (known < walked.numbers) {
        account.dropped.push_back(
            {size, size,
             fmt::format("the file ends before {} epochs that it counts", walked.numbers - known)});
    }
    output.Finish();
    return account;
}

void PrintAccount(const DataFile& file, const Account& account, const RepairOptions& options,
                  const Terminal& terminal) {
    terminal.Print("{}: kept {} complete epochs of {}", DisplayText(options.output), account.kept,
                   file.Name());
    if (account.uncounted > 0) {
        terminal.Print(", {} of them not counted by its header", account.uncounted);
    }
    terminal.Print("\n");
    if (account.cut) {
        terminal.Print("{}: kept epoch {} cut to {} of {} points: {}\n",
                       DisplayText(options.output), account.kept, account.cut->wholePoints,
                       account.cut->place.points, InWords(account.cut->mismatch));
    }
    for (const Dropped& dropped : account.dropped) {
        terminal.Print("{}: dropped bytes {} to {}: {}\n", DisplayText(options.output),
                       dropped.begin, dropped.end, dropped.reason);
    }
    for (const Remark& doubt : account.doubts) {
        terminal.Print("{}: in doubt at byte {} of {}: {}\n", DisplayText(options.output),
                       doubt.offset, file.Name(), InWords(doubt.mismatch));
    }
}

Json ToJson(const DataFile& file, const Account& account, const RepairOptions& options) {
    Json dropped = Json::array();
    for (const Dropped& piece : account.dropped) {
        dropped.push_back({{"begin", piece.begin}, {"end", piece.end}, {"reason", piece.reason}});
    }
    Json doubts = Json::array();
    for (const Remark& doubt : account.doubts) {
        doubts.push_back({{"offset", doubt.offset}, {"reason", InWords(doubt.mismatch)}});
    }
    Json json = {{"file", file.Name()},
                 {"doubts", doubts},
                 {"output", DisplayText(options.output)},
                 {"kept", account.kept},
                 {"uncounted", account.uncounted},
                 {"dropped", dropped}};
    if (account.cut) json["cutToPoints"] = account.cut->wholePoints;
    return json;
}

}  // namespace

int RunRepair(const RepairOptions& options, const Terminal& terminal) {
    const DataFile file(options.file);
    if (file.State().IsSame(options.output)) {
        throw Failure(options.output, "is the file to repair; name another one");
    }
    if (file.State().IsBeingRecorded()) {
        terminal.Say("{}: is being recorded; repaired is what it holds at this moment\n",
                     file.Name());
    }
    NewFile repaired(options.output, options.force, Readers::kOwner);
    repaired.TakeRights(file.State());
    OutputFile output(file, repaired, terminal);
    const Account account = WriteRepaired(file, options, output);
    if (options.json) {
        terminal.Print("{}\n", ToJson(file, account, options).dump(2));
    } else if (!terminal.quiet || !account.IsWhole()) {
        PrintAccount(file, account, options, terminal);
    }
    return account.IsWhole() ? kFine : kFindings;
}

}  // namespace corvantis::tool
