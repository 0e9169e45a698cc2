// The N-th outside call on the road of a submission fails, for every N and every kind of failure: nothing leaks, and
// the agent stays usable.
#include "tests/agent/AgentFixture.h"

namespace wncom::test {
namespace {

struct Kind {
    const char* name;
    Misbehaviour misbehaviour;
};

const Kind kKinds[] = {
    {"a failing status", {Fault::Status, E_ABORT}},
    {"nothing", {Fault::Null}},
    {"a common-layer exception", {Fault::CommonException}},
    {"out of memory", {Fault::OutOfMemory}},
    {"a foreign exception", {Fault::Integer}},
};

class FaultWalkTest : public AgentFixture {
protected:
    // Makes an agent and submits; the status of the step that failed, and the agent if there was one.
    HRESULT Road(const CPComPtr<IServiceDesc>& service, CPComPtr<IWendrel>& agent) {
        const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
        const HRESULT status = parent->CreateWendrel(service.get(), agent.put());
        // A creation that succeeds with nothing is passed on as it is: no agent, and no failure either.
        if (FAILED(status) || !agent) return status;
        CPComPtr<IUnknown> answer;
        return agent->SendIntentTicket(Text("<t/>").get(), answer.put());
    }
};

TEST_F(FaultWalkTest, EveryOutsideCallMayFailInEveryWay) {
    const CPComPtr<IServiceDesc> service = Service();
    Prepare();
    unsigned calls = 0;
    {
        CPComPtr<IWendrel> agent;
        ASSERT_EQ(Hex(Road(service, agent)), Hex(S_OK));
        calls = Script().CallCount();
    }
    ASSERT_GT(calls, 40U) << "the walk must cover the whole road";
    const int objects = Script().LiveObjects();

    for (const Kind& kind : kKinds) {
        for (unsigned number = 1; number <= calls; ++number) {
            SCOPED_TRACE(std::string(kind.name) + " at call " + std::to_string(number));
            Prepare();
            Script().FailAtCall(number, kind.misbehaviour);
            CPComPtr<IWendrel> agent;
            const HRESULT status = Road(service, agent);
            const std::vector<std::string> made = Script().Calls();
            ASSERT_GE(made.size(), number);
            SCOPED_TRACE(made[number - 1] + " gave " + Hex(status));
            EXPECT_THAT(status, testing::AnyOf(S_OK, E_FAIL, E_ABORT, E_OUTOFMEMORY, E_UNEXPECTED));
            if (agent) {
                // Usable: it submits again, unless its factory could not read the catalogue, which is for good.
                const std::string& failed = made[number - 1];
                const bool catalogueLost = failed.starts_with("XMLSimpleAccessor.");
                CPComPtr<IUnknown> answer;
                const HRESULT again = agent->SendIntentTicket(Text("<t/>").get(), answer.put());
                EXPECT_TRUE(catalogueLost || again == S_OK) << Hex(again);
            }
            agent.Release();
            EXPECT_EQ(Script().LiveObjects(), objects);
            EXPECT_EQ(Hex(CanUnload()), Hex(S_OK));
        }
    }
}

}  // namespace
}  // namespace wncom::test
