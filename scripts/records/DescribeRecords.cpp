// Prints what the library knows of its records and stimulus types, as JSON for generate.py.
#include <cstdio>
#include <span>

#include "ITCFileIO/RecordFields.h"
#include "ITCFileIO/StimulusTypes.h"

namespace {

using namespace corvantis;

const char* KindName(FieldKind kind) {
    switch (kind) {
        case FieldKind::kInt8:
            return "i8";
        case FieldKind::kUInt16:
            return "u16";
        case FieldKind::kInt32:
            return "i32";
        case FieldKind::kUInt32:
            return "u32";
        case FieldKind::kFloat:
            return "f32";
        case FieldKind::kText:
            return "text";
    }
    return "";
}

void PrintFields(std::span<const Field> fields) {
    const char* separator = "";
    std::printf("[");
    for (const Field& field : fields) {
        std::printf(R"(%s{"name": "%s", "unit": "%s", "meaning": "%s", "kind": "%s", )", separator,
                    field.text.name, field.text.unit, field.text.meaning, KindName(field.kind));
        std::printf(R"("size": %u, "count": %u, "place": %u})", field.size, field.count,
                    field.place);
        separator = ",\n   ";
    }
    std::printf("]");
}

void PrintType(uint32_t type) {
    const StimulusType& row = TypeRow(type);
    const Waveform waveform = row.waveform;
    std::printf(R"( {"code": %u, "name": "%s", "bytes": %u, "counted": %u, "computed": %s, )", type,
                static_cast<const char*>(row.name), row.record->fileSize, row.record->countedSize,
                waveform != nullptr && row.record->fileSize > 0 ? "true" : "false");
    std::printf(R"("caveat": "%s", "fields":)"
                "\n  ",
                static_cast<const char*>(row.caveat));
    PrintFields(row.record->fields);
    std::printf("}%s\n", type == kLargestType ? "" : ",");
}

}  // namespace

int main() {
    std::printf("{\"FileHeaderBytes\": %zu, \"EpochHeaderBytes\": %zu,\n\"FileHeader\":\n  ",
                EncodedSize<ITCFileHeader>(), EncodedSize<ITCEpochHeader>());
    PrintFields(kFields<ITCFileHeader>);
    std::printf(",\n\"EpochHeader\":\n  ");
    PrintFields(kFields<ITCEpochHeader>);
    std::printf(",\n\"types\": [\n");
    for (uint32_t type = 1; type <= kLargestType; ++type) PrintType(type);
    std::printf("]}\n");
    return 0;
}
