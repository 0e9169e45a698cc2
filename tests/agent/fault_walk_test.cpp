// The N-th outside call of an operation fails, for every N and every kind of failure: the status is the documented
// one, nothing leaks, and the agent stays usable.
#include <algorithm>

#include "tests/agent/AgentOperations.h"

namespace wncom::test {
namespace {

struct Kind {
    const char* name;
    Misbehaviour misbehaviour;
    // What an agent makes of an exception that reaches it; a success where none is thrown.
    HRESULT translated = S_OK;

    bool Thrown() const { return FAILED(translated); }
};

const Kind kKinds[] = {
    {"a failing status", {Fault::Status, E_ABORT}},
    {"nothing", {Fault::Null}},
    {"a common-layer exception", {Fault::CommonException}, E_UNEXPECTED},
    {"out of memory", {Fault::OutOfMemory}, E_OUTOFMEMORY},
    {"a foreign exception", {Fault::Integer}, E_UNEXPECTED},
};

// What the failure of a call makes of the operation.
enum class Effect {
    None,          // worked around
    IfThrown,      // a status is worked around, an exception ends the operation
    Passed,        // its status is the operation's; success with nothing is a success
    Refused,       // E_FAIL
    NotConnected,  // there is no remote object to go on with
    NotConnectedIfThrown,
    NotConnectedUnlessEmpty,  // success with nothing is enough
};

struct Rule {
    const char* call;  // the beginning of the call as the script shows it
    Effect effect;
    unsigned occurrence = 0;  // 0: each
};

// The first match counts.
constexpr Rule kOperationRules[] = {
    {"ServiceDesc.GetAddress(", Effect::Passed},
    {"TransportDesc.SetSessionContext(", Effect::IfThrown},
    {"TransportDesc.SetTargetURI(", Effect::Passed},
    {"TransportDesc.SetJobURI(", Effect::Passed},
    // The first port map shows that there is one at all. What goes wrong later gives an empty answer, but an
    // exception is caught by the walk along the services only.
    {"PortMap.create(", Effect::NotConnected, 1},
    {"PortMap.create(", Effect::None, 2},
    {"DeviceContent.create(", Effect::None},
    {"ServiceList.create(", Effect::None},
    {"ServiceContent.create(", Effect::None},
    {"ServiceContent.put_ServiceAddress(", Effect::NotConnectedIfThrown},
    {"ServiceList.Add(", Effect::NotConnectedIfThrown},
    {"DeviceContent.put_ServiceList(", Effect::NotConnectedIfThrown},
    {"PortMap.GetMatchingDevices(", Effect::NotConnectedIfThrown},
    {"DeviceList.First(", Effect::NotConnectedIfThrown},
    {"Device.get_ServiceList(", Effect::NotConnectedIfThrown},
    {"DeviceServices.QueryInterface(", Effect::NotConnectedIfThrown},
    {"DeviceServices.First(", Effect::None},
    {"DeviceServices.Next(", Effect::None},
    {"Service.get_ServiceAddress(", Effect::None},
    {"Service.get_TransportInfo(", Effect::None},
    {"FakeTransport.demaker(", Effect::None},
    {"FakeTransport.maker(", Effect::NotConnected},
    {"FakeTransport.Initialize(", Effect::None},
    {"FakeTransport.StartSession(", Effect::None},
    // The operation's own remote call: as if there were no remote object.
    {"FakeTransport.", Effect::NotConnected},
};

// While an agent is made, only the descriptions count: how the connection went shows in its operations.
constexpr Rule kCreationRules[] = {
    {"TransportDesc.create(", Effect::Passed},
    {"ServiceDesc.GetID(", Effect::Refused},
    {"ServiceDesc.GetAddress(", Effect::Refused, 1},
    {"ServiceDesc.GetAddress(", Effect::Passed, 2},
    {"", Effect::None},
};

// A factory reads its catalogue once, so what it missed is lost for the agent's first submission too.
constexpr Rule kFirstSubmissionRules[] = {
    {"XMLSimpleAccessor.SetDelimiter(", Effect::NotConnectedUnlessEmpty},
    {"XMLSimpleAccessor.LoadXML(", Effect::NotConnectedUnlessEmpty},
    {"XMLSimpleAccessor.GetXML(./path,", Effect::NotConnectedUnlessEmpty},
    {"XMLSimpleAccessor.GetXML(./transportdlls/jobcontrol/dll[2]/type,", Effect::None},
    {"XMLSimpleAccessor.", Effect::NotConnected},
    {"", Effect::None},
};

// The effect of the failure of the last of these calls.
template <std::size_t count>
Effect EffectOf(const Rule (&rules)[count], const std::vector<std::string>& calls) {
    for (const Rule& rule : rules) {
        const auto matches = [&](const std::string& call) { return call.starts_with(rule.call); };
        const auto occurrence = static_cast<unsigned>(std::count_if(calls.begin(), calls.end(), matches));
        if (matches(calls.back()) && (rule.occurrence == 0 || rule.occurrence == occurrence)) return rule.effect;
    }
    ADD_FAILURE() << "no rule for " << calls.back();
    return Effect::None;
}

HRESULT Expected(Effect effect, const Kind& kind, HRESULT notConnected) {
    switch (effect) {
        case Effect::None:
            return S_OK;
        case Effect::IfThrown:
            return kind.translated;
        case Effect::Passed:
            return kind.Thrown() ? kind.translated : kind.misbehaviour.status;
        case Effect::Refused:
            return kind.Thrown() ? kind.translated : E_FAIL;
        case Effect::NotConnected:
            return notConnected;
        case Effect::NotConnectedIfThrown:
            return kind.Thrown() ? notConnected : S_OK;
        case Effect::NotConnectedUnlessEmpty:
            return kind.misbehaviour.fault == Fault::Null ? S_OK : notConnected;
    }
    return S_OK;
}

// The calls up to the one with that number.
std::vector<std::string> FirstCalls(unsigned number) {
    std::vector<std::string> calls = Script().Calls();
    EXPECT_GE(calls.size(), number) << "the planned call was never made";
    calls.resize(number);
    return calls;
}

using FaultWalkTest = AgentFixture;

class OperationFaultWalkTest : public FaultWalkTest, public testing::WithParamInterface<Operation> {
protected:
    void PrepareAnswers() {
        Prepare();
        ScriptAnswers();
    }
    // A missing address is no reason not to subscribe.
    static Effect EffectHere(const std::vector<std::string>& calls) {
        if (std::string(GetParam().name) == "Subscribe" && calls.back().starts_with("ServiceDesc.GetAddress(")) {
            return Effect::IfThrown;
        }
        return EffectOf(kOperationRules, calls);
    }
};

TEST_P(OperationFaultWalkTest, EveryOutsideCallMayFailInEveryWay) {
    const AllInterfaces agent(Agent());
    PrepareAnswers();
    ASSERT_EQ(Hex(GetParam().Run(agent)), Hex(S_OK));
    const unsigned calls = Script().CallCount();
    const int objects = Script().LiveObjects();

    for (const Kind& kind : kKinds) {
        for (unsigned number = 1; number <= calls; ++number) {
            PrepareAnswers();
            Script().FailAtCall(number, kind.misbehaviour);
            const HRESULT status = GetParam().Run(agent);
            const std::vector<std::string> made = FirstCalls(number);
            SCOPED_TRACE(std::string(kind.name) + " at call " + std::to_string(number) + ", " + made.back());
            EXPECT_EQ(Hex(status), Hex(Expected(EffectHere(made), kind, GetParam().notConnected)));

            PrepareAnswers();
            EXPECT_EQ(Hex(GetParam().Run(agent)), Hex(S_OK)) << "and again";
            EXPECT_EQ(Script().LiveObjects(), objects);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Agent, OperationFaultWalkTest, testing::ValuesIn(Operations().begin(), Operations().end()),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_F(FaultWalkTest, EveryOutsideCallMayFailWhileAnAgentIsMade) {
    const CPComPtr<IServiceDesc> service = Service();
    const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    Prepare();
    CPComPtr<IWendrel> agent;
    ASSERT_EQ(Hex(parent->CreateWendrel(service.get(), agent.put())), Hex(S_OK));
    const unsigned calls = Script().CallCount();
    ASSERT_GT(calls, 25U) << "the walk must cover all calls";
    agent.Release();
    const int objects = Script().LiveObjects();

    for (const Kind& kind : kKinds) {
        for (unsigned number = 1; number <= calls; ++number) {
            Prepare();
            Script().FailAtCall(number, kind.misbehaviour);
            const HRESULT status = parent->CreateWendrel(service.get(), agent.put());
            const std::vector<std::string> made = FirstCalls(number);
            const bool noTransport = made.back().starts_with("TransportDesc.create(");
            SCOPED_TRACE(std::string(kind.name) + " at call " + std::to_string(number) + ", " + made.back());
            EXPECT_EQ(Hex(status), Hex(Expected(EffectOf(kCreationRules, made), kind, S_OK)));
            // A creation that succeeds with nothing is passed on as it is: no agent, and no failure either.
            EXPECT_EQ(static_cast<bool>(agent), SUCCEEDED(status) && !noTransport);

            if (agent) {
                EXPECT_EQ(Hex(Submit(agent)), Hex(Expected(EffectOf(kFirstSubmissionRules, made), kind, E_FAIL)));
            }
            agent.Release();
            EXPECT_EQ(Script().LiveObjects(), objects);
        }
    }
}

}  // namespace
}  // namespace wncom::test
