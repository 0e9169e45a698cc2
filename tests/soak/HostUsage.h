// What this process holds of its host.
#pragma once

#include <cstddef>

namespace wncom::test {

struct HostUsage {
    std::size_t allocated = 0;  // bytes handed out by the C runtime's heap; 0 where that cannot be told
    std::size_t handles = 0;    // open files and system objects
    std::size_t mappings = 0;   // mapped parts of modules and files; 0 where that cannot be told
};

// Of memory and mappings a sanitizer's heap tells nothing; its own look for leaks does.
HostUsage CurrentUsage();

}  // namespace wncom::test
