// An open recording with the name of its file, and what the system knows of that.
#pragma once

#include <memory>
#include <string>

#include "CorvantisReading.h"
#include "files/FileState.h"
#include "recording/Recording.h"

namespace corvantis::tool {

class DataFile {
  public:
    // Throws a Failure for anything that is no recording.
    explicit DataFile(const std::string& path);

    // Fit for a screen.
    const std::string& Name() const { return name_; }
    const CorvantisRecording* Recording() const { return recording_.get(); }
    const reading::Contents& Contents() const { return *recording_->contents; }
    CorvantisRecordingInfo Info() const;
    // The walk through all of it. Throws a Failure if its bytes do not come.
    const reading::Walked& Walk() const;

    const FileState& State() const { return state_; }

  private:
    struct Close {
        void operator()(CorvantisRecording* recording) const { CorvantisClose(recording); }
    };
    std::string name_;
    std::unique_ptr<CorvantisRecording, Close> recording_;
    FileState state_;
};

}  // namespace corvantis::tool
