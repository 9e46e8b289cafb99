// An open recording, and what its path has beyond it: a name, an owner, perhaps a recording
// program.
#pragma once

#include <sys/stat.h>

#include <memory>
#include <string>

#include "CorvantisReading.h"
#include "recording/Recording.h"

namespace corvantis::tool {

class DataFile {
  public:
    // Throws a Failure for anything that is no recording.
    explicit DataFile(const std::string& path);
    DataFile(const DataFile&) = delete;
    DataFile& operator=(const DataFile&) = delete;
    ~DataFile();

    // Fit for a screen.
    const std::string& Name() const { return name_; }
    const CorvantisRecording* Recording() const { return recording_.get(); }
    const reading::Contents& Contents() const { return *recording_->contents; }
    CorvantisRecordingInfo Info() const;
    // The walk through all of it. Throws a Failure if its bytes do not come.
    const reading::Walked& Walk() const;

    bool IsSame(const std::string& path) const;
    // Whether another program holds it open for recording.
    bool IsBeingRecorded() const;
    struct stat Status() const;

  private:
    struct Close {
        void operator()(CorvantisRecording* recording) const { CorvantisClose(recording); }
    };
    std::string name_;
    std::unique_ptr<CorvantisRecording, Close> recording_;
    int descriptor_ = -1;
};

}  // namespace corvantis::tool
