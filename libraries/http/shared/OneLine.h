// Remote texts in messages.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace wncom::http {

// The beginning of a remote text, in UTF-8, on one line for a message, control characters blanked: what a device
// writes must not pass for lines of the log.
std::string OneLine(std::string_view text, std::size_t mostBytes = 200);

}  // namespace wncom::http
