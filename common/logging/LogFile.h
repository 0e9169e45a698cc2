// The log file that all processes share, with the named mutex that serialises them.
#pragma once

#include <windows.h>

#include <atomic>
#include <string_view>

namespace wncom {

// Lines may be appended from any thread at once; opening and closing belong to one thread, and no line is appended
// meanwhile.
class LogFile {
public:
    enum class Outcome { Written, Dropped, Failed };

    LogFile() noexcept = default;
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    bool IsOpen() const noexcept { return m_file != nullptr; }
    HANDLE handle() const noexcept { return m_file; }
    // Opens or creates the file and its mutex, both for every user. False, with nothing open, for null and for a path
    // that cannot be opened.
    bool Open(const char* path) noexcept;
    // Appends a line: the whole of it, behind a line that ended, or, when writing fails, nothing. It is dropped when
    // the mutex is not obtained within 500 ms.
    Outcome Append(std::string_view text) noexcept;
    // Waits up to 1000 ms for the mutex; false when it was not obtained. Paired with Unlock.
    bool Lock() noexcept;
    void Unlock() noexcept;
    void Close() noexcept;

private:
    bool Obtain(DWORD milliseconds) noexcept;
    void EndHalfLine() noexcept;

    // Not owners: the log outlives every destructor of its module, for lines may come from later ones.
    HANDLE m_file = nullptr;
    HANDLE m_mutex = nullptr;
    std::atomic<bool> m_endIsUnknown{false};  // until the first line after the opening
};

}  // namespace wncom
