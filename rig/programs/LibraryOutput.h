// The lines that the library prints on standard output, which nobody reads there.
#pragma once

namespace corvantis::rig {

// While it lives, standard output goes nowhere. Throws a Failure.
class LibraryOutput {
  public:
    LibraryOutput();
    ~LibraryOutput();
    LibraryOutput(const LibraryOutput&) = delete;
    LibraryOutput& operator=(const LibraryOutput&) = delete;

  private:
    int before_;
};

}  // namespace corvantis::rig
