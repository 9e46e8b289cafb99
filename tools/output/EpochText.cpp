// Records field by field, with levels in the units of their entry.
#include "output/EpochText.h"

#include <array>
#include <cstring>
#include <string_view>

#include "output/RecordValues.h"
#include "text/Text.h"

namespace corvantis::tool {
namespace {

// To the digits of a single-precision factor.
std::string LevelInUnits(const CorvantisField& field, const void* record,
                         const CorvantisScaleInfo* scale) {
    if (scale == nullptr || scale->isWord == 1 || !IsLevel(field)) return "";
    if (std::string_view(scale->unit) == "counts") return "";
    return fmt::format(" ({:.6g} {})", InUnits(LevelOf(field, record), *scale), scale->unit);
}

// The scale is that of a stimulus's entry.
void PrintFields(int32_t kind, const void* record, const std::string& indent,
                 const Terminal& terminal, const CorvantisScaleInfo* scale = nullptr) {
    for (const CorvantisField& field : FieldsOf(kind)) {
        const std::string line = fmt::format("{}{:<19} {} {}", indent, field.name,
                                             ShownValue(field, record), field.unit) +
                                 LevelInUnits(field, record, scale);
        terminal.Print("{}\n", line.substr(0, line.find_last_not_of(' ') + 1));
    }
}

// A sum shows its components instead.
void PrintParameters(const CorvantisStimulusRecord& stimulus, const std::string& indent,
                     const CorvantisScaleInfo& scale, const Terminal& terminal) {
    if (stimulus.isThere == 0 || stimulus.type == ITC_STIMULUS_SUMMED) return;
    PrintFields(stimulus.type, stimulus.record, indent, terminal, &scale);
}

void PrintEntry(const DataFile& file, int64_t number, int32_t entry, const Terminal& terminal) {
    const CorvantisStimulusRecord stimulus = ParametersOf(file, number, entry);
    const CorvantisScaleInfo scale = ScaleOf(file, number, entry, CORVANTIS_STIMULUS);
    const std::string indent = "    ";
    terminal.Print("  entry {}: {}\n", entry, TypeName(stimulus.type));
    terminal.Print("{}response = {}\n", indent,
                   ScaleOf(file, number, entry, CORVANTIS_RESPONSE).formula);
    terminal.Print("{}stimulus = {}\n", indent, scale.formula);
    PrintParameters(stimulus, indent, scale, terminal);
    for (int32_t k = 0; k < stimulus.components; ++k) {
        const CorvantisStimulusRecord component = ParametersOf(file, number, entry, k);
        terminal.Print("{}component {}: {}\n", indent, k, TypeName(component.type));
        PrintParameters(component, indent + "  ", scale, terminal);
    }
}

std::string StimulusNames(const CorvantisEpochInfo& info) {
    std::string names;
    for (int32_t entry = 0; entry < info.entries; ++entry) {
        if (entry > 0) names += "+";
        names += TypeName(info.stimulusTypes[entry]);
    }
    return names;
}

std::string CommentOf(const EpochRecords& epoch) {
    ITCEpochHeader header;
    std::memcpy(&header, epoch.header.data(), sizeof header);
    return reading::DisplayText({header.epochComment, sizeof header.epochComment});
}

void PrintEpochLine(const EpochRecords& epoch, const Terminal& terminal) {
    const CorvantisEpochInfo& info = epoch.info;
    terminal.Print("{:>6} {:>10} {:>8} {:>7} {:>8}  {:<20} {}\n", epoch.number, info.start,
                   info.points, info.entries, info.samplingInterval, StimulusNames(info),
                   CommentOf(epoch));
}

void PrintLostLine(const LostEpochs& lost, const Terminal& terminal) {
    const std::string offset = lost.offset < 0 ? "" : std::to_string(lost.offset);
    const std::string upTo = lost.first == lost.last ? "" : fmt::format("up to {} ", lost.last);
    terminal.Print("{:>6} {:>10}  {}damaged: {}\n", lost.first, offset, upTo, lost.text);
}

}  // namespace

void PrintFile(const DataFile& file, const Terminal& terminal) {
    const CorvantisRecordingInfo info = file.Info();
    std::array<uint8_t, CORVANTIS_FILE_HEADER_SIZE> header = {};
    CorvantisFileHeader(file.Recording(), header.data());
    terminal.Print("{}: {} epochs, {} bytes\n", file.Name(), info.epochs, info.size);
    PrintFields(CORVANTIS_FILE_HEADER, header.data(), "  ", terminal);
}

void PrintEpochLines(const DataFile& file, const Terminal& terminal) {
    terminal.Print("\n{:>6} {:>10} {:>8} {:>7} {:>8}  {:<20} {}\n", "epoch", "position", "points",
                   "entries", "µs", "stimuli", "comment");
    for (int64_t number = 0; number < file.Info().epochs; ++number) {
        if (const auto epoch = ReadEpoch(file, number)) {
            PrintEpochLine(*epoch, terminal);
        } else {
            const LostEpochs lost = LostFrom(file, number);
            PrintLostLine(lost, terminal);
            number = lost.last;
        }
    }
}

void PrintEpoch(const DataFile& file, const EpochRecords& epoch, const Terminal& terminal) {
    terminal.Print("epoch {}: bytes {} to {}, samples from {}\n", epoch.number, epoch.info.start,
                   epoch.info.end, epoch.info.samples);
    PrintFields(CORVANTIS_EPOCH_HEADER, epoch.header.data(), "  ", terminal);
    for (int32_t entry = 0; entry < epoch.info.entries; ++entry) {
        PrintEntry(file, epoch.number, entry, terminal);
    }
}

}  // namespace corvantis::tool
