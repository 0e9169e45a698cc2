// Events by tickets from the client's side: capabilities, subscription, renewal and cancellation.
#include <functional>

#include "tests/agent/AgentFixture.h"

namespace wncom::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class EventTicketsTest : public AgentFixture {
protected:
    EventTicketsTest() { Prepare(); }

    const CPComPtr<IWNEventAccess> m_events = Agent<IWNEventAccess>();
    OutText m_exception;
    OutText m_ticket;
};

TEST_F(EventTicketsTest, CapabilitiesComeWithTheExceptionText) {
    Script().Answer("FakeTransport.GetEventCapabilities", "<events/>");
    Script().Answer("FakeTransport.GetEventCapabilities.slot", "a warning");
    EXPECT_EQ(Hex(m_events->GetEventCapabilities(m_exception.put(), m_ticket.put())), Hex(S_OK));
    EXPECT_EQ(m_ticket.Shown(), "<events/>");
    EXPECT_EQ(m_exception.Shown(), "a warning");
    EXPECT_EQ(Script().CallsOf("FakeTransport.StartSession").size(), 1U);
    EXPECT_EQ(Hex(m_events->GetEventCapabilities(nullptr, nullptr)), Hex(S_OK));
}

TEST_F(EventTicketsTest, MissingCapabilitiesAreAFailure) {
    Script().Answer("FakeTransport.GetEventCapabilities.slot", "no events here");
    Script().FailIn("FakeTransport.GetEventCapabilities", {Fault::Integer});
    EXPECT_EQ(Hex(m_events->GetEventCapabilities(m_exception.put(), m_ticket.put())), Hex(E_FAIL));
    EXPECT_EQ(m_ticket.Shown(), "(null)");
    EXPECT_EQ(m_exception.Shown(), "no events here");
    EXPECT_THAT(Log(), Contains("1 Orb.GetEventCapabilities failed with 0 length ticket"));
}

TEST_F(EventTicketsTest, ASubscriptionTicketIsAnsweredWithAResultTicket) {
    Script().Answer("FakeTransport.SubscribeForEvents", "<subscribed/>");
    Script().Answer("FakeTransport.SubscribeForEvents.slot", "a warning");
    EXPECT_EQ(Hex(m_events->SubscribeForEvents(Text("<s/>").get(), m_exception.put(), m_ticket.put())), Hex(S_OK));
    EXPECT_EQ(m_ticket.Shown(), "<subscribed/>");
    EXPECT_EQ(m_exception.Shown(), "a warning");
    EXPECT_EQ(Hex(m_events->SubscribeForEvents(Text("<s/>").get(), nullptr, nullptr)), Hex(S_OK));
    EXPECT_THAT(Script().CallsOf("FakeTransport.SubscribeForEvents"),
                ElementsAre("FakeTransport.SubscribeForEvents(<s/>)", "FakeTransport.SubscribeForEvents(<s/>)"));
}

TEST_F(EventTicketsTest, ASubscriptionWithoutTicketOrAnswerIsAFailure) {
    EXPECT_EQ(Hex(m_events->SubscribeForEvents(nullptr, m_exception.put(), m_ticket.put())), Hex(E_FAIL));
    EXPECT_EQ(Hex(m_events->SubscribeForEvents(Text("").get(), m_exception.put(), m_ticket.put())), Hex(E_FAIL));
    EXPECT_THAT(Script().CallsOf("FakeTransport.SubscribeForEvents"), IsEmpty());
    EXPECT_THAT(Log(), Contains("1 SubEvents called with NULL event subscription ticket!"));
    EXPECT_EQ(Hex(m_events->SubscribeForEvents(Text("<s/>").get(), m_exception.put(), m_ticket.put())), Hex(E_FAIL));
    EXPECT_EQ(m_ticket.Shown(), "(null)");
    EXPECT_EQ(m_exception.Shown(), "(null)");
    EXPECT_THAT(Log(), Contains("1 Orb.SubscribeForEvents failed with 0 length ticket"));
}

// What a ticket says is the device's matter.
TEST_F(EventTicketsTest, TicketsThatAreEnormousOrNoXmlGoThroughWhole) {
    for (const std::string& ticket : {std::string("no XML <"), std::string(10'000'000, 'x')}) {
        Prepare();
        Script().Answer("FakeTransport.SubscribeForEvents", ticket);
        OutText exception;
        OutText answer;
        EXPECT_EQ(Hex(m_events->SubscribeForEvents(Text(ticket.c_str()).get(), exception.put(), answer.put())),
                  Hex(S_OK));
        EXPECT_TRUE(answer.Shown() == ticket) << ticket.size();
        EXPECT_TRUE(Script().CallsOf("FakeTransport.SubscribeForEvents").back() ==
                    "FakeTransport.SubscribeForEvents(" + ticket + ")")
            << ticket.size();
    }
}

TEST_F(EventTicketsTest, ASubscriptionIsRenewedForADuration) {
    Script().AnswerFlag("FakeTransport.Resubscribe", true);
    Script().Answer("FakeTransport.Resubscribe.slot", "shortened");
    EXPECT_EQ(Hex(m_events->Resubscribe(Text("sub-1").get(), Text("PT1H").get(), m_exception.put())), Hex(S_OK));
    EXPECT_EQ(m_exception.Shown(), "shortened");
    EXPECT_EQ(Hex(m_events->Resubscribe(Text("sub-1").get(), nullptr, nullptr)), Hex(S_OK));
    EXPECT_THAT(Script().CallsOf("FakeTransport.Resubscribe"),
                ElementsAre("FakeTransport.Resubscribe(sub-1, PT1H)", "FakeTransport.Resubscribe(sub-1, )"));
}

TEST_F(EventTicketsTest, ARefusedRenewalKeepsTheExceptionText) {
    Script().Answer("FakeTransport.Resubscribe.slot", "unknown");
    EXPECT_EQ(Hex(m_events->Resubscribe(Text("sub-1").get(), nullptr, m_exception.put())), Hex(E_FAIL));
    EXPECT_EQ(m_exception.Shown(), "unknown");
    EXPECT_THAT(Log(), Contains("1 Orb.Resubscribe returned false"));
    OutText exception;
    EXPECT_EQ(Hex(m_events->Resubscribe(nullptr, nullptr, exception.put())), Hex(E_FAIL));
    EXPECT_EQ(exception.Shown(), "(null)");
    EXPECT_THAT(Log(), Contains("1 SubEvents called with NULL subscription ID!"));
}

TEST_F(EventTicketsTest, ASubscriptionIsCancelled) {
    Script().AnswerFlag("FakeTransport.UnsubscribeForEvents", true);
    EXPECT_EQ(Hex(m_events->UnsubscribeForEvents(Text("sub-1").get(), m_exception.put())), Hex(S_OK));
    EXPECT_EQ(m_exception.Shown(), "(null)");
    EXPECT_THAT(Script().CallsOf("FakeTransport.UnsubscribeForEvents"),
                ElementsAre("FakeTransport.UnsubscribeForEvents(sub-1)"));
}

TEST_F(EventTicketsTest, ARefusedCancellationKeepsTheExceptionText) {
    Script().Answer("FakeTransport.UnsubscribeForEvents.slot", "unknown");
    EXPECT_EQ(Hex(m_events->UnsubscribeForEvents(Text("sub-1").get(), m_exception.put())), Hex(E_FAIL));
    EXPECT_EQ(m_exception.Shown(), "unknown");
    EXPECT_THAT(Log(), Contains("1 Orb.UnsubscribeForEvents returned false"));
    EXPECT_EQ(Hex(m_events->UnsubscribeForEvents(Text("").get(), nullptr)), Hex(E_FAIL));
    EXPECT_THAT(Log(), Contains("1 UnSubEvents called with NULL subscription ID!"));
}

TEST_F(EventTicketsTest, WithoutASessionNothingIsSentOrWritten) {
    const Bstr id = Text("sub-1");
    const std::function<HRESULT()> operations[] = {
        [&] { return m_events->GetEventCapabilities(m_exception.put(), m_ticket.put()); },
        [&] { return m_events->SubscribeForEvents(id.get(), m_exception.put(), m_ticket.put()); },
        [&] { return m_events->Resubscribe(id.get(), nullptr, m_exception.put()); },
        [&] { return m_events->UnsubscribeForEvents(id.get(), m_exception.put()); },
    };
    Script().FailIn("ServiceDesc.GetAddress", {Fault::Status, E_ACCESSDENIED});
    for (const auto& operation : operations) EXPECT_EQ(Hex(operation()), Hex(E_ACCESSDENIED));
    EXPECT_EQ(m_exception.Shown(), "(untouched)");
    EXPECT_EQ(m_ticket.Shown(), "(untouched)");
    EXPECT_THAT(Script().CallsOf("FakeTransport"), IsEmpty());
}

}  // namespace
}  // namespace wncom::test
