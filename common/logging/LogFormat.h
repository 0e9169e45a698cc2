// Turns a message's format and its captured arguments into text.
#pragma once

#include <cstddef>

#include "common/logging/LogLine.h"
#include "wncom/Logging.h"

namespace wncom {

// A format of this many characters or more is cut to one character less, and a warning stands before the message.
inline constexpr std::size_t kFormatLimit = 512;

// Appends the message. A plain "%s" or "%S" writes at most the bytes that leave room for the others: the buffer's
// share of each is the same. A null format prints as (null).
void AppendMessage(LogLine& line, const char* format, const LogArgument* arguments, std::size_t count) noexcept;

}  // namespace wncom
