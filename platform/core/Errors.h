// Windows' error codes for what the host reports.
#pragma once

#include "winbase.h"

namespace wnplatform {

// The system error code for an errno value; ERROR_INVALID_FUNCTION for one without a counterpart.
DWORD ErrorFromErrno(int error) noexcept;

// Sets the thread's last error and answers FALSE, for the failing branch of a function that returns BOOL.
inline BOOL Fail(DWORD code) noexcept {
    SetLastError(code);
    return FALSE;
}

}  // namespace wnplatform
