// Remote texts in messages.
#pragma once

#include <string>
#include <string_view>

namespace wncom::http {

// At most 200 bytes of a remote text on one line for a message, control characters blanked: what a device writes must
// not pass for lines of the log.
std::string OneLine(std::string_view text);

}  // namespace wncom::http
