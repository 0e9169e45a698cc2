// Sessions: each start and end reads the address and connects afresh.
#include "tests/agent/AgentFixture.h"

namespace wncom::test {
namespace {

using testing::Contains;
using testing::ElementsAre;

class SessionsTest : public AgentFixture {
protected:
    SessionsTest() { Script().Answer("FakeTransport.SubmitJob", kResponse); }

    CPComPtr<ISessionControl> m_sessions = Agent<ISessionControl>();
};

TEST_F(SessionsTest, AStartMakesAFreshObjectAndHandsTheSessionOn) {
    Prepare();
    EXPECT_EQ(Hex(m_sessions->StartSession()), Hex(S_OK));
    EXPECT_THAT(Script().CallsOf("FakeTransport"),
                ElementsAre("FakeTransport.demaker(object)", "FakeTransport.maker()",
                            testing::StartsWith("FakeTransport.Initialize(http://device/service"),
                            "FakeTransport.StartSession()"));
    EXPECT_THAT(Script().CallsOf("TransportDesc"), ElementsAre("TransportDesc.SetSessionContext(session-1)"));
    // The line has no end of its own, so the logger gives it one.
    EXPECT_THAT(Log(), Contains("3 szWc is session-1n"));
}

TEST_F(SessionsTest, AnEmptySessionIsHandedOnAsAnEmptyText) {
    Prepare();
    Script().Answer("FakeTransport.StartSession", "");
    EXPECT_EQ(Hex(m_sessions->StartSession()), Hex(S_OK));
    EXPECT_THAT(Script().CallsOf("TransportDesc"), ElementsAre("TransportDesc.SetSessionContext()"));
}

TEST_F(SessionsTest, ARestartClearsTheContextFirst) {
    Prepare();
    EXPECT_EQ(Hex(m_sessions->RestartSession()), Hex(S_OK));
    EXPECT_THAT(Script().CallsOf("TransportDesc"),
                ElementsAre("TransportDesc.SetSessionContext()", "TransportDesc.SetSessionContext(session-1)"));
}

TEST_F(SessionsTest, AnEndGoesToAFreshObjectToo) {
    Prepare();
    EXPECT_EQ(Hex(m_sessions->EndSession()), Hex(S_OK));
    const std::vector<std::string> calls = Script().CallsOf("FakeTransport");
    ASSERT_FALSE(calls.empty());
    EXPECT_EQ(calls.front(), "FakeTransport.demaker(object)");
    EXPECT_EQ(calls.back(), "FakeTransport.EndSession()");
}

TEST_F(SessionsTest, TheAddressesStatusIsTheAnswer) {
    struct Case {
        Misbehaviour misbehaviour;
        HRESULT status;
    };
    for (const Case& wrong : {Case{{Fault::Status, E_ACCESSDENIED}, E_ACCESSDENIED}, Case{{Fault::Null}, S_OK}}) {
        const std::string shown = Hex(wrong.status).substr(2);
        Prepare();
        Script().FailIn("ServiceDesc.GetAddress", wrong.misbehaviour);
        EXPECT_EQ(Hex(m_sessions->StartSession()), Hex(wrong.status));
        EXPECT_THAT(Script().CallsOf("FakeTransport"), testing::IsEmpty());
        EXPECT_THAT(Log(), Contains(testing::StrCaseEq("1 failed StartSession SD->GetAddress()==" + shown)));
        EXPECT_EQ(Hex(m_sessions->EndSession()), Hex(wrong.status));
        EXPECT_THAT(Log(), Contains(testing::StrCaseEq("1 failed SD->GetAddress()==" + shown)));
    }
}

TEST_F(SessionsTest, ARefusedSessionContextIsNoFailure) {
    Prepare();
    Script().FailIn("TransportDesc.SetSessionContext", {Fault::Status, E_FAIL});
    EXPECT_EQ(Hex(m_sessions->StartSession()), Hex(S_OK));
}

TEST_F(SessionsTest, ASecondInitialisationChangesNothing) {
    CPComPtr<IWNInitByParent> init;
    ASSERT_EQ(Hex(m_sessions.QueryInterface(init)), Hex(S_OK));
    const auto other = Create<ITransportDesc>(kProgIdTransportDesc);
    EXPECT_EQ(Hex(init->InitByParent(Service().get(), other.get())), Hex(E_UNEXPECTED));
    EXPECT_EQ(Hex(m_sessions->StartSession()), Hex(S_OK));
}

}  // namespace
}  // namespace wncom::test
