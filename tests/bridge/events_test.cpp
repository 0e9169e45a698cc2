#include "tests/bridge/BridgeFixture.h"
#include "wncom/Bstr.h"

namespace wncom::test {
namespace {

class EventsTest : public BridgeFixture {
protected:
    void SetUp() override {
        BridgeFixture::SetUp();
        Connect();
    }
    std::vector<std::string> Listed() const {
        std::vector<std::string> texts;
        for (char** text = m_list.get(); text && *text; ++text) texts.emplace_back(*text);
        return texts;
    }
    PCharArray m_list;
    MallocText<WCHAR> m_response;
};

TEST_F(EventsTest, SubscribeSendsItsTextsInTheNarrowCodePage) {
    Script().Answer("FakeTransport.Subscribe", "id");
    EXPECT_EQ("id", Shown(m_bridge->Subscribe(OLESTR("i\u00E9"), nullptr, OLESTR("c"))));
    EXPECT_THAT(RemoteCalls(), ElementsAre("FakeTransport.Subscribe(i\xE9, , c)"));
    EXPECT_THAT(Lines(),
                ElementsAre("3 m_szServiceURI is: http://device/service", "3 In OS::Subscribe, subInfo is: i\xC3\xA9",
                            "3 In OS::Subscribe, filtProp is: (null)", "3 In OS::Subscribe, consInt is: c",
                            "3 New subID='id'"));
    Script().FailIn("FakeTransport.Subscribe", {Fault::Integer});
    EXPECT_EQ("", Shown(m_bridge->Subscribe(nullptr, nullptr, nullptr)));
    EXPECT_TRUE(ContainsInOrder(Lines(), {"2 Failed mJobControl->Subscribe method call", "3 New subID=''"}));
}

TEST_F(EventsTest, UnsubscribeNeedsAnId) {
    m_bridge->Unsubscribe(nullptr);
    EXPECT_TRUE(Lines().empty());
    m_bridge->Unsubscribe(OLESTR(""));
    m_bridge->_Unsubscribe(nullptr);
    EXPECT_THAT(Lines(), ElementsAre("1 Unsub called with NULL!", "1 Unsub called with NULL!"));
    m_bridge->Unsubscribe(OLESTR("i\u00E9"));
    Script().FailIn("FakeTransport.Unsubscribe", {Fault::OutOfMemory});
    m_bridge->_Unsubscribe("j");
    EXPECT_THAT(RemoteCalls(), ElementsAre("FakeTransport.Unsubscribe(i\xC3\xA9)", "FakeTransport.Unsubscribe(j)"));
    EXPECT_THAT(Lines(), ElementsAre("3 Unsub'ing i\xC3\xA9", "3 Unsub'ing j",
                                     "1 ORBStuff::mJobControl->Unsubscribe failed!"));
}

TEST_F(EventsTest, SupportedEventsAreListed) {
    Script().AnswerList("FakeTransport.GetSupportedEvents", {"one", "", "tw\xE9"});
    EXPECT_EQ(3, m_bridge->GetSupportedEvents(&m_list));
    EXPECT_THAT(Listed(), ElementsAre("one", "", "tw\xE9"));
    EXPECT_THAT(Lines(),
                ElementsAre("3 OrbStuff::About to display rArray contents", "3 Element is one", "3 Item 0: one",
                            "3 Element is ", "3 Item 1: ", "3 Element is tw\xE9", "3 Item 2: tw\xE9"));
}

TEST_F(EventsTest, AMissingListOfEventsIsAnException) {
    for (const Misbehaviour missing : {Misbehaviour{Fault::Null}, Misbehaviour{Fault::Integer}}) {
        Script().FailIn("FakeTransport.GetSupportedEvents", missing);
        EXPECT_EQ(0, m_bridge->GetSupportedEvents(&m_list));
        EXPECT_EQ(nullptr, m_list);
        EXPECT_EQ("1 OrbStuff::GetSupportedEvents exception", Lines().back());
    }
}

TEST_F(EventsTest, EventPropertiesAreAskedForByNameOrForAllEvents) {
    Script().AnswerList("FakeTransport.GetEventProperties", {"p"});
    EXPECT_EQ(1, m_bridge->GetEventProperties("e", &m_list));
    EXPECT_THAT(Listed(), ElementsAre("p"));
    EXPECT_EQ(1, m_bridge->GetEventProperties(nullptr, &m_list));
    EXPECT_THAT(RemoteCalls(),
                ElementsAre("FakeTransport.GetEventProperties(e)", "FakeTransport.GetEventProperties(all)"));
    EXPECT_TRUE(ContainsInOrder(Lines(), {"3 Getting properties for event<e>", "3 Item 0: p",
                                          "3 Getting properties for event<(null)>", "3 Item 0: p"}));
}

TEST_F(EventsTest, AMissingListOfPropertiesIsNoticedAtItsLength) {
    Script().FailIn("FakeTransport.GetEventProperties", {Fault::Null});
    EXPECT_EQ(0, m_bridge->GetEventProperties("e", &m_list));
    EXPECT_EQ(nullptr, m_list);
    EXPECT_EQ("3 RemoteArray->GetLength unexpected exception in .\\OrbStuff @ line 460.", Lines().back());
    Script().FailIn("FakeTransport.GetEventProperties", {Fault::Integer});
    EXPECT_EQ(0, m_bridge->GetEventProperties("e", &m_list));
    EXPECT_EQ("1 OrbStuff::GetEventProperties exception", Lines().back());
}

TEST_F(EventsTest, AnEmptyListLeavesTheSlotAlone) {
    EXPECT_EQ(0, m_bridge->GetSupportedEvents(&m_list));
    EXPECT_EQ(nullptr, m_list);
}

// A library may count elements that it does not have.
TEST_F(EventsTest, AListWithAWrongCountIsEmpty) {
    RemoteArray negative;
    negative.Init(new CString[1], -1);
    EXPECT_EQ(0, RemoteArrayPtrToPCharArray(&negative, &m_list));
    RemoteArray none;
    EXPECT_EQ(0, RemoteArrayPtrToPCharArray(&none, &m_list));
    EXPECT_EQ(nullptr, m_list);
}

TEST(RemoteListTest, ACountWithoutElementsIsAnEmptyListAtEveryLevelOfTheLog) {
    const LogCapture log(4);
    RemoteArray none;
    none.Init(nullptr, 3);
    static_cast<const ORBBase&>(none).Init();
    PCharArray list;
    EXPECT_EQ(0, RemoteArrayPtrToPCharArray(&none, &list));
    EXPECT_EQ(nullptr, list);
}

TEST_F(EventsTest, TicketsAndIdsOfEventsAreSentAndAnswered) {
    Script().Answer("FakeTransport.GetEventCapabilities", "caps");
    Script().Answer("FakeTransport.SubscribeForEvents", "done");
    Script().Answer("FakeTransport.Resubscribe.slot", "trouble");
    Script().AnswerFlag("FakeTransport.Resubscribe", true);
    Script().AnswerFlag("FakeTransport.UnsubscribeForEvents", true);
    Bstr trouble;
    EXPECT_EQ(4, m_bridge->GetEventCapabilities(nullptr, &m_response));
    EXPECT_EQ("caps", Shown(m_response));
    EXPECT_EQ(0, m_bridge->SubscribeForEvents(OLESTR("t\u00E9"), nullptr, &m_response));
    EXPECT_EQ("done", Shown(m_response));
    EXPECT_TRUE(m_bridge->Resubscribe(OLESTR("i"), nullptr, trouble.put()));
    EXPECT_EQ("trouble", Shown(trouble.get()));
    EXPECT_TRUE(m_bridge->UnsubscribeForEvents(OLESTR("i"), nullptr));
    EXPECT_THAT(RemoteCalls(),
                ElementsAre("FakeTransport.GetEventCapabilities()", "FakeTransport.SubscribeForEvents(t\xC3\xA9)",
                            "FakeTransport.Resubscribe(i, )", "FakeTransport.UnsubscribeForEvents(i)"));
    EXPECT_THAT(Lines(),
                ElementsAre("3 calling Resubscribe on mJobControl", "3 calling UnsubscribeEvents on mJobControl"));
}

TEST_F(EventsTest, FailedEventCallsAnswerNothingAndEmptyTheSlot) {
    for (const char* operation :
         {"GetEventCapabilities", "SubscribeForEvents", "Resubscribe", "UnsubscribeForEvents"}) {
        Script().FailIn(std::string("FakeTransport.") + operation, {Fault::Integer});
    }
    m_response.reset(_wcsdup(OLESTR("old")));
    EXPECT_EQ(0, m_bridge->GetEventCapabilities(nullptr, &m_response));
    EXPECT_EQ(nullptr, m_response);
    m_response.reset(_wcsdup(OLESTR("old")));
    EXPECT_EQ(0, m_bridge->SubscribeForEvents(OLESTR("t"), nullptr, &m_response));
    EXPECT_EQ(nullptr, m_response);
    EXPECT_FALSE(m_bridge->Resubscribe(OLESTR("i"), OLESTR("d"), nullptr));
    EXPECT_FALSE(m_bridge->UnsubscribeForEvents(OLESTR("i"), nullptr));
    EXPECT_THAT(Lines(),
                ElementsAre("3 Exception thrown while attempting to call GetEventCapabilities().",
                            "2 result event capabilities: NULL!", "",
                            "3 Exception thrown while attempting to call SubscribeForEvents().",
                            "2 result subscription ticket: NULL!", "", "3 calling Resubscribe on mJobControl",
                            "3 Exception thrown while attempting to call Resubscribe().",
                            "3 calling UnsubscribeEvents on mJobControl",
                            "3 Exception thrown while attempting to call UnsubscribeForEvents()."));
}

TEST_F(EventsTest, EventOperationsNeedTheirIds) {
    m_response.reset(_wcsdup(OLESTR("old")));
    for (const WCHAR* missing : {static_cast<const WCHAR*>(nullptr), OLESTR("")}) {
        EXPECT_EQ(0, m_bridge->SubscribeForEvents(missing, nullptr, &m_response));
        EXPECT_FALSE(m_bridge->Resubscribe(missing, OLESTR("d"), nullptr));
        EXPECT_FALSE(m_bridge->UnsubscribeForEvents(missing, nullptr));
        EXPECT_THAT(Lines(), ElementsAre("1 SubEvents called with NULL event subscription ticket!",
                                         "1 SubEvents called with NULL subscription ID!",
                                         "1 UnSubEvents called with NULL subscription ID!"));
    }
    EXPECT_EQ("old", Shown(m_response));
    EXPECT_EQ(0u, Script().CallCount());
}

}  // namespace
}  // namespace wncom::test
