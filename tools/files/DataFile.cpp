// Opening a data file for reading, whatever it turns out to be.
#include "files/DataFile.h"

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "files/Failure.h"

namespace corvantis::tool {
namespace {

// Does not wait for the other end of a pipe.
Stream OpenForReading(const std::string& path, struct stat& status) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) throw SystemFailure(path);
    Stream stream(fdopen(descriptor, "rb"));
    if (!stream || fstat(descriptor, &status) != 0) throw SystemFailure(path);
    if (S_ISDIR(status.st_mode)) throw Failure(path, "is a directory");
    if (!S_ISREG(status.st_mode)) throw Failure(path, "is not a regular file");
    return stream;
}

}  // namespace

DataFile::DataFile(std::string path) : path_(std::move(path)) {
    struct stat status = {};
    stream_ = OpenForReading(path_, status);
    size_ = status.st_size;
    if (size_ < kFirstEpoch) {
        throw Failure(path_, fmt::format("has {} bytes; a file header alone has {}: nothing was "
                                         "recorded, or this is no data file",
                                         size_, kFirstEpoch));
    }
    if (!Read_ITCFileHeader(At(0), &header_)) throw Failure(path_, "the header cannot be read");
    if (header_.version > ITC_FILE_VERSION) {
        throw Failure(path_, fmt::format("format version {} is newer than {}", header_.version,
                                         static_cast<int>(ITC_FILE_VERSION)));
    }
}

struct stat DataFile::Status() const {
    struct stat status = {};
    if (fstat(fileno(stream_.get()), &status) != 0) throw SystemFailure(path_);
    return status;
}

bool DataFile::IsSame(const std::string& path) const {
    struct stat other = {};
    if (stat(path.c_str(), &other) != 0) return false;
    const struct stat own = Status();
    return own.st_dev == other.st_dev && own.st_ino == other.st_ino;
}

// A recording program holds an exclusive lock from creating the file until it closes it.
bool DataFile::IsBeingRecorded() const {
    const int descriptor = fileno(stream_.get());
    if (flock(descriptor, LOCK_SH | LOCK_NB) != 0) return errno == EWOULDBLOCK;
    flock(descriptor, LOCK_UN);
    return false;
}

// The stream believes that it knows where its descriptor stands, so that is put back.
int64_t DataFile::NextData(int64_t position) const {
    const int descriptor = fileno(stream_.get());
    const off_t before = lseek(descriptor, 0, SEEK_CUR);
    const off_t data = lseek(descriptor, position, SEEK_DATA);
    const bool isHole = data < 0 && errno == ENXIO;  // up to the end
    lseek(descriptor, before, SEEK_SET);
    if (isHole) return size_;
    return data < 0 ? position : int64_t{data};
}

FILE* DataFile::At(int64_t position) const {
    if (fseeko(stream_.get(), position, SEEK_SET) != 0) throw SystemFailure(path_);
    return stream_.get();
}

std::vector<uint8_t> DataFile::Bytes(int64_t position, int64_t count) const {
    const int64_t available = std::clamp<int64_t>(size_ - position, 0, count);
    std::vector<uint8_t> bytes(static_cast<size_t>(available));
    if (available > 0) Read(position, bytes);
    return bytes;
}

void DataFile::Read(int64_t position, std::span<uint8_t> bytes) const {
    if (std::fread(bytes.data(), 1, bytes.size(), At(position)) == bytes.size()) return;
    const bool shrunk = std::ferror(stream_.get()) == 0;
    throw shrunk ? Failure(path_, "became shorter while it was read") : SystemFailure(path_);
}

std::vector<uint32_t> DataFile::Positions(int64_t position, int64_t count) const {
    const std::vector<uint8_t> bytes = Bytes(position, kPositionSize * std::max<int64_t>(count, 0));
    std::vector<uint32_t> positions(bytes.size() / kPositionSize);
    for (size_t i = 0; i < positions.size(); ++i) {
        for (size_t k = 0; k < kPositionSize; ++k) {
            positions[i] = positions[i] << 8 | bytes[kPositionSize * i + k];
        }
    }
    return positions;
}

}  // namespace corvantis::tool
