#include "common/logging/LogTrim.h"

#include <cstring>

namespace wncom {
namespace {

DWORD Low(ULONGLONG value) noexcept { return static_cast<DWORD>(value); }
DWORD High(ULONGLONG value) noexcept { return static_cast<DWORD>(value >> 32); }

OVERLAPPED At(ULONGLONG offset) noexcept {
    OVERLAPPED at{};
    at.Offset = Low(offset);
    at.OffsetHigh = High(offset);
    return at;
}

}  // namespace

LogTrim::LogTrim(HANDLE file, DWORD keepBytes) noexcept : m_file(file), m_keep(keepBytes) {
    DWORD high = 0;
    SetLastError(ERROR_SUCCESS);
    const DWORD low = GetFileSize(file, &high);
    if (low == INVALID_FILE_SIZE && GetLastError() != ERROR_SUCCESS) return;
    m_size = (static_cast<ULONGLONG>(high) << 32) | low;
    m_locked = m_size > m_keep && LockFile(file, 0, 0, low, high);
}

LogTrim::~LogTrim() {
    if (m_locked) UnlockFile(m_file, 0, 0, Low(m_size), High(m_size));
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
    OVERLAPPED at = At(offset);
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
        OVERLAPPED at = At(moved);
        DWORD written = 0;
        if (!WriteFile(m_file, m_chunk, bytes, &written, &at) || written != bytes) return false;
    }
    return false;
}

}  // namespace wncom
