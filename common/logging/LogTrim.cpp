#include "common/logging/LogTrim.h"

#include <cstring>

#include "common/logging/FilePlace.h"

namespace wncom {
LogTrim::LogTrim(HANDLE file, DWORD keepBytes) noexcept : m_file(file), m_size(FileSize(file)), m_keep(keepBytes) {
    const OVERLAPPED end = FilePlace(m_size);
    m_locked = m_size > m_keep && LockFile(file, 0, 0, end.Offset, end.OffsetHigh);
}

LogTrim::~LogTrim() {
    const OVERLAPPED end = FilePlace(m_size);
    if (m_locked) UnlockFile(m_file, 0, 0, end.Offset, end.OffsetHigh);
}

bool LogTrim::Run() noexcept {
    ULONGLONG start = 0;
    ULONGLONG length = 0;
    if (!FindLineStart(start) || !MoveToFront(start, length)) return false;
    // What is kept is far below 2 GB.
    return SetFilePointer(m_file, static_cast<LONG>(length), nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER &&
           SetEndOfFile(m_file);
}

// Reads a chunk; 0 bytes at the end of the file.
bool LogTrim::ReadAt(ULONGLONG offset, DWORD& bytes) noexcept {
    OVERLAPPED at = FilePlace(offset);
    bytes = 0;
    return offset >= m_size || ReadFile(m_file, m_chunk, sizeof(m_chunk), &bytes, &at);
}

bool LogTrim::FindLineStart(ULONGLONG& start) noexcept {
    DWORD bytes = 0;
    for (start = m_size - m_keep; ReadAt(start, bytes); start += bytes) {
        if (bytes == 0) {
            start = m_size - m_keep;
            return true;
        }
        if (const void* feed = std::memchr(m_chunk, '\n', bytes)) {
            start += static_cast<ULONGLONG>(static_cast<const char*>(feed) - m_chunk) + 1;
            return true;
        }
    }
    return false;
}

bool LogTrim::MoveToFront(ULONGLONG from, ULONGLONG& moved) noexcept {
    DWORD bytes = 0;
    for (moved = 0; ReadAt(from + moved, bytes); moved += bytes) {
        if (bytes == 0) return true;
        OVERLAPPED at = FilePlace(moved);
        DWORD written = 0;
        if (!WriteFile(m_file, m_chunk, bytes, &written, &at) || written != bytes) return false;
    }
    return false;
}

}  // namespace wncom
