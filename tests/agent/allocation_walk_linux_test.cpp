// The N-th allocation of an operation fails, for every N: nothing crashes or leaks, and the agent stays usable.
#include <algorithm>
#include <functional>

#include "agent/WNSimpleCache.h"
#include "tests/agent/AgentOperations.h"
#include "tests/support/FailingAllocation.h"

namespace wncom::test {
namespace {

// Every call that was made is one of those.
void ExpectNothingElse(std::vector<std::string> allowed, std::vector<std::string> made) {
    std::sort(allowed.begin(), allowed.end());
    std::sort(made.begin(), made.end());
    EXPECT_TRUE(std::includes(allowed.begin(), allowed.end(), made.begin(), made.end()))
        << testing::PrintToString(made);
}

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
    SetLogLevel(1);
    const AllInterfaces agent(Agent());
    Prepare();
    ScriptAnswers();
    ASSERT_EQ(Hex(Run(agent, 0).status), Hex(S_OK));
    std::vector<std::string> calls = Script().CallsOf("FakeTransport");
    // A library whose path memory was too short for is a failed load, and that releases the library before it.
    calls.push_back("FakeTransport.demaker(null)");
    const unsigned count = Run(agent, 0).allocations;
    ASSERT_GT(count, 5U);
    const int objects = Script().LiveObjects();

    for (unsigned number = 1; number <= count; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number) + " of " + std::to_string(count));
        Script().ForgetCalls();
        const HRESULT status = Run(agent, number).status;
        EXPECT_TRUE(status == S_OK || status == E_FAIL || status == E_OUTOFMEMORY) << Hex(status);
        // Asking the service nothing is a failure; asking it for something else would be a lie.
        ExpectNothingElse(calls, Script().CallsOf("FakeTransport"));
        EXPECT_EQ(Hex(Run(agent, 0).status), Hex(S_OK)) << "and again";
        EXPECT_EQ(Script().LiveObjects(), objects);
    }
}

INSTANTIATE_TEST_SUITE_P(Agent, AllocationWalkTest, testing::ValuesIn(Operations().begin(), Operations().end()),
                         [](const auto& instance) { return std::string(instance.param.name); });

// While it is made an agent connects for the first time, which reads the catalogue and loads the transport library.
TEST_F(AgentFixture, EveryAllocationMayFailWhileAnAgentIsMade) {
    SetLogLevel(1);
    const CPComPtr<IServiceDesc> service = Service();
    const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    CPComPtr<IWendrel> agent;
    const auto create = [&](unsigned failingAllocation) {
        Script().ForgetCalls();
        const FailingAllocation armed(failingAllocation);
        const HRESULT status = parent->CreateWendrel(service.get(), agent.put());
        return std::pair(status, armed.Count());
    };
    const unsigned count = create(0).second;
    const std::vector<std::string> calls = Script().Calls();
    agent.Release();
    const int objects = Script().LiveObjects();
    for (unsigned number = 1; number <= count; ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number) + " of " + std::to_string(count));
        const HRESULT status = create(number).first;
        EXPECT_EQ(SUCCEEDED(status), static_cast<bool>(agent)) << Hex(status);
        ExpectNothingElse(calls, Script().Calls());
        agent.Release();
        EXPECT_EQ(Script().LiveObjects(), objects);
    }
    EXPECT_EQ(Hex(create(0).first), Hex(S_OK)) << "and again";
}

// Under another service's key a client would get that service's ticket.
TEST_F(AgentFixture, EveryAllocationOfACacheOperationMayFailAndNoOtherTicketIsTouched) {
    SetLogLevel(1);
    const Bstr identifier = Text("device-7");
    const std::function<void(_WNSimpleCache&)> operations[] = {
        [&](_WNSimpleCache& cache) { cache.ToCache(identifier.get(), 1, OLESTR("<caps/>")); },
        [&](_WNSimpleCache& cache) { cache.FromCache(identifier.get()); },
        [&](_WNSimpleCache& cache) { cache.RemoveFromCache(identifier.get()); },
    };
    for (const auto& operation : operations) {
        _WNSimpleCache cache;
        const auto run = [&](unsigned failingAllocation) {
            Script().ForgetCalls();
            const FailingAllocation armed(failingAllocation);
            operation(cache);
            return armed.Count();
        };
        const unsigned count = run(0);
        const std::vector<std::string> calls = Script().Calls();
        ASSERT_GT(count, 3U);
        for (unsigned number = 1; number <= count; ++number) {
            run(number);
            SCOPED_TRACE("allocation " + std::to_string(number));
            ExpectNothingElse(calls, Script().Calls());
        }
    }
}

}  // namespace
}  // namespace wncom::test
