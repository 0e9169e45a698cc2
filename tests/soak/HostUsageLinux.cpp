#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/soak/HostUsage.h"

namespace wncom::test {

HostUsage CurrentUsage() {
    HostUsage usage;
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    usage.handles = static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
    // Large blocks have mappings of their own.
    const struct mallinfo2 heap = mallinfo2();
    usage.allocated = heap.uordblks + heap.hblkhd;
    if (usage.allocated == 0) return usage;
    std::ifstream maps("/proc/self/maps");
    usage.mappings = static_cast<std::size_t>(
        std::count(std::istreambuf_iterator<char>(maps), std::istreambuf_iterator<char>(), '\n'));
    return usage;
}

}  // namespace wncom::test
