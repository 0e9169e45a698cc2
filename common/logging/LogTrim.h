// Cuts a log file to its newest part.
#pragma once

#include <windows.h>

namespace wncom {

// Holds the whole file locked against other handles for its life. The file belongs to the caller, who also keeps
// other writers of the log away meanwhile.
class LogTrim {
public:
    // Locks nothing when the file is not longer than the bytes to keep.
    LogTrim(HANDLE file, DWORD keepBytes) noexcept;
    LogTrim(const LogTrim&) = delete;
    LogTrim& operator=(const LogTrim&) = delete;
    ~LogTrim();

    // Whether there is something to cut and the file could be locked.
    bool CanRun() const noexcept { return m_locked; }
    // Keeps the last bytes of the file from the first line start behind their first line feed; a file without one
    // there keeps them all. False when reading or writing failed; a file that could not be read is as it was.
    bool Run() noexcept;

private:
    bool ReadAt(ULONGLONG offset, DWORD& bytes) noexcept;
    bool FindLineStart(ULONGLONG& start) noexcept;
    bool MoveToFront(ULONGLONG from, ULONGLONG& moved) noexcept;

    HANDLE m_file;
    ULONGLONG m_size;
    ULONGLONG m_keep;
    bool m_locked = false;
    char m_chunk[4096];
};

}  // namespace wncom
