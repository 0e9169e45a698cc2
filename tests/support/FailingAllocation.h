// Running out of memory at a chosen allocation. Only for programs that compile FailingAllocation.cpp into themselves.
#pragma once

namespace wncom::test {

// Lets one allocation of the calling thread fail while it lives; 0 for none.
class FailingAllocation {
public:
    explicit FailingAllocation(unsigned number) noexcept;
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    // The thread's allocations since then.
    unsigned Count() const noexcept;
};

}  // namespace wncom::test
