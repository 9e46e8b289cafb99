// Records described at run time, columns of their fields, and texts.
#include <array>
#include <cstring>
#include <vector>

#include "ITCFileIO/RecordFields.h"
#include "interface/Boundary.h"
#include "stimuli/Stimuli.h"
#include "text/Text.h"
#include "text/Words.h"

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
                            static_cast<int32_t>(field.count), static_cast<int32_t>(field.place),
                            field.text.isByEntry ? 1 : 0});
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
