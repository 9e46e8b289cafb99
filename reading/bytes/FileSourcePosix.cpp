// Reading at offsets through a descriptor, which any number of threads can share.
#include "bytes/FileSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

namespace corvantis::reading {
namespace {

constexpr int64_t kMostAtOnce = 1 << 30;  // some systems read no more

// The descriptor is the context itself: there is nothing else to remember.
int DescriptorOf(void* context) { return static_cast<int>(reinterpret_cast<intptr_t>(context)); }

int64_t SizeOf(void* context) {
    struct stat status = {};
    return fstat(DescriptorOf(context), &status) == 0 ? int64_t{status.st_size} : -1;
}

int64_t ReadAt(void* context, int64_t offset, void* bytes, int64_t count) {
    const auto size = static_cast<size_t>(std::min(count, kMostAtOnce));
    for (;;) {
        const ssize_t read = pread(DescriptorOf(context), bytes, size, offset);
        if (read >= 0 || errno != EINTR) return read;
    }
}

void Close(void* context) { close(DescriptorOf(context)); }

int64_t NextData([[maybe_unused]] void* context, int64_t offset) {
#if defined(SEEK_DATA)
    const off_t data = lseek(DescriptorOf(context), offset, SEEK_DATA);
    if (data >= 0) return data;
    if (errno == ENXIO) return INT64_MAX;  // a hole up to the end
#endif
    return offset;
}

std::string Refusal(int descriptor) {
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) return std::generic_category().message(errno);
    if (S_ISDIR(status.st_mode)) return "is a directory";
    return S_ISREG(status.st_mode) ? "" : "is not a regular file";
}

}  // namespace

// Does not wait for the other end of a pipe.
OpenedFile OpenFile(const char* path) {
    OpenedFile opened;
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        opened.refusal = std::generic_category().message(errno);
        return opened;
    }
    opened.refusal = Refusal(descriptor);
    opened.isOpen = opened.refusal.empty();
    if (!opened.isOpen) {
        close(descriptor);
        return opened;
    }
    void* context = reinterpret_cast<void*>(static_cast<intptr_t>(descriptor));
    opened.source = {{context, SizeOf, ReadAt, Close}, NextData};
    return opened;
}

}  // namespace corvantis::reading
