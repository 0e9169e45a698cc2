// The Windows headers come first: the second relies on the first.
#include <windows.h>

#include <psapi.h>

#include "tests/soak/HostUsage.h"

namespace wncom::test {

HostUsage CurrentUsage() {
    HostUsage usage;
    PROCESS_MEMORY_COUNTERS memory{};
    if (GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof(memory))) {
        usage.resident = memory.WorkingSetSize / 1024;
    }
    DWORD handles = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &handles)) usage.handles = handles;
    return usage;
}

}  // namespace wncom::test
