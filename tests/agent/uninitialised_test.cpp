// Agents at times and with arguments that nobody foresaw: every method is safe.
#include "tests/agent/AgentOperations.h"

namespace wncom::test {
namespace {

using Answers = std::vector<std::string>;

// Every method of every interface with null for each pointer; the statuses in slot order.
Answers CallEverythingWithNull(const CPComPtr<IWendrel>& agent) {
    CPComPtr<ISessionControl> sessions;
    CPComPtr<IWNInitByParent> init;
    CPComPtr<IJobControl> jobs;
    CPComPtr<IWNXDMAccess> data;
    CPComPtr<IComBaseEvent> events;
    CPComPtr<IWNEventAccess> access;
    for (const HRESULT status :
         {agent.QueryInterface(sessions), agent.QueryInterface(init), agent.QueryInterface(jobs),
          agent.QueryInterface(data), agent.QueryInterface(events), agent.QueryInterface(access)}) {
        EXPECT_EQ(Hex(status), Hex(S_OK));
    }
    return {
        Hex(agent->GetCapabilitiesTicket(nullptr)),
        Hex(agent->SendIntentTicket(nullptr, nullptr)),
        Hex(sessions->StartSession()),
        Hex(sessions->EndSession()),
        Hex(sessions->RestartSession()),
        Hex(init->InitByParent(nullptr, nullptr)),
        Hex(jobs->CancelJobWithMessage(nullptr, nullptr)),
        Hex(jobs->CancelJob(nullptr)),
        Hex(jobs->QueryJobStatus(nullptr, nullptr)),
        Hex(jobs->SubmitJob(nullptr, nullptr)),
        Hex(data->GetData(nullptr, nullptr, nullptr, nullptr)),
        Hex(data->SetData(nullptr, 0, nullptr)),
        Hex(events->Subscribe(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr)),
        Hex(events->Unsubscribe(nullptr, nullptr, nullptr)),
        Hex(events->GetSupportedEvents(nullptr, nullptr, nullptr)),
        Hex(events->GetSubscriptionIDList(nullptr, nullptr, nullptr)),
        Hex(events->GetSubscriptionDetails(nullptr, nullptr, nullptr, nullptr)),
        Hex(events->GetEventProperties(nullptr, nullptr, nullptr, nullptr)),
        Hex(events->GetEventSystemCapabilities(nullptr, nullptr, nullptr)),
        Hex(access->GetEventCapabilities(nullptr, nullptr)),
        Hex(access->SubscribeForEvents(nullptr, nullptr, nullptr)),
        Hex(access->Resubscribe(nullptr, nullptr, nullptr)),
        Hex(access->UnsubscribeForEvents(nullptr, nullptr)),
    };
}

const std::string kOk = Hex(S_OK);
const std::string kFail = Hex(E_FAIL);
const std::string kNotOffered = Hex(E_NOTIMPL);
const std::string kUnexpected = Hex(E_UNEXPECTED);

using NullArgumentsTest = AgentFixture;

TEST_F(NullArgumentsTest, AnAgentThatWasNeverInitialisedAnswersUnexpected) {
    const auto agent = Create<IWendrel>(kProgIdWendrel);
    EXPECT_EQ(CallEverythingWithNull(agent),
              (Answers{kFail,       kFail,       kUnexpected, kUnexpected, kUnexpected, kFail,
                       kFail,       kFail,       kFail,       kUnexpected, kUnexpected, kUnexpected,
                       kUnexpected, kOk,         kUnexpected, kNotOffered, kNotOffered, kUnexpected,
                       kNotOffered, kUnexpected, kUnexpected, kUnexpected, kUnexpected}));
    EXPECT_EQ(Script().CallCount(), 0U);
}

TEST_F(NullArgumentsTest, AnAgentThatWasNeverInitialisedStoresNothingAndCanStillBeInitialised) {
    const auto agent = Create<IWendrel>(kProgIdWendrel);
    const AllInterfaces all(agent);
    ScriptAnswers();
    for (const Operation& operation : Operations()) {
        EXPECT_EQ(Hex(operation.Run(all)), kUnexpected) << operation.name;
    }
    OutText ticket;
    EXPECT_EQ(Hex(agent->GetCapabilitiesTicket(ticket.put())), kUnexpected);
    EXPECT_EQ(ticket.Shown(), "(untouched)");
    EXPECT_EQ(Script().CallCount(), 0U);

    CPComPtr<IWNInitByParent> init;
    ASSERT_EQ(Hex(agent.QueryInterface(init)), kOk);
    const auto transport = Create<ITransportDesc>(kProgIdTransportDesc);
    EXPECT_EQ(Hex(init->InitByParent(Service().get(), transport.get())), kOk);
    for (const Operation& operation : Operations()) EXPECT_EQ(Hex(operation.Run(all)), kOk) << operation.name;
}

TEST_F(NullArgumentsTest, AnInitialisedAgentAnswersEachOperationsOwnFailure) {
    const CPComPtr<IWendrel> agent = Agent();
    Script().Answer("FakeTransport.GetEventCapabilities", "<events/>");
    EXPECT_EQ(
        CallEverythingWithNull(agent),
        (Answers{kFail, kFail, kOk, kOk,         kOk,         kFail, kFail,       kFail, kFail, kFail, kFail, kFail,
                 kFail, kOk,   kOk, kNotOffered, kNotOffered, kOk,   kNotOffered, kOk,   kFail, kFail, kFail}));
}

TEST_F(NullArgumentsTest, TheParentsDispatchRefusesNulls) {
    const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    EXPECT_EQ(Hex(parent->GetTypeInfoCount(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(parent->GetTypeInfo(0, 0x409, nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(parent->GetIDsOfNames(GUID_NULL, nullptr, 1, 0x409, nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(parent->Invoke(1, GUID_NULL, 0x409, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr)),
              Hex(E_POINTER));
    CPComPtr<ITypeInfo> info;
    EXPECT_EQ(Hex(parent->GetTypeInfo(1, 0x409, info.put())), Hex(DISP_E_BADINDEX));
    EXPECT_EQ(Hex(parent->GetTypeInfo(0, 0x409, info.put())), Hex(S_OK));
}

TEST_F(NullArgumentsTest, InitialisationNeedsBothDescriptions) {
    const auto agent = Create<IWNInitByParent>(kProgIdWendrel);
    const auto transport = Create<ITransportDesc>(kProgIdTransportDesc);
    EXPECT_EQ(Hex(agent->InitByParent(Service().get(), nullptr)), Hex(E_FAIL));
    EXPECT_EQ(Hex(agent->InitByParent(nullptr, transport.get())), Hex(E_FAIL));
    // Neither attempt left anything behind: the agent can still be initialised.
    EXPECT_EQ(Hex(agent->InitByParent(Service().get(), transport.get())), Hex(S_OK));
}

}  // namespace
}  // namespace wncom::test
