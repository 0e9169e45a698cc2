#include <cstdlib>
#include <cstring>

#include "tests/bridge/BridgeFixture.h"
#include "tests/support/Host.h"
#include "wncom/Bstr.h"

namespace wncom::test {
namespace {

class TicketsTest : public BridgeFixture {
protected:
    void SetUp() override {
        BridgeFixture::SetUp();
        Connect();
    }
    MallocText<WCHAR> m_response;
};

constexpr const char* kSubmitting = "3 OrbStuff::Establishing SubmitJob connection to http://device/service";

TEST_F(TicketsTest, SubmitJobHandsTheResponseOut) {
    Script().Answer("FakeTransport.SubmitJob", "<response/>");
    EXPECT_EQ(11, m_bridge->SubmitJob(OLESTR("<ticket>\u00E9</ticket>"), &m_response));
    EXPECT_EQ("<response/>", Shown(m_response));
    EXPECT_THAT(RemoteCalls(), ElementsAre("FakeTransport.SubmitJob(<ticket>\xC3\xA9</ticket>, 1)"));
    EXPECT_THAT(Lines(),
                ElementsAre(kSubmitting, "3 calling SubmitJob on mJobControl", "3 result (11): --<response/>--"));
}

TEST_F(TicketsTest, SubmitJobRefusesMissingArgumentsTheTicketFirst) {
    EXPECT_EQ(-12, m_bridge->SubmitJob(nullptr, nullptr));
    EXPECT_EQ(-13, m_bridge->SubmitJob(OLESTR(""), nullptr));
    EXPECT_EQ(0u, Script().CallCount());
    EXPECT_THAT(Lines(), ElementsAre("3 OrbStuff::SubmitJob Parameter \"szTicket\" is NULL!",
                                     "3 OrbStuff::SubmitJob Parameter \"pszResp\" is NULL!"));
}

TEST_F(TicketsTest, SubmitJobSendsAnEmptyTicketAndAnswersNothingForNothing) {
    EXPECT_EQ(0, m_bridge->SubmitJob(OLESTR(""), &m_response));
    EXPECT_EQ(nullptr, m_response);
    EXPECT_THAT(RemoteCalls(), ElementsAre("FakeTransport.SubmitJob(, 1)"));
    EXPECT_THAT(Lines(), ElementsAre(kSubmitting, "3 calling SubmitJob on mJobControl", "2 result: NULL!", ""));
}

TEST_F(TicketsTest, SubmitJobLogsAResponseOnlyBelowTheLimit) {
    for (const std::size_t length : {std::size_t{1}, std::size_t{63387}, std::size_t{63388}}) {
        Script().Answer("FakeTransport.SubmitJob", std::string(length, 'x'));
        EXPECT_EQ(static_cast<LONG>(length), m_bridge->SubmitJob(OLESTR("t"), &m_response));
        EXPECT_EQ(std::string(length, 'x'), Shown(m_response));
        const std::string start = "3 result (" + std::to_string(length) + "): --";
        const std::string last = Lines().back();
        if (length < 63388) {
            EXPECT_THAT(last, testing::StartsWith(start + "x"));
        } else {
            EXPECT_EQ(start + "(too big to log)--", last);
        }
    }
}

TEST_F(TicketsTest, SubmitJobTakesAResponseOf100Megabytes) {
    constexpr std::size_t kLength = 100 * 1024 * 1024;
    Script().Answer("FakeTransport.SubmitJob", std::string(kLength, 'x'));
    EXPECT_EQ(static_cast<LONG>(kLength), m_bridge->SubmitJob(OLESTR("t"), &m_response));
    EXPECT_EQ(u'x', m_response[kLength - 1]);
    EXPECT_EQ(0, m_response[kLength]);
}

// What goes out in UTF-8 comes back in the system's code page.
TEST_F(TicketsTest, AnEchoedCharacterOutsideAsciiReturnsAsTheCodePageReadsItsBytes) {
    Script().Answer("FakeTransport.SubmitJob", "\xC3\xA9");
    EXPECT_EQ(2, m_bridge->SubmitJob(OLESTR("\u00E9"), &m_response));
    EXPECT_EQ("\xC3\xA9", Shown(m_response));
}

TEST_F(TicketsTest, ExceptionsOfRemoteCallsAnswerNothing) {
    for (const char* operation : {"SubmitJob", "GetWorkflowCapabilities", "GetData", "SetData"}) {
        Script().FailIn(std::string("FakeTransport.") + operation, {Fault::Integer});
    }
    EXPECT_EQ(0, m_bridge->SubmitJob(OLESTR("t"), &m_response));
    EXPECT_EQ(0, m_bridge->GetCapTicket(OLESTR("w"), &m_response));
    EXPECT_EQ(0, m_bridge->GetData(OLESTR("p"), nullptr, nullptr, &m_response));
    WCHAR* text = nullptr;
    EXPECT_FALSE(m_bridge->SetData(OLESTR("d"), true, &text));
    EXPECT_EQ(nullptr, m_response);
    EXPECT_EQ(nullptr, text);
    EXPECT_TRUE(ContainsInOrder(
        Lines(), {"3 Exception thrown calling SubmitJob().", "2 result: NULL!",
                  "3 Exception thrown when attempting to call GetWorkflowCapabilities().", "2 result: NULL!",
                  "3 Exception thrown attempting the GetData() call.", "2 result: NULL!",
                  "3 Exception thrown while attempting to call SetData().", "2 result: false!"}));
}

class CapTicketTest : public TicketsTest {
protected:
    ~CapTicketTest() override { SetEnvironment("WF_DESTINATION", nullptr); }

    // The workflow id that the request carried.
    std::string SentFor(const WCHAR* workflowId) {
        Script().ForgetCalls();
        m_bridge->GetCapTicket(workflowId, &m_response);
        const std::string before =
            "FakeTransport.GetWorkflowCapabilities(<?xml version=\"1.0\" encoding=\"UTF-8\"?><capabilitiesRequest><workflowId>";
        const std::string after = "</workflowId></capabilitiesRequest>, 1)";
        const std::string call = RemoteCalls().at(0);
        EXPECT_EQ(0u, call.rfind(before, 0));
        EXPECT_EQ(call.size() - after.size(), call.rfind(after));
        return call.substr(before.size(), call.size() - before.size() - after.size());
    }
};

TEST_F(CapTicketTest, AsksForTheWorkflow) {
    Script().Answer("FakeTransport.GetWorkflowCapabilities", "<ticket/>");
    EXPECT_EQ(9, m_bridge->GetCapTicket(OLESTR("w"), &m_response));
    EXPECT_EQ("<ticket/>", Shown(m_response));
    EXPECT_THAT(Lines(), ElementsAre("3 OrbStuff::Establishing GetCap connection to http://device/service.",
                                     "3 WF Destination: 'w'", "3 calling wf.GetWorkflowCapabilities"));
}

TEST_F(CapTicketTest, TakesTheWorkflowFromTheEnvironmentOnlyWhenNoneIsGiven) {
    SetEnvironment("WF_DESTINATION", "abc");
    EXPECT_EQ("abc", SentFor(nullptr));
    EXPECT_EQ("abc", SentFor(OLESTR("")));
    EXPECT_EQ("\xC3\xA9<&%s", SentFor(OLESTR("\u00E9<&%s")));
    SetEnvironment("WF_DESTINATION", nullptr);
    EXPECT_EQ("", SentFor(nullptr));
    EXPECT_EQ(std::string(100000, 'w'), SentFor(std::basic_string<WCHAR>(100000, u'w').c_str()));
}

TEST_F(CapTicketTest, RefusesANullSlotAndEmptiesAnother) {
    EXPECT_EQ(0, m_bridge->GetCapTicket(OLESTR("w"), nullptr));
    EXPECT_EQ(0u, Script().CallCount());
    EXPECT_THAT(Lines(), ElementsAre("3 OrbStuff::GetCap Parameter \"pszResp\" is NULL!"));
    m_response.reset(_wcsdup(OLESTR("old")));
    EXPECT_EQ(0, m_bridge->GetCapTicket(OLESTR("w"), &m_response));
    EXPECT_EQ(nullptr, m_response);
    EXPECT_TRUE(ContainsInOrder(Lines(), {"2 result: NULL!"}));
}

TEST_F(TicketsTest, GetDataSendsPathAndPrefixesAndPassesTheSlotOn) {
    Script().Answer("FakeTransport.GetData", "<xdm/>");
    Script().Answer("FakeTransport.GetData.slot", "trouble");
    Bstr trouble;
    EXPECT_EQ(6, m_bridge->GetData(OLESTR("/p"), nullptr, trouble.put(), &m_response));
    EXPECT_EQ("<xdm/>", Shown(m_response));
    EXPECT_EQ("trouble", Shown(trouble.get()));
    EXPECT_EQ(-17, m_bridge->GetData(nullptr, OLESTR("x"), nullptr, &m_response));
    EXPECT_THAT(RemoteCalls(), ElementsAre("FakeTransport.GetData(/p, , 1)"));
    EXPECT_THAT(Lines(), ElementsAre("3 OrbStuff::Establishing GetData connection to http://device/service",
                                     "3 calling GetData on mJobControl", "3 result (6): --<xdm/>--",
                                     "3 OrbStuff::GetData Parameter \"szXDMPath\" is NULL!"));
}

TEST_F(TicketsTest, SetDataTellsWhatTheRemoteObjectSays) {
    Script().AnswerFlag("FakeTransport.SetData", true);
    Script().Answer("FakeTransport.SetData.slot", "details");
    WCHAR* text = nullptr;
    EXPECT_TRUE(m_bridge->SetData(OLESTR("<d/>"), true, &text));
    const MallocText<WCHAR> details(text);
    EXPECT_EQ("details", Shown(details));
    EXPECT_FALSE(m_bridge->SetData(nullptr, true, nullptr));
    EXPECT_THAT(RemoteCalls(), ElementsAre("FakeTransport.SetData(<d/>, true, 1)"));
    EXPECT_THAT(Lines(), ElementsAre("3 OrbStuff::Establishing SetData connection to http://device/service",
                                     "3 calling SetData on mJobControl", "2 result: true!", "",
                                     "3 OrbStuff::SetData Parameter \"szXDMSetDocument\" is NULL!"));
}

}  // namespace
}  // namespace wncom::test
