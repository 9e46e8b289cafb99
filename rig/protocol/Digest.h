// The digest SHA-256 (FIPS 180-4).
#pragma once

#include <string>
#include <string_view>

namespace corvantis::rig {

// In 64 hexadecimal digits, as sha256sum prints it.
std::string Sha256(std::string_view text);

}  // namespace corvantis::rig
