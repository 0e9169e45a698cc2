// The program's own malloc takes the C library's place in every module, so it also reaches the platform layer and the
// fakes, which then fail as a component does that runs out of memory.
#include "tests/support/FailingAllocation.h"

#include <cerrno>
#include <cstdlib>

extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* memory, std::size_t size);

namespace {

thread_local unsigned allocations = 0;
thread_local unsigned failing = 0;  // 0: none

bool Refused() noexcept {
    if (++allocations != failing) return false;
    errno = ENOMEM;
    return true;
}

}  // namespace

#define EXPORTED extern "C" __attribute__((visibility("default")))
EXPORTED void* malloc(std::size_t size) noexcept { return Refused() ? nullptr : __libc_malloc(size); }
EXPORTED void* calloc(std::size_t count, std::size_t size) noexcept {
    return Refused() ? nullptr : __libc_calloc(count, size);
}
EXPORTED void* realloc(void* memory, std::size_t size) noexcept {
    return Refused() ? nullptr : __libc_realloc(memory, size);
}

namespace wncom::test {

FailingAllocation::FailingAllocation(unsigned number) noexcept {
    allocations = 0;
    failing = number;
}

FailingAllocation::~FailingAllocation() { failing = 0; }

unsigned FailingAllocation::Count() const noexcept { return allocations; }

}  // namespace wncom::test
