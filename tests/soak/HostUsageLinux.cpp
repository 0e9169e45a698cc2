#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/soak/HostUsage.h"

namespace wncom::test {
namespace {

std::size_t ResidentKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        std::size_t kilobytes = 0;
        if (word == "VmRSS:" && status >> kilobytes) return kilobytes;
    }
    return 0;
}

std::size_t Lines(const char* path) {
    std::ifstream file(path);
    return static_cast<std::size_t>(
        std::count(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>(), '\n'));
}

}  // namespace

HostUsage CurrentUsage() {
    HostUsage usage;
    // Large blocks have mappings of their own.
    const struct mallinfo2 heap = mallinfo2();
    usage.allocated = heap.uordblks + heap.hblkhd;
    usage.plainHeap = usage.allocated != 0;
    usage.resident = ResidentKilobytes();
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    usage.handles = static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors)));
    usage.mappings = Lines("/proc/self/maps");
    return usage;
}

}  // namespace wncom::test
