// A file that appears under its name only when it is complete.
#pragma once

#include <string>

#include "files/DataFile.h"

namespace corvantis::tool {

class NewFile {
  public:
    // Opens a file of a temporary name beside the path, which any signal that ends the program
    // removes; only one at a time. Throws a Failure, also if the path exists and may not be
    // replaced, or is no regular file.
    NewFile(const std::string& path, bool replace);
    // Nobody may do with the file what they may not with the other one.
    void TakeRights(const struct stat& other);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    // Removes what was not committed.
    ~NewFile();

    FILE* Get() const { return stream_.get(); }
    // Forces the bytes to the disk and gives the file its name. Throws a Failure.
    void Commit();
    // Throws a Failure if something could not be written so far.
    void CheckWritten() const;

  private:
    std::string path_;
    std::string temporary_;
    bool replace_;
    Stream stream_;
};

}  // namespace corvantis::tool
