// Opening a recording by its path, and asking the system about it.
#include "files/DataFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "files/Failure.h"
#include "text/Text.h"

namespace corvantis::tool {

DataFile::DataFile(const std::string& path) : name_(reading::DisplayText(path)) {
    CorvantisRecording* recording = nullptr;
    CorvantisProblem problem = {};
    Require(CorvantisOpen(path.c_str(), &recording, &problem), problem);
    recording_.reset(recording);
    descriptor_ = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor_ < 0) throw SystemFailure(name_);
}

DataFile::~DataFile() {
    if (descriptor_ >= 0) close(descriptor_);
}

CorvantisRecordingInfo DataFile::Info() const {
    CorvantisRecordingInfo info = {};
    CorvantisInfo(Recording(), &info);
    return info;
}

const reading::Walked& DataFile::Walk() const {
    CorvantisProblem problem = {};
    const reading::Walked* walked = Contents().Walk({Contents().Name(), &problem});
    if (walked == nullptr) throw Failure(problem);
    return *walked;
}

struct stat DataFile::Status() const {
    struct stat status = {};
    if (fstat(descriptor_, &status) != 0) throw SystemFailure(name_);
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
    if (flock(descriptor_, LOCK_SH | LOCK_NB) != 0) return errno == EWOULDBLOCK;
    flock(descriptor_, LOCK_UN);
    return false;
}

}  // namespace corvantis::tool
