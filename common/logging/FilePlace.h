// Where in a file, and how long a file, in numbers of 64 bits.
#pragma once

#include <windows.h>

namespace wncom {

// For reading and writing at an offset; all bits mean the end.
inline OVERLAPPED FilePlace(ULONGLONG offset) noexcept {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

// In bytes; 0 for what has no size.
inline ULONGLONG FileSize(HANDLE file) noexcept {
    DWORD high = 0;
    SetLastError(ERROR_SUCCESS);
    const DWORD low = GetFileSize(file, &high);
    if (low == INVALID_FILE_SIZE && GetLastError() != ERROR_SUCCESS) return 0;
    return (ULONGLONG{high} << 32) | low;
}

}  // namespace wncom
