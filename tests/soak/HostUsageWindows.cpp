#include <windows.h>

#include "tests/soak/HostUsage.h"

namespace wncom::test {

HostUsage CurrentUsage() {
    HostUsage usage;
    DWORD handles = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &handles)) usage.handles = handles;
    return usage;
}

}  // namespace wncom::test
