#include <cstring>
#include <type_traits>

#include "common/logging/LogTrim.h"
#include "common/logging/LoggingInternals.h"
#include "common/logging/LoggingState.h"

namespace wncom {

constinit RelaxedByte LogLevel;
constinit LoggingState loggingState;
// Destructors of the process's statics log too, whenever they run.
static_assert(std::is_trivially_destructible_v<LoggingState>);

namespace {

void WaitForWriters() noexcept {
    while (loggingState.writers.load() != 0) Sleep(1);
}

void SetComponent(const char* name) noexcept {
    ComponentName component{};
    std::strncpy(component.text, name, sizeof(component.text) - 1);
    // Names are replaced under the opening lock alone, so this never fails.
    loggingState.component.TryWrite(component);
}

}  // namespace

std::uint8_t InitLogging(std::uint8_t level, LogDestination destination, const char* path,
                         std::uint32_t limit) noexcept {
    const std::lock_guard opening(loggingState.opening);
    const LogDestination open = loggingState.destination;
    if (open != LogDestination::None) {
        if (open != destination) return 0;
        ++loggingState.references;
        return LogLevel;
    }
    if (destination == LogDestination::None) return 0;

    // The level stays when the file does not open; without a destination it admits nothing.
    LogLevel = level;
    if (IsFile(destination)) {
        loggingState.sizeLimit = destination == LogDestination::SizedFile ? limit : 0;
        if (!loggingState.file.Open(path)) return 0;
    }
    ++loggingState.references;
    loggingState.destination = destination;
    return level;
}

void CloseLogging() noexcept {
    const std::lock_guard opening(loggingState.opening);
    if (loggingState.references == 0 || --loggingState.references != 0) return;
    if (loggingState.file.IsOpen() && loggingState.file.Lock()) {
        TrimLogFile(loggingState.sizeLimit);
        loggingState.file.Unlock();
    }
    loggingState.destination = LogDestination::None;
    LogLevel = 0;
    WaitForWriters();
    loggingState.file.Close();
}

bool TrimLogFile(std::uint32_t limit) noexcept {
    const std::lock_guard opening(loggingState.opening);
    if (limit < 1 || limit > 1023 || !loggingState.file.IsOpen()) return false;
    LogTrim trim(loggingState.file.handle(), limit * 1024);
    if (!trim.CanRun()) return false;
    // The reference keeps the log open for threads that ask meanwhile. Giving it back closes nothing.
    ++loggingState.references;
    loggingState.destination = LogDestination::Debugger;
    const bool cut = trim.Run();
    loggingState.destination = LogDestination::File;
    --loggingState.references;
    return cut;
}

std::uint8_t StartLogging(const char* component, bool* tookReference) noexcept {
    if (tookReference) *tookReference = false;
    const char* name = component ? component : "";
    char configuration[kLoggingConfigBytes];
    if (!ReadLoggingConfig(name, configuration)) return 0;

    const std::lock_guard opening(loggingState.opening);
    const LONG before = loggingState.references;
    ParseLoggingConfig(configuration);
    SetComponent(name);
    const bool took = loggingState.references != before;
    if (took && before == 0 && LogLevel >= 4) Log(4, " ---Start Logging---");
    if (tookReference) *tookReference = took;
    return LogLevel;
}

void EndLogging() noexcept {
    const std::lock_guard opening(loggingState.opening);
    if (loggingState.references == 1 && LogLevel >= 4) Log(4, " ---End Logging---");
    CloseLogging();
}

LONG QueryLogging(std::uint8_t* level, LogDestination* destination) noexcept {
    const LONG references = loggingState.references;
    if (references == 0) return 0;
    if (level) *level = LogLevel;
    if (destination) *destination = loggingState.destination;
    return references;
}

}  // namespace wncom
