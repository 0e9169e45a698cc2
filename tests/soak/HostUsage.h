// What this process holds of its host.
#pragma once

#include <cstddef>

namespace wncom::test {

struct HostUsage {
    std::size_t allocated = 0;  // bytes handed out by the C runtime's heap; 0 where that cannot be told
    std::size_t resident = 0;   // KB of memory in use
    std::size_t handles = 0;    // open files and system objects
    std::size_t mappings = 0;   // mapped parts of modules and files; 0 where that cannot be told
    // False under a sanitizer, whose heap keeps what was freed and maps memory as it likes: memory and mappings then
    // tell nothing of the program.
    bool plainHeap = true;
};

HostUsage CurrentUsage();

}  // namespace wncom::test
