#include "wncom/Logging.h"

#include <algorithm>
#include <cstdio>
#include <mutex>

#include "common/logging/LogFormat.h"
#include "common/logging/LogPrefix.h"
#include "common/logging/LoggingInternals.h"
#include "common/logging/LoggingState.h"

namespace wncom {
namespace {

constexpr const char* kDefaultFile = "\\qbv-event.log";

// Callers read the error code of a call that failed after they logged it.
class KeepLastError {
public:
    KeepLastError() noexcept = default;
    KeepLastError(const KeepLastError&) = delete;
    KeepLastError& operator=(const KeepLastError&) = delete;
    ~KeepLastError() { SetLastError(m_error); }

private:
    const DWORD m_error = GetLastError();
};

// Keeps the destination from being closed while a line is on its way. The count is raised before the destination is
// read, and a close clears the destination before it reads the count: one of the two sees the other.
class Writer {
public:
    Writer() noexcept { loggingState.writers.fetch_add(1); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() { loggingState.writers.fetch_sub(1); }
};

void WriteConsole(std::string_view text) noexcept {
    // Not through the C library, whose standard output turns "\n" into "\r\n" on Windows.
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    if (!output || output == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

void WriteToFile(LogDestination destination, std::string_view text) noexcept {
    if (loggingState.file.Append(text) != LogFile::Outcome::Failed) return;
    // Unless the log was closed or switched meanwhile.
    loggingState.destination.compare_exchange_strong(destination, LogDestination::Debugger);
}

// False when no destination is open.
bool WriteLine(std::uint8_t level, const char* format, const LogArgument* arguments, std::size_t count) noexcept {
    const Writer writer;
    const LogDestination destination = loggingState.destination.load();
    if (destination == LogDestination::None) return false;

    LogLine line;
    if (IsFile(destination)) AppendLogPrefix(line, level);
    ComponentName component;
    while (!loggingState.component.TryRead(component)) {
    }
    line.Append(component.text);
    line.Append("::");
    AppendMessage(line, format, arguments, count);
    const char* text = line.End();

    if (destination == LogDestination::Console) {
        WriteConsole(line.view());
    } else if (IsFile(destination)) {
        WriteToFile(destination, line.view());
    } else {
        OutputDebugStringA(text);
    }
    return true;
}

// A line of level 0 is written even where nothing is configured, to a file that is opened for it alone.
void WriteUnconditionally(const char* format, const LogArgument* arguments, std::size_t count) noexcept {
    const std::lock_guard opening(loggingState.opening);
    const LONG before = loggingState.references;
    InitLogging(0, LogDestination::File, kDefaultFile, 0);
    WriteLine(0, format, arguments, count);
    if (loggingState.references != before) CloseLogging();
}

}  // namespace

void LogMessage(std::uint8_t level, const char* format, const LogArgument* arguments, std::size_t count) noexcept {
    if (level > LogLevel) return;
    const KeepLastError keep;
    if (WriteLine(level, format, arguments, count) || level != 0) return;
    WriteUnconditionally(format, arguments, count);
}

void LogBytes(std::uint8_t level, bool received, const void* bytes, std::uint32_t count) noexcept {
    if (level > LogLevel) return;
    constexpr std::uint32_t kMostShown = 23;  // what a line of 80 columns holds
    const auto* data = static_cast<const std::uint8_t*>(bytes);
    const std::uint32_t shown = data ? std::min(count, kMostShown) : 0;

    char text[16 + 3 * kMostShown];
    int length = std::snprintf(text, sizeof(text), received ? "%5u <RCV" : "%5u SND>", count);
    for (std::uint32_t i = 0; i != shown; ++i) {
        length += std::snprintf(text + length, sizeof(text) - static_cast<std::size_t>(length), " %02X", data[i]);
    }
    LogMessage(level, text, nullptr, 0);
}

}  // namespace wncom
