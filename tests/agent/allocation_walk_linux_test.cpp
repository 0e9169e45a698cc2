// The N-th allocation of an operation fails, for every N: nothing crashes or leaks, and the agent stays usable.
//
// The program's own malloc takes the C library's place in every module, so it also reaches the platform layer and the
// fakes, which then fail as a component does that runs out of memory.
#include <cerrno>
#include <cstdlib>

#include "tests/agent/AgentOperations.h"

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
namespace {

// Lets one allocation of the calling thread fail while it lives; 0 for none.
class FailingAllocation {
public:
    explicit FailingAllocation(unsigned number) {
        allocations = 0;
        failing = number;
    }
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation() { failing = 0; }

    unsigned Count() const { return allocations; }
};

class AllocationWalkTest : public AgentFixture, public testing::WithParamInterface<Operation> {
protected:
    struct Outcome {
        HRESULT status;
        unsigned allocations;
    };
    Outcome Run(const AllInterfaces& agent, unsigned failingAllocation) const {
        const Bstr text = Text("text");
        Bstr exception;
        Bstr answer;
        const FailingAllocation armed(failingAllocation);
        const HRESULT status = GetParam().call(agent, text.get(), exception.put(), answer.put());
        return {status, armed.Count()};
    }
};

TEST_P(AllocationWalkTest, EveryAllocationMayFail) {
    // A log would make the walk as long as its lines.
    SetRegistryValue(kLoggingKey, nullptr, "file," + m_logPath + ",1");
    const AllInterfaces agent(Agent());
    Prepare();
    ScriptAnswers();
    ASSERT_EQ(Hex(Run(agent, 0).status), Hex(S_OK));
    const std::vector<std::string> calls = Script().CallsOf("FakeTransport");
    const unsigned count = Run(agent, 0).allocations;
    ASSERT_GT(count, 5U);
    const int objects = Script().LiveObjects();

    for (unsigned number = 1; number <= count; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number) + " of " + std::to_string(count));
        Script().ForgetCalls();
        const HRESULT status = Run(agent, number).status;
        EXPECT_THAT(status, testing::AnyOf(S_OK, E_FAIL, E_OUTOFMEMORY)) << Hex(status);
        // Asking the service nothing is a failure; asking it for something else would be a lie.
        EXPECT_THAT(calls, testing::IsSupersetOf(Script().CallsOf("FakeTransport")));
        EXPECT_EQ(Hex(Run(agent, 0).status), Hex(S_OK)) << "and again";
        EXPECT_EQ(Script().LiveObjects(), objects);
    }
}

INSTANTIATE_TEST_SUITE_P(Agent, AllocationWalkTest, testing::ValuesIn(Operations().begin(), Operations().end()),
                         [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace
}  // namespace wncom::test
