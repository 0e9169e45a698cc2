// The state of the logger: one instance a module.
#pragma once

#include <windows.h>

#include <atomic>
#include <mutex>

#include "common/logging/LogFile.h"
#include "common/logging/LogPublished.h"
#include "wncom/Logging.h"

namespace wncom {

struct ComponentName {
    char text[64];  // longer names are cut
};

struct LoggingState {
    // Held by whoever opens or closes a destination, never by a thread that writes a line to an open one.
    std::recursive_mutex opening;
    // Changed under opening, and by a failed write.
    std::atomic<LogDestination> destination{LogDestination::None};
    std::atomic<LONG> references{0};
    // Threads that are writing a line. The file is closed once the destination is None and this is 0.
    std::atomic<LONG> writers{0};
    LogFile file;
    DWORD sizeLimit = 0;  // in KB, 0 for none; read and written under opening
    Published<ComponentName> component;
};

extern LoggingState loggingState;

inline bool IsFile(LogDestination destination) noexcept { return (static_cast<std::int32_t>(destination) & 12) != 0; }

}  // namespace wncom
