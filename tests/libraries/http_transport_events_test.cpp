// Events over the HTTP transport: lists, tickets and the life of a subscription.
#include <gmock/gmock.h>

#include <memory>
#include <thread>

#include "tests/libraries/EventsFixture.h"
#include "wncom/RemoteArray.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> Names(RemoteArray* array) {
    const std::unique_ptr<RemoteArray> list(array);
    std::vector<std::string> names;
    for (LONG i = 0; i < list->GetLength(); ++i) names.emplace_back(list->GetElements()[i].c_str());
    return names;
}

std::string Ticket(const std::string& consumer, const std::string& content = "") {
    return "<Subscription>" + content + "<ConsumerInterface>" + consumer + "</ConsumerInterface></Subscription>";
}

TEST_F(HttpTransportEventsTest, EventsAndTheirPropertiesAreListedWithoutASession) {
    const DeviceProcess device;
    const Object object = Make(device.Address());
    EXPECT_THAT(Names(object->GetSupportedEvents()),
                ElementsAre("deviceDataChanged", "jobAccepted", "jobDataReceived"));
    EXPECT_THAT(Names(object->GetEventProperties("jobAccepted")), ElementsAre("jobId", "jobName", "jobUri"));
    EXPECT_THAT(Names(object->GetEventProperties("all")),
                ElementsAre("dataBytes", "jobId", "jobName", "jobUri", "path", "value"));
}

TEST_F(HttpTransportEventsTest, PropertiesOfWhatIsNoEventAreRefused) {
    const DeviceProcess device;
    const Object object = Make(device.Address());
    EXPECT_THAT(FailureOf([&] { object->GetEventProperties("absent"); }), HasSubstr("There is no such event"));
    for (const char* name : {"", "../sessions", "a b", "\xC3\xA9"}) {
        EXPECT_EQ(FailureOf([&] { object->GetEventProperties(name); }), "the text is no event name") << name;
    }
}

TEST_F(HttpTransportEventsTest, ListsOfADeviceMayBeEmptyOrLongButHoldNamesOnly) {
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
    EXPECT_EQ(FailureOf([&] { listed("a\n<b>\n"); }), "the device gave a name that is none");
    EXPECT_EQ(FailureOf([&] { listed(std::string(3'000'000, 'a')); }), "the device gave a name that is none");
}

TEST_F(HttpTransportEventsTest, TicketIsAnsweredRenewedAndCancelled) {
    const DeviceProcess device;
    EventConsumer consumer;
    const Object object = MakeInSession(device.Address());
    ExceptionSlot exception;

    const CString result =
        object->SubscribeForEvents(Ticket(consumer.Address(), "<Duration>600</Duration>").c_str(), &exception);
    const std::string id = ElementText(result, "SubscriptionID");

    EXPECT_EQ(ElementText(result, "Duration"), "600");
    EXPECT_EQ(ElementText(result, "Expires").size(), 20u);
    EXPECT_TRUE(object->Resubscribe(id.c_str(), "86400", &exception));
    EXPECT_TRUE(object->Resubscribe(id.c_str(), "", &exception)) << "as long as last time";
    EXPECT_TRUE(object->UnsubscribeForEvents(id.c_str(), &exception));
    EXPECT_EQ(exception.Text(), "");
    EXPECT_FALSE(object->UnsubscribeForEvents(id.c_str(), &exception));
    EXPECT_EQ(exception.Text(), "There is no such subscription");
    EXPECT_FALSE(object->Resubscribe(id.c_str(), "60", &exception));
    EXPECT_EQ(exception.Text(), "There is no such subscription");
}

TEST_F(HttpTransportEventsTest, SubscriptionLastsAsLongAsItsDuration) {
    const DeviceProcess device;
    EventConsumer expired;
    EventConsumer renewed;
    const Object object = MakeInSession(device.Address());
    const std::string twoSeconds = "<Duration>2</Duration>";
    const auto subscribe = [&](const EventConsumer& consumer) {
        return ElementText(object->SubscribeForEvents(Ticket(consumer.Address(), twoSeconds).c_str(), nullptr),
                           "SubscriptionID");
    };
    EXPECT_TRUE(object->Resubscribe(subscribe(renewed).c_str(), "60", nullptr));
    const std::string id = subscribe(expired);
    std::this_thread::sleep_for(std::chrono::milliseconds(2100));

    Change(*object, "a");

    EXPECT_EQ(renewed.Wait(1).size(), 1u);
    EXPECT_TRUE(expired.Wait(0).empty());
    EXPECT_FALSE(object->Resubscribe(id.c_str(), "60", nullptr));
}

TEST_F(HttpTransportEventsTest, DurationOutOfReasonIsRefused) {
    const DeviceProcess device;
    EventConsumer consumer;
    const Object object = MakeInSession(device.Address());
    const std::string id = Subscribe(*object, consumer);
    for (const char* duration : {"0", "-1", "86401", "99999999999999999999", "1.5", "ten", " 5"}) {
        ExceptionSlot exception;
        EXPECT_FALSE(object->Resubscribe(id.c_str(), duration, &exception)) << duration;
        EXPECT_EQ(exception.Text(), "The duration is no number of seconds from 1 to 86400");
    }
}

TEST_F(HttpTransportEventsTest, CapabilitiesTicketTellsEventsAndDurations) {
    const DeviceProcess device;
    const CString ticket = MakeInSession(device.Address())->GetEventCapabilities(nullptr);
    EXPECT_THAT(std::string(ticket.c_str()),
                HasSubstr("<EventName>deviceDataChanged</EventName>\n    <Name>path</Name>"));
    EXPECT_EQ(ElementText(ticket, "LongestDuration"), "86400");
    ExceptionSlot exception;
    EXPECT_TRUE(Make("http://127.0.0.1:" + device.Address().substr(device.Address().rfind(':') + 1) + "/absent")
                    ->GetEventCapabilities(&exception)
                    .empty());
    EXPECT_THAT(exception.Text(), HasSubstr("status 404"));
}

TEST_F(HttpTransportEventsTest, SubscriptionsThatMakeNoSenseAreRefusedWithAReason) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    const std::string consumer = "http://127.0.0.1:9/";
    std::string many;
    for (int i = 0; i < 101; ++i) many += "<FilterOn><Name>jobId</Name><Value>1</Value></FilterOn>";
    const std::pair<std::string, const char*> cases[] = {
        {"text", "not well-formed"},
        {"<Other/>", "The document is no subscription ticket"},
        {Ticket(consumer, "<EventName>fire</EventName>"), "There is no such event: fire"},
        {Ticket(consumer, "<ReliabilityOption>x</ReliabilityOption>"), "neither retry nor bestEffort"},
        {Ticket(consumer, "<ClientCookie>" + std::string(1025, 'a') + "</ClientCookie>"), "ClientCookie is too long"},
        {Ticket(consumer, "<ClientCookie>&#1;</ClientCookie>"), "holds control characters"},
        {Ticket(consumer, "<FilterOn><Name>jobId</Name></FilterOn>"), "not a pair"},
        {Ticket(consumer, "<FilterOn><Name>a</Name><Name>b</Name><Value>c</Value></FilterOn>"), "not a pair"},
        {Ticket(consumer, "<FilterOn><Name>colour</Name><Value>1</Value></FilterOn>"), "has the property colour"},
        {Ticket(consumer, "<EventName>deviceDataChanged</EventName>" + many), "has the property jobId"},
        {Ticket(consumer, many), "more than 100 filters"},
        {Ticket(consumer, "<Duration>0</Duration>"), "The duration is no number"},
    };
    for (const auto& [ticket, reason] : cases) {
        ExceptionSlot exception;
        EXPECT_TRUE(object->SubscribeForEvents(ticket.c_str(), &exception).empty()) << reason;
        EXPECT_THAT(exception.Text(), HasSubstr(reason));
    }
    EXPECT_THAT(FailureOf([&] { object->Subscribe("no document", "", consumer.c_str()); }),
                HasSubstr("The subscription is not well-formed XML"));
}

TEST_F(HttpTransportEventsTest, ConsumerElsewhereThanOnLoopbackIsRefused) {
    const DeviceProcess device;
    const Object object = Make(device.Address());
    for (const char* address :
         {"", "no address", "http://192.0.2.1/", "http://127.0.0.1.example/", "https://127.0.0.1/",
          "file:///etc/passwd", "http://user@127.0.0.1/", "http://127.0.0.1:99999/"}) {
        EXPECT_THAT(FailureOf([&] { object->Subscribe("", "", address); }),
                    HasSubstr("The consumer's address is no http address on loopback"))
            << address;
    }
}

TEST_F(HttpTransportEventsTest, IdThatIsNoneIsRefusedBeforeItIsSent) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    ExceptionSlot exception;
    EXPECT_EQ(FailureOf([&] { object->Resubscribe("../jobs", "60", &exception); }), "the text is no subscription id");
    EXPECT_EQ(exception.Text(), "the text is no subscription id");
}

TEST_F(HttpTransportEventsTest, DeviceKeepsAHundredSubscriptionsAndTakesMoreWhenSomeEnd) {
    const DeviceProcess device;
    const Object object = Make(device.Address());
    EventConsumer consumer;
    std::string last;
    for (int i = 0; i < 100; ++i) last = Subscribe(*object, consumer);
    EXPECT_THAT(FailureOf([&] { Subscribe(*object, consumer); }), HasSubstr("keeps no more subscriptions"));
    object->Unsubscribe(last.c_str());
    while (FailureOf([&] { Subscribe(*object, consumer); }) != "none") std::this_thread::yield();
}

}  // namespace
}  // namespace wncom::test
