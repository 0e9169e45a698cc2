// The general event service from the client's side: subscriptions by texts, and the two lists.
#include "tests/agent/AgentFixture.h"

namespace wncom::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

constexpr const char* kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

class EventsTest : public AgentFixture {
protected:
    EventsTest() { Prepare(); }

    HRESULT Subscribe() {
        return m_events->Subscribe(Text("info").get(), Text("filter").get(), Text("consumer").get(),
                                   Text("session").get(), m_exception.put(), m_result.put());
    }

    const CPComPtr<IComBaseEvent> m_events = Agent<IComBaseEvent>();
    OutText m_exception;
    OutText m_result;
};

TEST_F(EventsTest, ASubscriptionConnectsAfreshWithoutASession) {
    Script().Answer("FakeTransport.Subscribe", "sub-1");
    EXPECT_EQ(Hex(Subscribe()), Hex(S_OK));
    EXPECT_EQ(m_result.Shown(), "sub-1");
    EXPECT_EQ(m_exception.Shown(), "No Info");
    EXPECT_THAT(Script().CallsOf("FakeTransport"),
                ElementsAre("FakeTransport.demaker(object)", "FakeTransport.maker()",
                            "FakeTransport.Initialize(http://device/service, none)",
                            "FakeTransport.Subscribe(info, filter, consumer)"));
    EXPECT_THAT(Log(), IsSupersetOf({"3 ServiceURI=http://device/service", "3 Orb.Subscribe succeeded (sub-1)",
                                     "3 Returning 00000000 (sub-1)"}));
}

TEST_F(EventsTest, ASubscriptionWithoutAnIdentifierIsAFailure) {
    for (const Misbehaviour& wrong : {Misbehaviour{Fault::None}, Misbehaviour{Fault::CommonException},
                                      Misbehaviour{Fault::OutOfMemory}, Misbehaviour{Fault::Integer}}) {
        Prepare();
        Script().FailIn("FakeTransport.Subscribe", wrong);
        OutText exception;
        EXPECT_EQ(Hex(m_events->Subscribe(nullptr, nullptr, nullptr, nullptr, exception.put(), m_result.put())),
                  Hex(E_FAIL));
        EXPECT_EQ(exception.Shown(), "No Info");
        EXPECT_THAT(Log(), Contains("3 Returning 80004005 (noID)"));
    }
    EXPECT_EQ(m_result.Shown(), "(untouched)");
}

TEST_F(EventsTest, ASubscriptionWithoutAnAddressGoesToTheObjectThatIsThere) {
    for (const Misbehaviour& wrong : {Misbehaviour{Fault::Status, E_ABORT}, Misbehaviour{Fault::Null}}) {
        Prepare();
        Script().Answer("FakeTransport.Subscribe", "sub-1");
        Script().FailIn("ServiceDesc.GetAddress", wrong);
        OutText exception;
        OutText id;
        EXPECT_EQ(Hex(m_events->Subscribe(nullptr, nullptr, nullptr, nullptr, exception.put(), id.put())), Hex(S_OK));
        EXPECT_EQ(id.Shown(), "sub-1");
        EXPECT_THAT(Script().CallsOf("FakeTransport"), ElementsAre("FakeTransport.Subscribe(, , )"));
        const char* failure = wrong.fault == Fault::Null ? "1 failed SD->GetAddress()==00000000"
                                                         : "1 failed SD->GetAddress()==80004004";
        EXPECT_THAT(Log(), IsSupersetOf({failure, "3 ServiceURI=(null)"}));
    }
}

TEST_F(EventsTest, ASubscriptionNeedsNoOutParameters) {
    Script().Answer("FakeTransport.Subscribe", "sub-1");
    EXPECT_EQ(Hex(m_events->Subscribe(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr)), Hex(S_OK));
    EXPECT_THAT(Log(), Contains("3 Returning 00000000 (noID)"));
}

TEST_F(EventsTest, UnsubscribingAnEmptyIdentifierDoesNothingAtAll) {
    EXPECT_EQ(Hex(m_events->Unsubscribe(nullptr, nullptr, m_exception.put())), Hex(S_OK));
    EXPECT_EQ(Hex(m_events->Unsubscribe(Text("").get(), nullptr, m_exception.put())), Hex(S_OK));
    EXPECT_EQ(m_exception.Shown(), "(untouched)");
    EXPECT_THAT(Script().Calls(), IsEmpty());
    EXPECT_THAT(Log(), IsEmpty());
}

TEST_F(EventsTest, UnsubscribingStartsASessionAndReportsNoOutcome) {
    const auto unsubscribe = [this] {
        return m_events->Unsubscribe(Text("sub-1").get(), nullptr, m_exception.put());
    };
    EXPECT_EQ(Hex(unsubscribe()), Hex(S_OK));
    const std::vector<std::string> calls = Script().CallsOf("FakeTransport");
    ASSERT_GE(calls.size(), 2U);
    EXPECT_EQ(calls[calls.size() - 2], "FakeTransport.StartSession()");
    EXPECT_EQ(calls.back(), "FakeTransport.Unsubscribe(sub-1)");
    EXPECT_EQ(Log().front(), "3 Unsubscribing sub-1");

    Script().FailIn("FakeTransport.Unsubscribe", {Fault::Integer});
    EXPECT_EQ(Hex(unsubscribe()), Hex(S_OK));
    EXPECT_EQ(m_exception.Shown(), "(untouched)");
}

TEST_F(EventsTest, UnsubscribingWithoutASessionSendsNothing) {
    Script().FailIn("ServiceDesc.GetAddress", {Fault::Status, E_ABORT});
    EXPECT_EQ(Hex(m_events->Unsubscribe(Text("sub-1").get(), nullptr, nullptr)), Hex(E_ABORT));
    EXPECT_THAT(Script().CallsOf("FakeTransport"), IsEmpty());
}

TEST_F(EventsTest, SupportedEventsAreADocumentFromTheObjectThatIsThere) {
    Script().AnswerList("FakeTransport.GetSupportedEvents", {"JobDone", "", "a<b&c"});
    EXPECT_EQ(Hex(m_events->GetSupportedEvents(nullptr, m_exception.put(), m_result.put())), Hex(S_OK));
    const std::string document = std::string(kDeclaration) +
                                 "<SupportedEvents>\n  <Event>JobDone</Event>\n  <Event></Event>\n"
                                 "  <Event>a<b&c</Event>\n</SupportedEvents>\n";
    EXPECT_EQ(m_result.Shown(), document);
    EXPECT_EQ(m_exception.Shown(), "(null)");
    EXPECT_THAT(Script().Calls(), ElementsAre("FakeTransport.GetSupportedEvents()"));
    EXPECT_THAT(Log(), Contains(std::string("3 Supported Events: ") + "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
}

TEST_F(EventsTest, PropertiesAreThoseOfTheNamedEventOrOfAll) {
    Script().AnswerList("FakeTransport.GetEventProperties", {"JobId"});
    EXPECT_EQ(Hex(m_events->GetEventProperties(Bstr(OLESTR("Caf\u00E9")).get(), nullptr, m_exception.put(),
                                               m_result.put())),
              Hex(S_OK));
    EXPECT_EQ(m_result.Shown(),
              std::string(kDeclaration) + "<EventProperties>\n  <Name>JobId</Name>\n</EventProperties>\n");
    EXPECT_EQ(m_exception.Shown(), "(null)");
    EXPECT_EQ(Hex(m_events->GetEventProperties(nullptr, nullptr, nullptr, nullptr)), Hex(S_OK));
    EXPECT_THAT(Script().Calls(), ElementsAre("FakeTransport.GetEventProperties(Caf\xC3\xA9)",
                                              "FakeTransport.GetEventProperties(all)"));
    EXPECT_THAT(Log(), Contains(testing::StartsWith("3 Event Properties: <?xml")));
}

TEST_F(EventsTest, AListThatIsMissingOrEmptyIsAnEmptyDocument) {
    for (const Misbehaviour& wrong : {Misbehaviour{Fault::None}, Misbehaviour{Fault::Null},
                                      Misbehaviour{Fault::OutOfMemory}, Misbehaviour{Fault::Integer}}) {
        Prepare();
        Script().FailIn("FakeTransport.GetSupportedEvents", wrong);
        Script().FailIn("FakeTransport.GetEventProperties", wrong);
        OutText events;
        OutText properties;
        EXPECT_EQ(Hex(m_events->GetSupportedEvents(nullptr, nullptr, events.put())), Hex(S_OK));
        EXPECT_EQ(events.Shown(), std::string(kDeclaration) + "<SupportedEvents>\n</SupportedEvents>\n");
        EXPECT_EQ(Hex(m_events->GetEventProperties(nullptr, nullptr, nullptr, properties.put())), Hex(S_OK));
        EXPECT_EQ(properties.Shown(), std::string(kDeclaration) + "<EventProperties>\n</EventProperties>\n");
    }
}

TEST_F(EventsTest, ListsAreReadInTheNarrowCodePage) {
    Script().AnswerList("FakeTransport.GetSupportedEvents", {"\x80\xE9"});
    Bstr document;
    EXPECT_EQ(Hex(m_events->GetSupportedEvents(nullptr, nullptr, document.put())), Hex(S_OK));
    EXPECT_NE(document.view().find(OLESTR("<Event>\u20AC\u00E9</Event>")), document.view().npos);
}

TEST_F(EventsTest, ThreeOperationsAreNotOffered) {
    EXPECT_EQ(Hex(m_events->GetSubscriptionIDList(nullptr, m_exception.put(), m_result.put())), Hex(E_NOTIMPL));
    EXPECT_EQ(Hex(m_events->GetSubscriptionDetails(Text("id").get(), nullptr, m_exception.put(), m_result.put())),
              Hex(E_NOTIMPL));
    EXPECT_EQ(Hex(m_events->GetEventSystemCapabilities(nullptr, m_exception.put(), m_result.put())), Hex(E_NOTIMPL));
    EXPECT_EQ(m_exception.Shown(), "(untouched)");
    EXPECT_EQ(m_result.Shown(), "(untouched)");
    EXPECT_THAT(Script().Calls(), IsEmpty());
}

// Each item is logged more than once; the log must not be what this test waits for.
using LongListTest = AgentFixture;

TEST_F(LongListTest, AHundredThousandItemsAreCarriedWhole) {
    SetRegistryValue(kLoggingKey, nullptr, "file," + m_logPath + ",1");
    const CPComPtr<IComBaseEvent> events = Agent<IComBaseEvent>();
    std::vector<std::string> names;
    std::string document = std::string(kDeclaration) + "<SupportedEvents>\n";
    for (int i = 0; i < 100000; ++i) {
        names.push_back("Event" + std::to_string(i));
        document += "  <Event>" + names.back() + "</Event>\n";
    }
    document += "</SupportedEvents>\n";
    Script().AnswerList("FakeTransport.GetSupportedEvents", names);
    OutText list;
    EXPECT_EQ(Hex(events->GetSupportedEvents(nullptr, nullptr, list.put())), Hex(S_OK));
    EXPECT_TRUE(list.Shown() == document) << list.Shown().substr(0, 200);
}

}  // namespace
}  // namespace wncom::test
