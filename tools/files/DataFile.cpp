// Opening a recording by its path.
#include "files/DataFile.h"

#include "files/Failure.h"
#include "text/Text.h"

namespace corvantis::tool {
namespace {

CorvantisRecording* Open(const std::string& path) {
    CorvantisRecording* recording = nullptr;
    CorvantisProblem problem = {};
    Require(CorvantisOpen(path.c_str(), &recording, &problem), problem);
    return recording;
}

}  // namespace

DataFile::DataFile(const std::string& path)
    : name_(reading::DisplayText(path)), recording_(Open(path)), state_(path) {}

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

}  // namespace corvantis::tool
