// Records described at run time, headers, parameters and columns of fields.
#include <array>
#include <cstring>
#include <vector>

#include "ITCFileIO/RecordFields.h"
#include "ITCFileIO/SequenceWords.h"
#include "interface/Boundary.h"
#include "stimuli/Stimuli.h"
#include "text/Text.h"
#include "text/Words.h"
#include "units/Scale.h"

namespace corvantis::reading {
namespace {

static_assert(CORVANTIS_RECORD_SIZE == kLargestRecord);
static_assert(int{CORVANTIS_ENTRIES} == int{ITC_CHANNELS});
static_assert(CORVANTIS_FILE_HEADER_SIZE == sizeof(ITCFileHeader));
static_assert(CORVANTIS_EPOCH_HEADER_SIZE == sizeof(ITCEpochHeader));
static_assert(static_cast<int>(CORVANTIS_INT8) == static_cast<int>(FieldKind::kInt8));
static_assert(static_cast<int>(CORVANTIS_TEXT) == static_cast<int>(FieldKind::kText));

using Fields = std::vector<CorvantisField>;

Fields Exported(std::span<const Field> fields) {
    Fields exported;
    for (const Field& field : fields) {
        exported.push_back({field.text.name, field.text.unit, field.text.meaning,
                            static_cast<int32_t>(field.kind), static_cast<int32_t>(field.size),
                            static_cast<int32_t>(field.count), static_cast<int32_t>(field.place)});
    }
    return exported;
}

// By record, from the file header on.
std::array<Fields, kLargestType + 2> ExportAll() {
    std::array<Fields, kLargestType + 2> all;
    all[0] = Exported(kFields<ITCFileHeader>);
    all[1] = Exported(kFields<ITCEpochHeader>);
    for (uint32_t type = 1; type <= kLargestType; ++type) {
        all[type + 1] = Exported(TypeRow(type).record->fields);
    }
    return all;
}

const std::array<Fields, kLargestType + 2>& AllFields() {
    static const std::array<Fields, kLargestType + 2> all = ExportAll();
    return all;
}

bool IsColumn(const CorvantisColumn& column) {
    const CorvantisField* field = column.field;
    if (field == nullptr || column.values == nullptr) return false;
    const Fields& fields = AllFields()[1];
    return field >= fields.data() && field < fields.data() + fields.size();
}

size_t SizeOf(const CorvantisField& field) {
    return static_cast<size_t>(field.size) * static_cast<size_t>(field.count);
}

uint8_t* PlaceOf(const CorvantisColumn& column, int64_t epoch) {
    return static_cast<uint8_t*>(column.values) + epoch * column.stride;
}

void StoreFields(std::span<const CorvantisColumn> columns, int64_t epoch,
                 const ITCEpochHeader& header) {
    const auto* from = reinterpret_cast<const uint8_t*>(&header);
    for (const CorvantisColumn& column : columns) {
        const CorvantisField& field = *column.field;
        std::memcpy(PlaceOf(column, epoch), from + field.place, SizeOf(field));
    }
}

void StoreZeros(std::span<const CorvantisColumn> columns, int64_t epoch) {
    for (const CorvantisColumn& column : columns) {
        std::memset(PlaceOf(column, epoch), 0, SizeOf(*column.field));
    }
}

int32_t ReadColumns(const Contents& contents, int64_t first, int64_t epochs,
                    std::span<const CorvantisColumn> columns, uint8_t* missing,
                    const Reporter& reporter) {
    const auto read = [&](const FileView&, const EpochReading& reading, int64_t i,
                          const Reporter&) -> int32_t {
        StoreFields(columns, i, reading.content.header);
        return CORVANTIS_SUCCESS;
    };
    return ForEachEpoch(contents, first, epochs, missing, reporter, read,
                        [&](int64_t i) { StoreZeros(columns, i); });
}

const Stimulus* Choose(const EpochContent& content, int32_t entry, int32_t component) {
    if (entry < 0 || static_cast<size_t>(entry) >= content.stimuli.size()) return nullptr;
    const Stimulus& stimulus = content.stimuli[static_cast<size_t>(entry)];
    if (component == -1) return &stimulus;
    if (component < 0 || static_cast<size_t>(component) >= stimulus.components.size()) {
        return nullptr;
    }
    return &stimulus.components[static_cast<size_t>(component)];
}

void Describe(const EpochReading& reading, CorvantisEpochInfo& info) {
    const EpochPlace& place = reading.place;
    const ITCEpochHeader& header = reading.content.header;
    info = {place.start,
            place.samples,
            place.end,
            place.points,
            place.entries,
            header.samplingInterval,
            {},
            {},
            {}};
    for (int32_t entry = 0; entry < CORVANTIS_ENTRIES; ++entry) {
        const bool isThere = entry < place.entries;
        const uint32_t word = header.channelSequence[entry];
        info.stimulusTypes[entry] = isThere ? header.stimType[entry] : 0;
        info.inputs[entry] = isThere ? InputOf(word) : -1;
        info.outputs[entry] = isThere ? OutputOf(word) : -1;
    }
}

}  // namespace
}  // namespace corvantis::reading

using namespace corvantis::reading;

int32_t CorvantisFields(int32_t record, const CorvantisField** fields, int32_t* count) {
    constexpr auto kLast = static_cast<int32_t>(corvantis::kLargestType);
    if (fields == nullptr || count == nullptr) return CORVANTIS_BAD_ARGUMENT;
    if (record < CORVANTIS_FILE_HEADER || record > kLast) return CORVANTIS_BAD_ARGUMENT;
    return Guarded(Reporter("", nullptr), [&] {
        const Fields& all = AllFields()[static_cast<size_t>(int64_t{record} + 1)];
        *fields = all.data();
        *count = static_cast<int32_t>(all.size());
        return CORVANTIS_SUCCESS;
    });
}

int32_t CorvantisType(int32_t type, CorvantisTypeInfo* info) {
    if (info == nullptr) return CORVANTIS_BAD_ARGUMENT;
    const corvantis::StimulusType& row = RowOf(type);
    const auto size = static_cast<int32_t>(row.record->fileSize);
    *info = {row.name, row.caveat, size,
             type == ITC_STIMULUS_SUMMED || IsComputedFromFile(type) ? 1 : 0};
    return CORVANTIS_SUCCESS;
}

int32_t CorvantisFileHeader(const CorvantisRecording* recording, void* record) {
    if (recording == nullptr || record == nullptr) return CORVANTIS_BAD_ARGUMENT;
    std::memcpy(record, &recording->contents->Moment().header, sizeof(ITCFileHeader));
    return CORVANTIS_SUCCESS;
}

int32_t CorvantisEpochHeader(const CorvantisRecording* recording, int64_t epoch, void* record,
                             CorvantisProblem* problem) {
    return WithEpoch(recording, epoch, Depth::kHeader, problem,
                     [&](const Contents&, const FileView&, const EpochReading& reading,
                         const Reporter& reporter) -> int32_t {
                         if (record == nullptr) return Missing(reporter);
                         std::memcpy(record, &reading.content.header, sizeof(ITCEpochHeader));
                         return CORVANTIS_SUCCESS;
                     });
}

int32_t CorvantisColumns(const CorvantisRecording* recording, int64_t first, int64_t epochs,
                         const CorvantisColumn* columns, int32_t count, uint8_t* missing,
                         CorvantisProblem* problem) {
    return WithContents(
        recording, problem, [&](const Contents& contents, const Reporter& reporter) -> int32_t {
            if (columns == nullptr || count < 0) return Missing(reporter);
            const std::span all(columns, static_cast<size_t>(count));
            for (const CorvantisColumn& column : all) {
                if (IsColumn(column)) continue;
                return reporter.Report(CORVANTIS_BAD_ARGUMENT, -1,
                                       "a column is of no field of the epoch header");
            }
            return ReadColumns(contents, first, epochs, all, missing, reporter);
        });
}

int32_t CorvantisEpoch(const CorvantisRecording* recording, int64_t epoch, CorvantisEpochInfo* info,
                       CorvantisProblem* problem) {
    return WithEpoch(recording, epoch, Depth::kHeader, problem,
                     [&](const Contents&, const FileView&, const EpochReading& reading,
                         const Reporter& reporter) -> int32_t {
                         if (info == nullptr) return Missing(reporter);
                         corvantis::reading::Describe(reading, *info);
                         return CORVANTIS_SUCCESS;
                     });
}

int32_t CorvantisParameters(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                            int32_t component, CorvantisStimulusRecord* record,
                            CorvantisProblem* problem) {
    return WithEpoch(recording, epoch, Depth::kRecords, problem,
                     [&](const Contents&, const FileView&, const EpochReading& reading,
                         const Reporter& reporter) -> int32_t {
                         const Stimulus* stimulus = Choose(reading.content, entry, component);
                         if (record == nullptr || stimulus == nullptr) {
                             return reporter.ReportEpoch(
                                 CORVANTIS_BAD_ARGUMENT, epoch, -1,
                                 Say("has no entry ", entry, " with component ", component));
                         }
                         *record = {};
                         record->type = stimulus->type;
                         record->components = static_cast<int32_t>(stimulus->components.size());
                         record->isThere =
                             stimulus->isRead && RowOf(stimulus->type).record->fileSize > 0 ? 1 : 0;
                         std::memcpy(record->record, stimulus->record.data(),
                                     sizeof record->record);
                         return CORVANTIS_SUCCESS;
                     });
}

int32_t CorvantisScale(const CorvantisRecording* recording, int64_t epoch, int32_t entry,
                       int32_t direction, CorvantisScaleInfo* scale, CorvantisProblem* problem) {
    return WithEpoch(
        recording, epoch, Depth::kHeader, problem,
        [&](const Contents& contents, const FileView&, const EpochReading& reading,
            const Reporter& reporter) -> int32_t {
            const bool isThere = entry >= 0 && entry < reading.place.entries;
            const bool isKnown =
                direction >= CORVANTIS_RESPONSE && direction <= CORVANTIS_CONDUCTANCE;
            if (scale == nullptr || !isThere || !isKnown) {
                return reporter.ReportEpoch(CORVANTIS_BAD_ARGUMENT, epoch, -1,
                                            Say("has no scale ", direction, " of entry ", entry));
            }
            const Scale from = ScaleOf(contents.Moment().header, reading.content.header,
                                       static_cast<size_t>(entry), direction);
            *scale = {from.countsPerVolt, from.gain, from.factor, from.isWord ? 1 : 0, {}, {}};
            StoreText(from.unit, scale->unit);
            StoreText(from.formula, scale->formula);
            return CORVANTIS_SUCCESS;
        });
}

int32_t CorvantisText(const char* bytes, int32_t size, char* text, int32_t capacity) {
    if (bytes == nullptr || text == nullptr || size < 0 || capacity < 1) {
        return CORVANTIS_BAD_ARGUMENT;
    }
    return Guarded(Reporter("", nullptr), [&] {
        const std::string shown = DisplayText({bytes, static_cast<size_t>(size)});
        StoreText(shown, text, static_cast<size_t>(capacity));
        return shown.size() < static_cast<size_t>(capacity) ? CORVANTIS_SUCCESS
                                                            : CORVANTIS_BAD_ARGUMENT;
    });
}
