// The log file that all processes share, with the named mutex that serialises them.
#pragma once

#include <windows.h>

#include <string_view>

#include "common/Owned.h"

namespace wncom {

// Lines may be appended from any thread at once; opening and closing belong to one thread, and no line is appended
// meanwhile.
class LogFile {
public:
    enum class Outcome { Written, Dropped, Failed };

    LogFile() noexcept = default;
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    bool IsOpen() const noexcept { return static_cast<bool>(m_file); }
    HANDLE handle() const noexcept { return m_file.get(); }
    // Opens or creates the file and its mutex, both for every user. False, with nothing open, for null and for a path
    // that cannot be opened.
    bool Open(const char* path) noexcept;
    // Appends the text in one piece. It is dropped when the mutex is not obtained within 500 ms.
    Outcome Append(std::string_view text) noexcept;
    // Waits up to 1000 ms for the mutex; false when it was not obtained. Paired with Unlock.
    bool Lock() noexcept;
    void Unlock() noexcept;
    void Close() noexcept;

private:
    OwnedHandle m_file;
    OwnedHandle m_mutex;
};

}  // namespace wncom
