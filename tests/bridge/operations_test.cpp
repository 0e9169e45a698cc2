// The bridge among fake components and a fake transport library: what each call answers, asks of the outside and
// logs. What the agent's own operations show of it is not repeated here.
#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "bridge/OrbStuff.h"
#include "tests/fakes/FakeHome.h"
#include "tests/fakes/Happened.h"
#include "tests/support/Host.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Utf8Text.h"
#include "wncom/Bstr.h"

namespace wncom::test {
namespace {

const WCHAR* const kWideAddress = OLESTR("http://device/service");
const Misbehaviour kThrown = {Fault::Integer};

// A result slot with what an earlier call left in it.
struct Slot {
    MallocText<WCHAR> text{_wcsdup(OLESTR("old"))};

    std::string With(LONG result) const {
        return std::to_string(result) + ", " + (text ? ToUtf8(Bstr(text.get()).get()) : "(null)");
    }
};

std::string Shown(const MallocText<WCHAR>& text) { return text ? ToUtf8(Bstr(text.get()).get()) : "(null)"; }
std::string Shown(bool done) { return done ? "true" : "false"; }

std::string Listed(OrbStuff& bridge, const char* properties) {
    PCharArray list;
    const LONG count = properties ? bridge.GetEventProperties(properties, &list) : bridge.GetSupportedEvents(&list);
    std::string shown = std::to_string(count);
    for (char** text = list.get(); text && *text; ++text) shown += std::string(" [") + *text + "]";
    return shown + (list ? "" : ", no list");
}

// One after the other, as the list orders it.
std::string Joined(std::initializer_list<std::string> parts) {
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
    return text;
}

struct Case {
    const char* name;
    std::string (*run)(OrbStuff& bridge);
};

// Each on a bridge that is connected, with the script's record empty.
const Case kCases[] = {
    {"the address is given again",
     [](OrbStuff& b) {
         b.SetServiceURI(kWideAddress);
         return std::string();
     }},
    {"an empty address and none keep the object",
     [](OrbStuff& b) {
         b.SetServiceURI(OLESTR(""));
         b.SetServiceURI(nullptr);
         Slot slot;
         return slot.With(b.SubmitJob(OLESTR("t"), &slot.text));
     }},
    {"an address outside the code page",
     [](OrbStuff& b) {
         Script().SetServices({{"\xE2\x82\xAC", "network"}});
         b.SetServiceURI(OLESTR("\u20AC"));
         return std::string();
     }},
    {"maker throws what the factory knows, and then what it does not",
     [](OrbStuff& b) {
         Script().FailIn("FakeTransport.maker", {Fault::CommonException}, 1);
         Script().FailIn("FakeTransport.maker", kThrown, 2);
         b.SetServiceURI(kWideAddress);
         b.SetServiceURI(kWideAddress);
         b.EndSession();
         return Shown(b.StartSession());
     }},
    {"maker makes nothing",
     [](OrbStuff& b) {
         Script().FailIn("FakeTransport.maker", {Fault::Null});
         b.SetServiceURI(kWideAddress);
         return Shown(b.StartSession());
     }},
    {"an object that was not initialised stays in use",
     [](OrbStuff& b) {
         Script().FailIn("FakeTransport.Initialize", kThrown);
         b.SetServiceURI(kWideAddress);
         return Shown(b.StartSession());
     }},
    {"sessions are named in the narrow code page",
     [](OrbStuff& b) {
         b.SetSessionID(OLESTR("s\u20AC"));
         b.SetSessionID(nullptr);
         Script().FailIn("FakeTransport.SetSessionID", kThrown);
         b.SetSessionID(OLESTR("s"));
         return std::string();
     }},
    {"a job without a ticket and without a place",
     [](OrbStuff& b) {
         Slot slot;
         return std::to_string(b.SubmitJob(nullptr, nullptr)) + ", " +
                std::to_string(b.SubmitJob(OLESTR(""), nullptr)) + ", " + slot.With(b.SubmitJob(nullptr, &slot.text));
     }},
    {"a capabilities ticket has no place",
     [](OrbStuff& b) { return std::to_string(b.GetCapTicket(OLESTR("w"), nullptr)); }},
    {"a place for a capabilities ticket is emptied",
     [](OrbStuff& b) {
         Slot slot;
         return slot.With(b.GetCapTicket(OLESTR("w"), &slot.text));
     }},
    {"a capabilities ticket, and then an exception",
     [](OrbStuff& b) {
         Script().Answer("FakeTransport.GetWorkflowCapabilities", "<caps/>");
         Slot first;
         Slot second;
         std::string shown = first.With(b.GetCapTicket(OLESTR("\u00E9<&%s"), &first.text));
         Script().FailIn("FakeTransport.GetWorkflowCapabilities", kThrown);
         return shown + ", " + second.With(b.GetCapTicket(OLESTR("w"), &second.text));
     }},
    {"the workflow comes from the environment when none is given",
     [](OrbStuff& b) {
         Slot slot;
         SetEnvironment("WF_DESTINATION", "abc");
         b.GetCapTicket(nullptr, &slot.text);
         b.GetCapTicket(OLESTR(""), &slot.text);
         b.GetCapTicket(OLESTR("w"), &slot.text);
         SetEnvironment("WF_DESTINATION", nullptr);
         return slot.With(b.GetCapTicket(nullptr, &slot.text));
     }},
    {"a subscription to everything that is null",
     [](OrbStuff& b) { return Shown(b.Subscribe(nullptr, nullptr, nullptr)); }},
    {"unsubscribing nothing",
     [](OrbStuff& b) {
         b.Unsubscribe(nullptr);
         b.Unsubscribe(OLESTR(""));
         b._Unsubscribe(nullptr);
         return std::string();
     }},
    {"events are listed",
     [](OrbStuff& b) {
         Script().AnswerList("FakeTransport.GetSupportedEvents", {"one", "", "three"});
         return Listed(b, nullptr);
     }},
    {"an empty list",
     [](OrbStuff& b) {
         return Joined({Listed(b, nullptr), Listed(b, "e")});
     }},
    {"no list",
     [](OrbStuff& b) {
         Script().FailIn("FakeTransport.GetSupportedEvents", {Fault::Null});
         Script().FailIn("FakeTransport.GetEventProperties", {Fault::Null});
         return Joined({Listed(b, nullptr), Listed(b, "e")});
     }},
    {"places for the tickets of events are emptied",
     [](OrbStuff& b) {
         Slot capabilities;
         Slot subscription;
         return Joined({capabilities.With(b.GetEventCapabilities(nullptr, &capabilities.text)),
                        subscription.With(b.SubscribeForEvents(OLESTR("t"), nullptr, &subscription.text))});
     }},
    {"null texts where they are allowed",
     [](OrbStuff& b) {
         Slot slot;
         return Joined({slot.With(b.GetData(OLESTR("p"), nullptr, nullptr, &slot.text)),
                        Shown(b.Resubscribe(OLESTR("i"), nullptr, nullptr))});
     }},
    {"subscriptions that are not named",
     [](OrbStuff& b) {
         Slot slot;
         std::string shown;
         for (const WCHAR* missing : {static_cast<const WCHAR*>(nullptr), OLESTR("")}) {
             shown += Joined({slot.With(b.SubscribeForEvents(missing, nullptr, &slot.text)),
                              Shown(b.Resubscribe(missing, OLESTR("d"), nullptr)),
                              Shown(b.UnsubscribeForEvents(missing, nullptr))}) +
                      "; ";
         }
         return shown;
     }},
};

class BridgeTest : public testing::Test {
protected:
    BridgeTest() { SetUpFakeHome(); }
    ~BridgeTest() override { EXPECT_EQ(Script().LiveObjects(), 0); }

    std::string Happened() const { return test::Happened(m_log.Text()); }

    LogCapture m_log{5};
};

TEST_F(BridgeTest, AnswersAsksAndLogs) {
    std::string transcript;
    for (const Case& given : kCases) {
        SetUpFakeHome();
        Script().Answer("FakeTransport.StartSession", "session");
        OrbStuff bridge;
        bridge.SetServiceURI(kWideAddress);
        Script().ForgetCalls();
        m_log.Clear();
        const std::string shown = given.run(bridge);
        transcript += std::string("== ") + given.name + ": " + shown + "\n" + Happened();
    }
    ExpectGolden("bridge/golden/operations.log", transcript);
}

TEST_F(BridgeTest, LivesFromItsTraceSizeToTheLastDemaker) {
    m_log.Clear();
    auto bridge = std::make_unique<OrbStuff>();
    bridge->SetServiceURI(kWideAddress);
    bridge.reset();
    ExpectGolden("bridge/golden/life.log", Happened());
}

TEST_F(BridgeTest, ReadsTheCatalogueOnlyOnceEvenWhenThatFailed) {
    Script().FailIn("XMLSimpleAccessor.LoadXML", {Fault::Status, E_FAIL}, 1);
    OrbStuff bridge;
    bridge.SetServiceURI(kWideAddress);
    bridge.SetServiceURI(kWideAddress);
    EXPECT_EQ(Script().CallsOf("XMLSimpleAccessor.LoadXML").size(), 1U);
    EXPECT_EQ(Script().CallsOf("PortMap.GetMatchingDevices").size(), 1U) << "the second attempt went on to the map";
}

TEST_F(BridgeTest, LogsAnAnswerOnlyBelowTheLimit) {
    OrbStuff bridge;
    bridge.SetServiceURI(kWideAddress);
    for (const std::size_t length : {63387U, 63388U}) {
        const std::string answer(length, 'x');
        Script().Answer("FakeTransport.SubmitJob", answer);
        Script().Answer("FakeTransport.GetData", answer);
        for (const bool data : {false, true}) {
            m_log.Clear();
            Slot slot;
            EXPECT_EQ(data ? bridge.GetData(OLESTR("p"), nullptr, nullptr, &slot.text)
                           : bridge.SubmitJob(OLESTR("t"), &slot.text),
                      static_cast<LONG>(length));
            EXPECT_TRUE(Shown(slot.text) == answer);
            const std::string shown = length < 63388 ? "xxxx" : "(too big to log)--";
            EXPECT_NE(m_log.Text().find("result (" + std::to_string(length) + "): --" + shown), std::string::npos);
        }
    }
}

// A library may count elements that it does not have.
TEST_F(BridgeTest, AListWithAWrongCountIsEmpty) {
    RemoteArray negative;
    negative.Init(new CString[1], -1);
    RemoteArray none;
    none.Init(nullptr, 3);
    static_cast<const ORBBase&>(none).Init();
    PCharArray list;
    EXPECT_EQ(RemoteArrayPtrToPCharArray(&negative, &list), 0);
    EXPECT_EQ(RemoteArrayPtrToPCharArray(&none, &list), 0);
    EXPECT_EQ(list, nullptr);
}

}  // namespace
}  // namespace wncom::test
