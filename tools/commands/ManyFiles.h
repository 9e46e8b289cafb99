// One command on any number of files, several at a time, with the output in the files' order.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "files/DataFile.h"
#include "files/Failure.h"
#include "files/FoundFiles.h"
#include "output/Terminal.h"

namespace corvantis::tool {

struct FileChoice {
    std::vector<std::string> files;  // or folders
    int jobs = 0;                    // 0: as many as there are processors
    bool json = false;
};

// More than one file, as far as the command line tells.
bool AreMany(const FileChoice& choice);

// What became of a file.
struct Outcome {
    int code = kFine;
    int64_t epochs = 0;
    int64_t findings = 0;
    bool isRecording = true;
};

// Throws a Failure if nothing came of it; as JSON it prints one object.
using FileWork = std::function<Outcome(const DataFile&, const FoundFile&, const Terminal&)>;

// The worst exit code of all. A file that fails spoils no other. The separator stands between the
// files' texts.
int RunOnFiles(const FileChoice& choice, const char* separator, const Terminal& terminal,
               const FileWork& work);
int RunOnFiles(const FileChoice& choice, const std::vector<FoundFile>& files, const char* separator,
               const Terminal& terminal, const FileWork& work);

}  // namespace corvantis::tool
