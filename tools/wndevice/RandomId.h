// Identifiers that nobody can guess.
#pragma once

#include <string>
#include <string_view>

namespace wndevice {

// 32 lower-case hexadecimal digits from the system's cryptographic source. Throws std::runtime_error when the system
// fails.
std::string NewId();

// Whether a text has the form of NewId's. Only such a text may become part of a path.
bool IsId(std::string_view text);

}  // namespace wndevice
