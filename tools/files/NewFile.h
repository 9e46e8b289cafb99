// A file that appears under its name only when it is complete.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "files/TemporaryFile.h"

namespace corvantis::tool {

class NewFile {
  public:
    // Opens a temporary file beside the path. Throws a Failure, also if the path exists and may not
    // be replaced, or is no regular file.
    NewFile(const std::string& path, bool replace, Readers readers = Readers::kUsual);
    // Nobody may do with the file what they may not with the other one.
    void TakeRights(const FileState& other) { temporary_->TakeRights(other); }

    FILE* Get() const { return stream_.get(); }
    // Forces the bytes to the disk and gives the file its name. Throws a Failure.
    void Commit();
    // Throws a Failure if something could not be written so far.
    void CheckWritten() const;

  private:
    struct CloseStream {
        void operator()(FILE* stream) const { std::fclose(stream); }
    };
    std::string path_;
    bool replace_;
    std::unique_ptr<TemporaryFile> temporary_;
    std::unique_ptr<FILE, CloseStream> stream_;
};

// Also a link that leads nowhere.
bool Exists(const std::string& path);

}  // namespace corvantis::tool
