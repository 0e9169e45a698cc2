// The sample transport library through its exports, as the bridge uses it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <thread>

#include "tests/support/Com.h"
#include "tests/support/TestHome.h"
#include "wncom/RemoteArray.h"
#include "wncom/RmtJobControl.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kAddress = "sample://press";
constexpr const char* kTicket =
    "<Subscription><ConsumerInterface>http://127.0.0.1:8099/events</ConsumerInterface></Subscription>";

std::string SetDocument(const std::string& path, const std::string& value) {
    return "<set><path>" + path + "</path><value>" + value + "</value></set>";
}

std::vector<std::string> Names(RemoteArray* array) {
    const std::unique_ptr<RemoteArray> list(array);
    std::vector<std::string> names;
    for (LONG i = 0; list && i < list->GetLength(); ++i) names.emplace_back(list->GetElements()[i].c_str());
    return names;
}

class SampleTransportTest : public testing::Test {
protected:
    struct GiveBack {
        TransportUnmake unmake;
        void operator()(RmtJobControl* object) const { unmake(object); }
    };
    using Object = std::unique_ptr<RmtJobControl, GiveBack>;

    Object Make() const {
        return Object(m_module.Export<TransportMake>("maker")(), {m_module.Export<TransportUnmake>("demaker")});
    }
    Object Connect(const char* address = kAddress) const {
        Object object = Make();
        object->Initialize(address, nullptr);
        return object;
    }
    Object ConnectInSession() const {
        Object object = Connect();
        EXPECT_FALSE(object->StartSession().empty());
        return object;
    }
    // What the operation left in the slot.
    template <class Operation>
    static std::string Exception(Operation operation) {
        Bstr slot;
        operation(slot.put());
        return Narrow(slot.get());
    }

    const LoadedModule m_module{ProgramFolder() + "/wnSampleTransport.dll"};
};

// Nothing may leave the library, whatever comes in and whoever comes too early.
TEST_F(SampleTransportTest, WithoutADeviceEveryOperationAnswersNothing) {
    for (const char* address :
         {"", "sample://", "http://press", "sample://a b", "sample://<a>", "sample://\xC3\xA4"}) {
        SCOPED_TRACE(address);
        const Object object = Connect(address);
        EXPECT_TRUE(object->StartSession().empty());
        object->EndSession();
        object->SetSessionID("session-1");
        EXPECT_TRUE(object->GetWorkflowCapabilities("<r/>", 1).empty());
        EXPECT_TRUE(object->SubmitJob("<t/>", 1).empty());
        EXPECT_TRUE(object->GetData("/device", "", nullptr, 1).empty());
        EXPECT_FALSE(object->SetData("<s/>", true, nullptr, 1));
        EXPECT_TRUE(object->Subscribe("", "", "c").empty());
        object->Unsubscribe("subscription-1");
        EXPECT_FALSE(object->Resubscribe("subscription-1", "60", nullptr));
        EXPECT_FALSE(object->UnsubscribeForEvents("subscription-1", nullptr));
        EXPECT_TRUE(object->SubscribeForEvents(kTicket, nullptr).empty());
        EXPECT_EQ(Exception([&](BSTR* slot) { object->GetEventCapabilities(slot); }),
                  "There is no connection to a device");
    }
}

TEST_F(SampleTransportTest, TakesBackNull) { m_module.Export<TransportUnmake>("demaker")(nullptr); }

TEST_F(SampleTransportTest, ASessionOutlivesItsObjectAndBelongsToTheThread) {
    EXPECT_STREQ(Connect()->StartSession().c_str(), "session-1");
    EXPECT_FALSE(Connect()->SubmitJob("<t/>", 1).empty());
    std::thread([&] {
        EXPECT_TRUE(Connect()->SubmitJob("<t/>", 1).empty()) << "in the session of another thread";
    }).join();
    Connect()->EndSession();
    EXPECT_TRUE(Connect()->SubmitJob("<t/>", 1).empty()) << "after the end of the session";
    EXPECT_STREQ(Connect("sample://other")->StartSession().c_str(), "session-1") << "each device counts for itself";
}

TEST_F(SampleTransportTest, SetsAllValuesOrNoneUnlessFailuresAreAskedFor) {
    const Object object = ConnectInSession();
    const std::string document = SetDocument("/device/message", "busy") + SetDocument("/device/jobs", "7") +
                                 SetDocument("/device/lid", "open");
    const auto message = [&] { return std::string(object->GetData("/device/message", "", nullptr, 1).c_str()); };

    EXPECT_FALSE(object->SetData(document.c_str(), false, nullptr, 1));
    EXPECT_THAT(message(), HasSubstr(">ready<"));

    WCHAR* text = nullptr;
    EXPECT_TRUE(object->SetData(document.c_str(), true, &text, 1));
    const std::unique_ptr<WCHAR, decltype(&std::free)> owner(text, &std::free);
    EXPECT_EQ(Narrow(Bstr(text).get()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><setFailures>"
              "<failure><path>/device/jobs</path><reason>The value is read-only</reason></failure>"
              "<failure><path>/device/lid</path><reason>There is no such value</reason></failure></setFailures>");
    EXPECT_THAT(message(), HasSubstr(">busy<"));
    EXPECT_TRUE(object->SetData(document.c_str(), true, nullptr, 1)) << "nobody to tell";
}

TEST_F(SampleTransportTest, RefusesDocumentsAndValuesThatItCannotKeep) {
    const Object object = ConnectInSession();
    for (const std::string& document :
         {std::string(), std::string("<setData/>"), std::string("<set><path>/device/message</path><value>x"),
          SetDocument("/device/message", "<b>x</b>"), SetDocument("/device/message", std::string(5000, 'x'))}) {
        EXPECT_FALSE(object->SetData(document.c_str(), false, nullptr, 1)) << document;
    }
}

TEST_F(SampleTransportTest, ReadsEverythingAtAndBelowAPath) {
    const Object object = ConnectInSession();
    EXPECT_STREQ(object->GetData("/device/trays", "", nullptr, 1).c_str(),
                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?><deviceData>"
                 "<value path=\"/device/trays/1/sheets\">500</value>"
                 "<value path=\"/device/trays/2/sheets\">250</value></deviceData>");
    EXPECT_EQ(Exception([&](BSTR* slot) { object->GetData("/device/tray", "", slot, 1); }),
              "There is no value at /device/tray");
}

// The bridge writes each half of a character outside the basic plane by itself.
TEST_F(SampleTransportTest, AnswersInAsciiWhateverWasSet) {
    const Object object = ConnectInSession();
    const auto echo = [&](const char* value) {
        object->SetData(SetDocument("/device/message", value).c_str(), false, nullptr, 1);
        return std::string(object->GetData("/device/message", "", nullptr, 1).c_str());
    };
    EXPECT_THAT(echo("a\xC3\xB6\xE2\x82\xAC"), HasSubstr(">a&#246;&#8364;<"));
    EXPECT_THAT(echo("\xED\xA0\xBD\xED\xB8\x80"), HasSubstr(">&#128512;<"));
    EXPECT_THAT(echo("\xED\xB8\x80\xFF"), HasSubstr(">&#65533;&#65533;<")) << "half a character, and none";
}

TEST_F(SampleTransportTest, ListsEventsAndProperties) {
    const Object object = Connect();
    EXPECT_THAT(Names(object->GetSupportedEvents()), ElementsAre("dataChanged", "jobAccepted"));
    EXPECT_THAT(Names(object->GetEventProperties("all")), ElementsAre("path", "value", "jobUri"));
    EXPECT_EQ(object->GetEventProperties("absent"), nullptr);
}

TEST_F(SampleTransportTest, ASubscriptionIsRenewedAndCancelledOnce) {
    const Object object = ConnectInSession();
    EXPECT_STREQ(object->SubscribeForEvents(kTicket, nullptr).c_str(),
                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?><SubscriptionResult>"
                 "<SubscriptionID>subscription-1</SubscriptionID><Duration>3600</Duration></SubscriptionResult>");
    EXPECT_TRUE(object->Resubscribe("subscription-1", "", nullptr));
    for (const char* duration : {"0", "-1", "86401", "1h", "99999999999"}) {
        EXPECT_EQ(Exception([&](BSTR* slot) { object->Resubscribe("subscription-1", duration, slot); }),
                  "A duration is a number of seconds from 1 to 86400")
            << duration;
    }
    EXPECT_TRUE(object->UnsubscribeForEvents("subscription-1", nullptr));
    EXPECT_FALSE(object->Resubscribe("subscription-1", "60", nullptr));
}

TEST_F(SampleTransportTest, RefusesSubscriptionsThatNobodyHearsAndTooMany) {
    const Object object = ConnectInSession();
    EXPECT_EQ(Exception([&](BSTR* slot) { object->SubscribeForEvents("<Subscription/>", slot); }),
              "A subscription names its consumer");
    EXPECT_TRUE(object->Subscribe("<EventName>absent</EventName>", "", "c").empty());
    for (int i = 0; i < 1000; ++i) EXPECT_FALSE(object->Subscribe("", "", "c").empty());
    EXPECT_TRUE(object->Subscribe("", "", "c").empty());
    object->Unsubscribe("subscription-1000");
    EXPECT_STREQ(object->Subscribe("", "", "c").c_str(), "subscription-1001");
}

}  // namespace
}  // namespace wncom::test
