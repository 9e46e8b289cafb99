// The exported array codecs.
#include "ITCFileIO/ArrayCodec.h"

#include "Corvantis.h"

namespace corvantis {
namespace {

// No array has a negative number of elements; taken as a huge one it could only leave the array.
template <class FileType, class MemoryType>
bool WriteCounted(FILE* stream, const MemoryType* values, int count) {
    return count >= 0 && WriteArray<FileType>(stream, values, static_cast<size_t>(count));
}

template <class FileType, class MemoryType>
bool ReadCounted(FILE* stream, MemoryType* values, int count) {
    return count >= 0 && ReadArray<FileType>(stream, values, static_cast<size_t>(count));
}

}  // namespace
}  // namespace corvantis

bool WriteArray_long(FILE* stream, const long* values, int count) {
    return corvantis::WriteCounted<int32_t>(stream, values, count);
}
bool ReadArray_long(FILE* stream, long* values, int count) {
    return corvantis::ReadCounted<int32_t>(stream, values, count);
}
bool WriteArray_int(FILE* stream, const int32_t* values, int count) {
    return corvantis::WriteCounted<int32_t>(stream, values, count);
}
bool ReadArray_int(FILE* stream, int32_t* values, int count) {
    return corvantis::ReadCounted<int32_t>(stream, values, count);
}
bool WriteArray_short(FILE* stream, const int16_t* values, int count) {
    return corvantis::WriteCounted<int16_t>(stream, values, count);
}
bool ReadArray_short(FILE* stream, int16_t* values, int count) {
    return corvantis::ReadCounted<int16_t>(stream, values, count);
}
bool WriteArray_float(FILE* stream, const float* values, int count) {
    return corvantis::WriteCounted<float>(stream, values, count);
}
bool ReadArray_float(FILE* stream, float* values, int count) {
    return corvantis::ReadCounted<float>(stream, values, count);
}
