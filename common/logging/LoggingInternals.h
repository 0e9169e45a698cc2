// The logger's own operations, for its parts and their tests.
#pragma once

#include <cstdint>

#include "wncom/Logging.h"

namespace wncom {

// Opens a destination, or takes a reference to the one that is open: then level, path and limit are ignored, and one
// of another kind is refused. The path may be null, which opens no file; the limit, in KB, counts for SizedFile
// alone. Returns the level on success, else 0.
std::uint8_t InitLogging(std::uint8_t level, LogDestination destination, const char* path,
                         std::uint32_t limit) noexcept;

// Opens what a configuration text asks for: "console,LEVEL", "debug,LEVEL", "file,PATH,LEVEL" or
// "file,PATH,KB,LEVEL". Returns the level when a destination was opened or joined, else 0. Null configures nothing.
std::uint8_t ParseLoggingConfig(const char* configuration) noexcept;

// Gives a reference back; the last one trims a size-limited file and closes the destination once no thread is writing
// to it.
void CloseLogging() noexcept;

// Cuts the open file to its newest part, at most the limit in KB; lines that are logged meanwhile go to the debugger
// output. Limits other than 1 to 1023 cut nothing. Returns whether the file was cut.
bool TrimLogFile(std::uint32_t limit) noexcept;

// Room for a configuration text: 259 characters and a terminator.
inline constexpr std::size_t kLoggingConfigBytes = 260;

// Reads a component's configuration text from the registry; false when there is none.
bool ReadLoggingConfig(const char* component, char (&configuration)[kLoggingConfigBytes]) noexcept;

}  // namespace wncom
