// Job submission from the client's side: what goes out, what comes back, and every documented failure.
#include "tests/agent/AgentFixture.h"

namespace wncom::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class SubmitTest : public AgentFixture {
protected:
    SubmitTest() : m_agent(Agent()) {
        EXPECT_EQ(Hex(m_agent.QueryInterface(m_jobs)), Hex(S_OK));
        Prepare();
    }

    HRESULT Send(const char* ticket = "<ticket/>") {
        return m_agent->SendIntentTicket(Text(ticket).get(), m_answer.put());
    }

    CPComPtr<IWendrel> m_agent;
    CPComPtr<IJobControl> m_jobs;
    CPComPtr<IUnknown> m_answer;
};

TEST_F(SubmitTest, TheTransportDescriptionCarriesBothAddresses) {
    ASSERT_EQ(Hex(Send()), Hex(S_OK));
    EXPECT_THAT(Script().CallsOf("FakeTransport.SubmitJob"), ElementsAre("FakeTransport.SubmitJob(<ticket/>, 1)"));
    EXPECT_THAT(Script().CallsOf("TransportDesc"),
                ElementsAre("TransportDesc.SetSessionContext(session-1)",
                            "TransportDesc.SetTargetURI(http://device/data/7, 0, 0, 1)",
                            "TransportDesc.SetJobURI(http://device/job/7)"));
    CPComPtr<ITransportDesc> transport;
    EXPECT_EQ(Hex(m_answer.QueryInterface(transport)), Hex(S_OK));
    EXPECT_THAT(Log(),
                testing::IsSupersetOf({"3 OrbStuff::Establishing SubmitJob connection to http://device/service",
                                       "3 calling SubmitJob on mJobControl", "3 Set Type='0'", "3 Set Meth='1'"}));
}

TEST_F(SubmitTest, EverySubmissionSharesTheAgentsOneTransportDescription) {
    ASSERT_EQ(Hex(Send()), Hex(S_OK));
    const CPComPtr<IUnknown> first = m_answer;
    ASSERT_EQ(Hex(Send()), Hex(S_OK));
    EXPECT_EQ(first.get(), m_answer.get());
}

TEST_F(SubmitTest, TheResponseTicketIsGivenToWhoeverAsks) {
    Bstr response;
    EXPECT_EQ(Hex(m_jobs->SubmitJob(Text("<ticket/>").get(), response.put())), Hex(S_OK));
    EXPECT_EQ(Narrow(response.get()), kResponse);
    EXPECT_EQ(Hex(m_jobs->SubmitJob(Text("<ticket/>").get(), nullptr)), Hex(S_OK));
    EXPECT_EQ(Script().CallsOf("TransportDesc.SetTargetURI").size(), 2U);
}

TEST_F(SubmitTest, AResponseWithoutAddressesStillSucceeds) {
    Script().Answer("FakeTransport.SubmitJob", "<R/>");
    EXPECT_EQ(Hex(Send()), Hex(S_OK));
    EXPECT_THAT(Script().CallsOf("TransportDesc.SetTargetURI"),
                ElementsAre("TransportDesc.SetTargetURI(, 0, -1, -1)"));
    EXPECT_THAT(Script().CallsOf("TransportDesc.SetJobURI"), ElementsAre("TransportDesc.SetJobURI()"));
    EXPECT_THAT(Log(), Contains("1   ParseSubmitResponse did not find URI"));
}

TEST_F(SubmitTest, ANullTicketIsRefusedByTheBridge) {
    EXPECT_EQ(Hex(m_agent->SendIntentTicket(nullptr, m_answer.put())), Hex(E_FAIL));
    EXPECT_FALSE(m_answer);
    EXPECT_THAT(Log(), testing::IsSupersetOf(
                           {"1 Orb.SubmitJob failed with -12 length ticket", "1 failed SubmitJob()==80004005"}));
    EXPECT_EQ(Hex(m_agent->SendIntentTicket(Text("<t/>").get(), nullptr)), Hex(E_FAIL));
    EXPECT_THAT(Log(), Contains("3 CWendrel::SendIntentTicket Parameter \"ppITransportDesc\" is NULL!"));
}

TEST_F(SubmitTest, AnEmptyOrFailedRemoteAnswerIsAFailure) {
    for (const Misbehaviour& wrong : {Misbehaviour{Fault::Null}, Misbehaviour{Fault::CommonException},
                                      Misbehaviour{Fault::OutOfMemory}, Misbehaviour{Fault::Integer}}) {
        Prepare();
        Script().FailIn("FakeTransport.SubmitJob", wrong);
        Bstr response = Text("stale");
        BSTR* place = response.put();
        EXPECT_EQ(Hex(m_jobs->SubmitJob(Text("<t/>").get(), place)), Hex(E_FAIL));
        EXPECT_EQ(*place, nullptr);
        EXPECT_THAT(Script().CallsOf("TransportDesc.SetTargetURI"), IsEmpty());
        EXPECT_THAT(Log(), Contains("1 Orb.SubmitJob failed with 0 length ticket"));
    }
    Prepare();
    EXPECT_EQ(Hex(Send()), Hex(S_OK));
}

TEST_F(SubmitTest, ARefusedAddressIsTheAnswer) {
    Script().FailIn("TransportDesc.SetTargetURI", {Fault::Status, E_ACCESSDENIED});
    EXPECT_EQ(Hex(Send()), Hex(E_ACCESSDENIED));
    EXPECT_THAT(Script().CallsOf("TransportDesc.SetJobURI"), IsEmpty());
    Prepare();
    Script().FailIn("TransportDesc.SetJobURI", {Fault::Status, E_INVALIDARG});
    EXPECT_EQ(Hex(Send()), Hex(E_INVALIDARG));
}

TEST_F(SubmitTest, AFailedSessionStartSubmitsNothing) {
    Script().FailIn("ServiceDesc.GetAddress", {Fault::Status, E_ABORT});
    EXPECT_EQ(Hex(Send()), Hex(E_ABORT));
    EXPECT_THAT(Script().CallsOf("FakeTransport.SubmitJob"), IsEmpty());
}

TEST_F(SubmitTest, CancellingAndQueryingAreNotProvided) {
    Bstr ticket = Text("stale");
    BSTR* place = ticket.put();
    EXPECT_EQ(Hex(m_jobs->CancelJob(Text("job").get())), Hex(E_FAIL));
    EXPECT_EQ(Hex(m_jobs->CancelJobWithMessage(nullptr, nullptr)), Hex(E_FAIL));
    EXPECT_EQ(Hex(m_jobs->QueryJobStatus(Text("job").get(), place)), Hex(E_FAIL));
    EXPECT_EQ(*place, nullptr);
    EXPECT_EQ(Script().CallCount(), 0U);
}

TEST_F(SubmitTest, AFactoryWithoutACatalogueStaysWithoutLibrariesAndANewAgentWorks) {
    m_answer.Release();
    m_jobs.Release();
    m_agent.Release();
    Script().FailIn("XMLSimpleAccessor.LoadXML", {Fault::Status, E_FAIL}, 1);
    m_agent = Agent();
    EXPECT_EQ(Hex(Send()), Hex(E_FAIL));
    EXPECT_EQ(Hex(Send()), Hex(E_FAIL));
    EXPECT_EQ(Script().CallsOf("XMLSimpleAccessor.LoadXML").size(), 1U);
    m_agent = Agent();
    EXPECT_EQ(Hex(Send()), Hex(S_OK));
}

}  // namespace
}  // namespace wncom::test
