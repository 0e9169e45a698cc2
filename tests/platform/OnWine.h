// The few corners in which Wine is not like the system that it stands in for.
#pragma once

#include <windows.h>

namespace wncom::test {

// Whether the host is Wine; the last error stays. Ask only where Windows promises more than Wine keeps, and say there
// what Wine does instead.
inline bool OnWine() {
    const DWORD error = GetLastError();
    HMODULE system = nullptr;
    const bool found =
        GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT, "ntdll.dll", &system) != FALSE &&
        GetProcAddress(system, "wine_get_version") != nullptr;
    SetLastError(error);
    return found;
}

}  // namespace wncom::test
