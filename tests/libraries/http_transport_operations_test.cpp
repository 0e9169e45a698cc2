// Each operation on data and events: what it sends and what comes back.
#include <memory>
#include <utility>

#include "tests/libraries/HttpTransportFixture.h"
#include "tests/support/EventConsumer.h"
#include "wncom/RemoteArray.h"

namespace wncom::test {
namespace {

std::vector<std::string> Names(RemoteArray* array) {
    const std::unique_ptr<RemoteArray> list(array);
    std::vector<std::string> names;
    for (LONG i = 0; i < list->GetLength(); ++i) names.emplace_back(list->GetElements()[i].c_str());
    return names;
}

// Sets one value and gives the text that comes back; "done" for none.
std::string SetState(RmtJobControl& object, const std::string& value, const char* path, bool details) {
    const std::string document = std::string("<setData><prefixes>d=urn:wncom:device-data</prefixes><set><path>") +
                                 path + "</path><value>" + value + "</value></set></setData>";
    WCHAR* text = nullptr;
    const bool done = object.SetData(CString(document.c_str()), details, &text, 1);
    std::string narrow(done ? "done" : "");
    for (const WCHAR* at = text; at && *at; ++at) narrow += static_cast<char>(*at);
    std::free(text);
    return narrow;
}

TEST_F(HttpTransportTest, ValuesAreSetAndRead) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    EXPECT_EQ(SetState(*object, "a &lt; b \xC3\xA9\xE4\xB8\xAD", "//d:state", true), "done");
    ExceptionSlot exception;
    const CString answer = object->GetData("string(//d:state[. != '<'])", "d=urn:wncom:device-data", &exception, 1);
    EXPECT_EQ(ElementText(answer, "value"), "a &lt; b \xE9&#20013;");
    EXPECT_EQ(exception.Text(), "");
    EXPECT_TRUE(object->GetData("//d:absent", "d=urn:wncom:device-data", nullptr, 1).empty()) << "without a slot";
}

TEST_F(HttpTransportTest, FailureDetailsComeOnlyWhenAskedForAndWhereThereIsAPlace) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    EXPECT_TRUE(Contains(SetState(*object, "1", "//d:absent", true), "<path>//d:absent</path>"));
    EXPECT_EQ(SetState(*object, "1", "//d:absent", false), "");
    EXPECT_FALSE(object->SetData("<a/>", true, nullptr, 1));
}

TEST_F(HttpTransportTest, EventsAndTheirPropertiesAreListed) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    EXPECT_EQ(Names(object->GetSupportedEvents()),
              (std::vector<std::string>{"deviceDataChanged", "jobAccepted", "jobDataReceived"}));
    EXPECT_EQ(Names(object->GetEventProperties("jobAccepted")),
              (std::vector<std::string>{"jobId", "jobName", "jobUri"}));
    EXPECT_EQ(ElementText(object->GetEventCapabilities(nullptr), "LongestDuration"), "86400");
}

TEST_F(HttpTransportTest, ListsOfADeviceMayBeEmptyOrLongButHoldNamesOnly) {
    const std::string file = HomePath() + "/body";
    const auto listed = [&](const std::string& body) {
        WriteWholeFile(file, body);
        const DeviceProcess device({"--fault", "events:body=" + file});
        return Names(Make(device.Address())->GetSupportedEvents()).size();
    };
    std::string many;
    for (int i = 0; i < 100'000; ++i) many += "event" + std::to_string(i) + "\r\n";
    EXPECT_EQ(listed(""), 0u);
    EXPECT_EQ(listed("\n\na"), 1u);
    EXPECT_EQ(listed(many), 100'000u);
    EXPECT_EQ(FailureOf([&] { listed("a\n<b>\n"); }), "the device gave an invalid name");
    EXPECT_EQ(FailureOf([&] { listed(std::string(129, 'a')); }), "the device gave an invalid name");
}

TEST_F(HttpTransportTest, SubscriptionInThreeTextsIsSentAsTheyMean) {
    const DeviceProcess device;
    EventConsumer consumer;
    const Object object = MakeInSession(device.Address());
    // The texts arrive in the narrow code page.
    const CString id = object->Subscribe("<S><EventName>deviceDataChanged</EventName></S>",
                                         "<F><FilterOn><Name>value</Name><Value>\xE9</Value></FilterOn></F>",
                                         consumer.Address().c_str());
    for (const char* value : {"b", "\xC3\xA9"}) SetState(*object, value, "//d:state", false);
    ASSERT_EQ(consumer.Wait(1).size(), 1u);
    EXPECT_EQ(ElementText(consumer.Wait(1)[0], "SubscriptionID"), id.c_str());
    object->Unsubscribe(id);
    EXPECT_TRUE(Contains(FailureOf([&] { object->Unsubscribe(id); }), "There is no such subscription"));
}

TEST_F(HttpTransportTest, TicketIsAnsweredRenewedAndCancelled) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    ExceptionSlot exception;
    const CString result = object->SubscribeForEvents(
        "<Subscription><ConsumerInterface>http://127.0.0.1:9/</ConsumerInterface></Subscription>", &exception);
    const CString id(ElementText(result, "SubscriptionID").c_str());
    EXPECT_TRUE(object->Resubscribe(id, "86400", &exception));
    EXPECT_TRUE(object->UnsubscribeForEvents(id, &exception));
    EXPECT_EQ(exception.Text(), "");
    EXPECT_FALSE(object->Resubscribe(id, "60", &exception));
    EXPECT_EQ(exception.Text(), "There is no such subscription");
}

TEST_F(HttpTransportTest, SubscriptionWhoseAnswerWasLostHasNoTwin) {
    const DeviceProcess device({"--fault", "subscribe:lost-answer"});
    EventConsumer consumer;
    EventConsumer other;
    const Object object = MakeInSession(device.Address());
    object->Unsubscribe(object->Subscribe("", "", consumer.Address().c_str()));
    object->Subscribe("", "", other.Address().c_str());
    SetState(*object, "a", "//d:state", false);
    EXPECT_EQ(other.Wait(1).size(), 1u);
    EXPECT_TRUE(consumer.Wait(0).empty());
}

TEST_F(HttpTransportTest, InvalidIdOrNameIsRefusedBeforeItIsSent) {
    const Object object = Make("http://127.0.0.1:1");
    ExceptionSlot exception;
    for (const char* id : {"", "a\r\nX: y", "../jobs", "a b", "\xE9"}) {
        if (*id) {
            EXPECT_EQ(FailureOf([&] { object->SetSessionID(id); }), "invalid session id") << id;
        }
        EXPECT_EQ(FailureOf([&] { object->GetEventProperties(id); }), "invalid event name") << id;
        EXPECT_EQ(FailureOf([&] { object->Unsubscribe(id); }), "invalid subscription id") << id;
        EXPECT_EQ(FailureOf([&] { object->Resubscribe(id, "60", &exception); }), "invalid subscription id") << id;
    }
    EXPECT_EQ(exception.Text(), "invalid subscription id");
}

}  // namespace
}  // namespace wncom::test
