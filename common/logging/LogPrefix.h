// What stands before the component name in a line of a log file.
#pragma once

#include <cstdint>

#include "common/logging/LogLine.h"

namespace wncom {

// Appends the local date and time, the process, the thread and the level: "12/31/05-09:07:03,[1520:2044/3] ".
void AppendLogPrefix(LogLine& line, std::uint8_t level) noexcept;

}  // namespace wncom
