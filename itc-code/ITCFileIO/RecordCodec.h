// Writer and reader of any described record: one transfer of the whole record, and element by
// element behind the place where a transfer fell short.
#pragma once

#include <array>
#include <cstdio>
#include <cstring>
#include <type_traits>

#include "ITCFileIO/ByteOrder.h"
#include "ITCFileIO/RecordLayouts.h"

namespace corvantis {

template <class Field>
inline constexpr bool kIsText = std::is_array_v<Field> &&
                                sizeof(std::remove_all_extents_t<Field>) == 1;

// Breaks the fields that a description names into elements; arrays go in index order. Runs of
// single bytes go to a visitor at once if it has a function for them.
template <class Visitor>
class ElementVisitor {
  public:
    template <class Field>
    constexpr void operator()(Field& field, const FieldText& /*text*/) {
        VisitField(field);
    }
    constexpr void Zeros(size_t count) {
        if constexpr (requires { Self().ZeroRun(count); }) {
            Self().ZeroRun(count);
        } else {
            for (size_t i = 0; i < count; ++i) Self().Zero();
        }
    }

  private:
    constexpr Visitor& Self() { return static_cast<Visitor&>(*this); }
    template <class Field>
    constexpr void VisitField(Field& field) {
        if constexpr (kIsText<Field> && requires { Self().Text(&field, sizeof field); }) {
            Self().Text(&field, sizeof field);
        } else if constexpr (std::is_array_v<Field>) {
            for (auto& element : field) VisitField(element);
        } else {
            Self().Element(field);
        }
    }
};

struct SizeCounter : ElementVisitor<SizeCounter> {
    template <class T>
    constexpr void Element(const T& /*value*/) {
        size += sizeof(T);
    }
    constexpr void Zero() { ++size; }
    size_t size = 0;
};

template <class Record>
constexpr size_t EncodedSize() {
    SizeCounter counter;
    const Record record = {};
    Describe(counter, record);
    return counter.size;
}

struct Encoder : ElementVisitor<Encoder> {
    explicit Encoder(uint8_t* bytes) : next(bytes) {}
    template <class T>
    void Element(const T& value) {
        StoreBigEndian(next, value);
        next += sizeof(T);
    }
    void Text(const void* text, size_t size) {
        std::memcpy(next, text, size);
        next += size;
    }
    void ZeroRun(size_t count) {
        std::memset(next, 0, count);
        next += count;
    }
    uint8_t* next;
};

struct Decoder : ElementVisitor<Decoder> {
    explicit Decoder(const uint8_t* bytes) : next(bytes) {}
    template <class T>
    void Element(T& value) {
        LoadBigEndian(next, value);
        next += sizeof(T);
    }
    void Text(void* text, size_t size) {
        std::memcpy(text, next, size);
        next += size;
    }
    void ZeroRun(size_t count) { next += count; }
    const uint8_t* next;
};

// The elements behind the first `done` bytes, without the one that failed: each is transferred on
// its own into or out of its place in `bytes`.
template <class Transfer>
struct Remainder : ElementVisitor<Remainder<Transfer>> {
    Remainder(size_t doneBytes, Transfer transferBytes)
        : done(doneBytes), transfer(transferBytes) {}
    template <class T>
    void Element(T& value) {
        Attempt(sizeof value);
    }
    void Zero() { Attempt(1); }
    void Attempt(size_t size) {
        if (position > done) transfer(position, size);
        position += size;
    }
    size_t done;
    Transfer transfer;
    size_t position = 0;
};

template <class Record>
using EncodedRecord = std::array<uint8_t, EncodedSize<Record>()>;

// With everything inlined, a description is a row of moves between places known beforehand.
template <class Record>
[[gnu::flatten]] EncodedRecord<Record> Encode(const Record& record) {
    EncodedRecord<Record> bytes;
    Encoder encoder(bytes.data());
    Describe(encoder, record);
    return bytes;
}

// From as many bytes as the record has on file.
template <class Record>
[[gnu::flatten]] void DecodeBytes(const uint8_t* bytes, Record& record) {
    Decoder decoder(bytes);
    Describe(decoder, record);
}

template <class Record>
void Decode(const EncodedRecord<Record>& bytes, Record& record) {
    DecodeBytes(bytes.data(), record);
}

template <class Record>
bool WriteStructure(FILE* stream, const Record* record) {
    const EncodedRecord<Record> bytes = Encode(*record);
    const size_t written = std::fwrite(bytes.data(), 1, bytes.size(), stream);
    if (written == bytes.size()) return true;
    Remainder rest(written, [&](size_t position, size_t size) {
        std::fwrite(bytes.data() + position, size, 1, stream);
    });
    Describe(rest, *record);
    return false;
}

// Elements that never arrived keep their values in memory. At the end of the file none can arrive.
template <class Record>
bool ReadStructure(FILE* stream, Record* record) {
    EncodedRecord<Record> bytes;
    const size_t read = std::fread(bytes.data(), 1, bytes.size(), stream);
    if (read < bytes.size()) {
        const EncodedRecord<Record> before = Encode(*record);
        std::memcpy(bytes.data() + read, before.data() + read, bytes.size() - read);
        Remainder rest(read, [&](size_t position, size_t size) {
            std::fread(bytes.data() + position, size, 1, stream);
        });
        if (std::feof(stream) == 0) Describe(rest, *record);
    }
    Decode(bytes, *record);
    return read == bytes.size();
}

}  // namespace corvantis
