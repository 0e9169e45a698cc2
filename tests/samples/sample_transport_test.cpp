// The sample transport library through its exports, as the agent uses it.
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

constexpr const char* kTicket =
    "<Subscription><ConsumerInterface>http://127.0.0.1:8099/events</ConsumerInterface></Subscription>";

std::string SetDocument(const std::string& path, const std::string& value) {
    return "<set><path>" + path + "</path><value>" + value + "</value></set>";
}

// Each name with a space behind it; "none" without a list.
std::string Names(RemoteArray* array) {
    const std::unique_ptr<RemoteArray> list(array);
    std::string names;
    for (LONG i = 0; list && i < list->GetLength(); ++i) names += std::string(list->GetElements()[i]) + ' ';
    return list ? names : "none";
}

// What COM's error object of the thread says; it is gone then.
std::string Reason() {
    CPComPtr<IErrorInfo> error;
    Bstr description;
    if (GetErrorInfo(0, error.put()) == S_OK) error->GetDescription(description.put());
    return Narrow(description.get());
}

class SampleTransportTest : public testing::Test {
protected:
    struct GiveBack {
        TransportUnmake unmake;
        void operator()(RmtJobControl* object) const { unmake(object); }
    };
    using Object = std::unique_ptr<RmtJobControl, GiveBack>;

    Object Connect(const char* address = "sample://press") const {
        Object object(m_module.Export<TransportMake>("maker")(), {m_module.Export<TransportUnmake>("demaker")});
        object->Initialize(address, nullptr);
        return object;
    }
    Object ConnectInSession() const {
        Object object = Connect();
        EXPECT_FALSE(object->StartSession().empty());
        return object;
    }

    const LoadedModule m_module{ProgramFolder() + "/wnSampleTransport.dll"};
    const Apartment m_apartment;
};

// Nothing may leave the library, whatever comes in and whoever comes too early.
TEST_F(SampleTransportTest, WithoutADeviceEveryOperationAnswersNothing) {
    for (const char* address :
         {"", "sample://", "http://press", "sample://a b", "sample://<a>", "sample://\xC3\xA4"}) {
        SCOPED_TRACE(address);
        const Object object = Connect(address);
        EXPECT_EQ(Reason(), "The address is not one of sample://");
        EXPECT_TRUE(object->StartSession().empty());
        object->EndSession();
        object->SetSessionID("session-1");
        EXPECT_TRUE(object->GetWorkflowCapabilities("<r/>", 1).empty());
        EXPECT_TRUE(object->SubmitJob("<t/>", 1).empty());
        EXPECT_TRUE(object->GetData("/device", "", nullptr, 1).empty());
        EXPECT_FALSE(object->SetData("<s/>", true, nullptr, 1));
        EXPECT_TRUE(object->Subscribe("", "", "c").empty());
        object->Unsubscribe("subscription-1");
        EXPECT_EQ(Names(object->GetSupportedEvents()), "none");
        EXPECT_FALSE(object->Resubscribe("subscription-1", "60", nullptr));
        EXPECT_FALSE(object->UnsubscribeForEvents("subscription-1", nullptr));
        EXPECT_TRUE(object->SubscribeForEvents(kTicket, nullptr).empty());
        Bstr slot;
        EXPECT_TRUE(object->GetEventCapabilities(slot.put()).empty());
        EXPECT_EQ(Narrow(slot.get()), "There is no connection to a device");
        EXPECT_EQ(Reason(), "There is no connection to a device");
    }
    m_module.Export<TransportUnmake>("demaker")(nullptr);
}

TEST_F(SampleTransportTest, ASessionOutlivesItsObjectAndBelongsToTheThread) {
    EXPECT_STREQ(Connect()->StartSession().c_str(), "session-1");
    EXPECT_FALSE(Connect()->SubmitJob("<t/>", 1).empty());
    std::thread([&] {
        EXPECT_TRUE(Connect()->SubmitJob("<t/>", 1).empty()) << "in the session of another thread";
    }).join();
    Connect()->EndSession();
    EXPECT_TRUE(Connect()->SubmitJob("<t/>", 1).empty()) << "after the end of the session";
    EXPECT_EQ(Reason(), "There is no session");
    EXPECT_STREQ(Connect("sample://other")->StartSession().c_str(), "session-1") << "each device counts for itself";
}

TEST_F(SampleTransportTest, SetsAllValuesOrNoneUnlessFailuresAreAskedFor) {
    const Object object = ConnectInSession();
    const auto message = [&] { return std::string(object->GetData("/device/message", "", nullptr, 1)); };
    const std::string document = SetDocument("/device/message", "busy") + SetDocument("/device/lid", "open") +
                                 SetDocument("/device/message", "<b>x</b>") +
                                 SetDocument("/device/message", std::string(5000, 'x'));
    EXPECT_FALSE(object->SetData(document.c_str(), false, nullptr, 1));
    EXPECT_EQ(Reason(), "Some values cannot be set, so none was");
    EXPECT_NE(message().find(">ready<"), std::string::npos);

    WCHAR* text = nullptr;
    EXPECT_TRUE(object->SetData(document.c_str(), true, &text, 1));
    const std::unique_ptr<WCHAR, decltype(&std::free)> owner(text, &std::free);
    EXPECT_EQ(Narrow(Bstr(text).get()),
              "<setFailures><failure><path>/device/lid</path><reason>There is no such value</reason></failure>"
              "<failure><path>/device/message</path><reason>The value holds elements</reason></failure>"
              "<failure><path>/device/message</path><reason>The value is too long</reason></failure></setFailures>");
    EXPECT_NE(message().find(">busy<"), std::string::npos);
    EXPECT_TRUE(object->SetData(document.c_str(), true, nullptr, 1)) << "nobody to tell";
}

// The bridge writes each half of a character outside the basic plane by itself.
TEST_F(SampleTransportTest, ReadsAtAndBelowAPathInAsciiWhateverWasSet) {
    const Object object = ConnectInSession();
    const struct {
        const char* sent;
        const char* read;
    } kTexts[] = {{"a\xC3\xB6\xE2\x82\xAC", "a&#246;&#8364;"},
                  {"\xED\xA0\xBD\xED\xB8\x80", "&#128512;"},
                  {"\xED\xB8\x80\xFF\xC3", "&#65533;&#65533;&#65533;"}};
    for (const auto& text : kTexts) {
        EXPECT_TRUE(object->SetData(SetDocument("/device/trays/1/sheets", text.sent).c_str(), false, nullptr, 1));
        EXPECT_EQ(std::string(object->GetData("/device/trays", "", nullptr, 1)),
                  "<?xml version=\"1.0\" encoding=\"UTF-8\"?><deviceData><value path=\"/device/trays/1/sheets\">" +
                      std::string(text.read) +
                      "</value><value path=\"/device/trays/2/sheets\">250</value></deviceData>");
    }
    Bstr slot;
    EXPECT_TRUE(object->GetData("/device/tr\xC3\xA4y", "", slot.put(), 1).empty());
    EXPECT_TRUE(slot.view() == OLESTR("There is no value at /device/tr\u00E4y"));
}

TEST_F(SampleTransportTest, SubscriptionsNameAConsumerAndEndOnce) {
    const Object object = ConnectInSession();
    EXPECT_EQ(Names(object->GetEventProperties("all")), "path value jobUri ");
    EXPECT_EQ(Names(object->GetEventProperties("absent")), "none");
    EXPECT_TRUE(object->SubscribeForEvents("<Subscription/>", nullptr).empty());
    EXPECT_EQ(Reason(), "A subscription names its consumer");
    EXPECT_TRUE(object->Subscribe("<EventName>absent</EventName>", "", "c").empty());
    EXPECT_FALSE(object->SubscribeForEvents(kTicket, nullptr).empty());
    EXPECT_TRUE(object->Resubscribe("subscription-1", "", nullptr));
    EXPECT_EQ(Reason(), "") << "an old reason is taken away";
    for (const char* duration : {"0", "-1", "86401", "1h", "99999999999"}) {
        EXPECT_FALSE(object->Resubscribe("subscription-1", duration, nullptr)) << duration;
    }
    EXPECT_TRUE(object->UnsubscribeForEvents("subscription-1", nullptr));
    EXPECT_FALSE(object->UnsubscribeForEvents("subscription-1", nullptr));
    EXPECT_FALSE(object->Resubscribe("subscription-1", "60", nullptr));
    for (int i = 0; i < 1000; ++i) EXPECT_FALSE(object->Subscribe("", "", "c").empty());
    EXPECT_TRUE(object->Subscribe("", "", "c").empty()) << "too many";
}

}  // namespace
}  // namespace wncom::test
