// Texts of a data file, whose encoding is not recorded, made fit for a screen and for JSON.
#pragma once

#include <string>
#include <string_view>

namespace corvantis::reading {

// The text up to its first 0 byte as UTF-8: taken as UTF-8 if it is that, else as Mac OS Roman.
// Control characters, and those that reverse a line, become spaces, so that no file can steer a
// terminal.
std::string DisplayText(std::string_view bytes);

}  // namespace corvantis::reading
