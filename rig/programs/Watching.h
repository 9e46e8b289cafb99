// The page that shows a recording while it grows, by corvantis view.
#pragma once

#include <cstdint>
#include <string>

namespace corvantis::rig {

// Runs for as long as it lives; the recording goes on without it where it cannot be started.
class Watching {
  public:
    Watching(bool isWanted, const std::string& file);
    ~Watching();
    Watching(const Watching&) = delete;
    Watching& operator=(const Watching&) = delete;

  private:
    intptr_t process_ = 0;
};

}  // namespace corvantis::rig
