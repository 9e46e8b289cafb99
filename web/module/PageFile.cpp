// A file that the page holds, as a source of bytes for the reading library: what a browser has
// instead of paths.
#include "PageFile.h"

extern "C" {
/** Size of the page's file of that number [bytes]; -1 if it cannot be told. */
__attribute__((import_module("page"), import_name("size"))) double PageFileSize(int32_t file);
/** Read so many bytes from there, fewer only at the end: how many there were; -1: failed. */
__attribute__((import_module("page"), import_name("read"))) int32_t PageFileRead(int32_t file,
                                                                                 double offset,
                                                                                 void* bytes,
                                                                                 int32_t count);
}

namespace {

constexpr double kMostBytes = 0x1p53;  // the page counts in doubles
constexpr int64_t kMostAtOnce = 1 << 30;

int32_t NumberOf(void* context) {
    return static_cast<int32_t>(reinterpret_cast<intptr_t>(context));
}

int64_t Size(void* context) {
    const double size = PageFileSize(NumberOf(context));
    return size >= 0 && size <= kMostBytes ? static_cast<int64_t>(size) : -1;
}

int64_t Read(void* context, int64_t offset, void* bytes, int64_t count) {
    const auto most = static_cast<int32_t>(count < kMostAtOnce ? count : kMostAtOnce);
    const int32_t read = PageFileRead(NumberOf(context), static_cast<double>(offset), bytes, most);
    return read <= most ? read : -1;
}

}  // namespace

int32_t CorvantisOpenPageFile(int32_t file, const char* name, CorvantisRecording** recording,
                              CorvantisProblem* problem) {
    void* const context = reinterpret_cast<void*>(static_cast<intptr_t>(file));
    const CorvantisSource source = {context, Size, Read, nullptr};
    return CorvantisOpenSource(&source, name, recording, problem);
}
