// Subscriptions and the events that answer them.
#include <thread>

#include "tests/support/EventConsumer.h"
#include "tests/support/RawServer.h"
#include "tests/tools/wndevice/WndeviceFixture.h"

namespace wncom::test {
namespace {

constexpr const char* kNobody = "http://127.0.0.1:9/";

std::string Ticket(const std::string& consumer, const std::string& content = "") {
    return "<Subscription>" + content + "<ConsumerInterface>" + consumer + "</ConsumerInterface></Subscription>";
}
std::string Filter(const std::string& name, const std::string& value) {
    return "<FilterOn><Name>" + name + "</Name><Value>" + value + "</Value></FilterOn>";
}
std::string Property(const std::string& name, const std::string& value) {
    return "<Name>" + name + "</Name>\n    <Value>" + value + "</Value>";
}

class WndeviceEventTest : public WndeviceTest {
protected:
    // The new subscription's id.
    std::string Subscribe(const std::string& consumer, const std::string& content = "") {
        return ElementText(Post("/subscription-tickets", Ticket(consumer, content))->body, "SubscriptionID");
    }
    // Each a change of the device data, so an event of its own.
    void Change(const std::string& value, int times = 1) {
        std::string sets;
        for (int i = 0; i < times; ++i) sets += SetValue("//d:operatorMessage", value);
        ASSERT_EQ(Set(sets)->status, 200);
    }
    httplib::Result Renew(const std::string& id, const std::string& duration) {
        return Post("/subscriptions/" + id, "<renewal><Duration>" + duration + "</Duration></renewal>");
    }
};

TEST_F(WndeviceEventTest, EventsAndTheirPropertiesAreListed) {
    EXPECT_EQ(client.Get("/events")->body, "deviceDataChanged\njobAccepted\njobDataReceived\n");
    EXPECT_EQ(client.Get("/events/jobAccepted")->body, "jobId\njobName\njobUri\n");
    EXPECT_EQ(client.Get("/events/all")->body, "dataBytes\njobId\njobName\njobUri\npath\nvalue\n");
    ExpectRefusal(client.Get("/events/absent"), 404, "There is no such event");
    const std::string ticket = client.Get("/event-capabilities", {{"Session-Id", session}})->body;
    EXPECT_TRUE(Contains(ticket, "<EventName>deviceDataChanged</EventName>\n    <Name>path</Name>"));
    EXPECT_EQ(ElementText(ticket, "LongestDuration"), "86400");
}

TEST_F(WndeviceEventTest, JobIsToldToTheConsumerInOrder) {
    EventConsumer consumer;
    const std::string id = Subscribe(consumer.Address(), "<ClientCookie>c &lt; 7</ClientCookie>");
    const std::string job = ElementText(
        Post("/jobs", "<t><u/><!-- --><jobName>Programme</jobName><jobName>b</jobName></t>")->body, "JobId");
    client.Put("/jobs/" + job + "/data", "%PDF-", "application/pdf");

    const std::vector<std::string> events = consumer.Wait(2);

    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(ElementText(events[0], "EventName"), "jobAccepted");
    EXPECT_EQ(ElementText(events[0], "SubscriptionID"), id);
    EXPECT_EQ(ElementText(events[0], "ClientCookie"), "c &lt; 7");
    EXPECT_EQ(ElementText(events[0], "Time").size(), 20u);
    EXPECT_TRUE(Contains(events[0], Property("jobId", job)));
    EXPECT_TRUE(Contains(events[0], Property("jobName", "Programme")));
    EXPECT_EQ(ElementText(events[1], "EventName"), "jobDataReceived");
    EXPECT_EQ(ElementText(events[1], "Sequence"), "2");
    EXPECT_TRUE(Contains(events[1], Property("jobUri", device.Address() + "/jobs/" + job)));
    EXPECT_TRUE(Contains(events[1], Property("dataBytes", "5")));
}

TEST_F(WndeviceEventTest, OnlyTheEventsNamedAndFilteredForAreDelivered) {
    EventConsumer named;
    EventConsumer filtered;
    Subscribe(named.Address(), "<EventName>jobAccepted</EventName>");
    Subscribe(filtered.Address(), "<EventName>all</EventName>" + Filter("value", "b") + Filter("value", "\xC3\xA9") +
                                      Filter("path", "//d:operatorMessage"));
    for (const char* value : {"a", "b", "\xC3\xA9"}) Change(value);
    Job();

    const std::vector<std::string> events = filtered.Wait(2);
    ASSERT_EQ(events.size(), 2u);
    EXPECT_TRUE(Contains(events[0], "<Value>b</Value>"));
    EXPECT_TRUE(Contains(events[1], "<Value>\xC3\xA9</Value>"));
    ASSERT_EQ(named.Wait(1).size(), 1u);
    EXPECT_EQ(ElementText(named.Wait(1)[0], "EventName"), "jobAccepted");
}

TEST_F(WndeviceEventTest, SubscriptionInPartsMeansTheSameAsATicket) {
    EventConsumer consumer;
    const auto parts = [&](const std::string& info, const std::string& filters) {
        return Post("/subscriptions", "<subscriptionParts><subscriptionInfo>" + info +
                                          "</subscriptionInfo><filterProperties>" + filters +
                                          "</filterProperties><consumerInterface>" + consumer.Address() +
                                          "</consumerInterface></subscriptionParts>");
    };
    ASSERT_EQ(parts("&lt;S>&lt;EventName>deviceDataChanged&lt;/EventName>&lt;/S>",
                    "&lt;F>&lt;FilterOn>&lt;Name>value&lt;/Name>&lt;Value>b&lt;/Value>&lt;/FilterOn>&lt;/F>")
                  ->status,
              201);
    Change("a");
    Change("b");
    ASSERT_EQ(consumer.Wait(1).size(), 1u);
    EXPECT_TRUE(Contains(consumer.Wait(1)[0], "<Value>b</Value>"));
    EXPECT_EQ(parts("", "")->body.size(), 32u);
    ExpectRefusal(parts("no document", ""), 422, "not well-formed");
}

TEST_F(WndeviceEventTest, TicketIsAnsweredRenewedAndCancelled) {
    EventConsumer cancelled;
    EventConsumer other;
    const auto result = Post("/subscription-tickets", Ticket(cancelled.Address(), "<Duration>600</Duration>"));
    const std::string id = ElementText(result->body, "SubscriptionID");
    EXPECT_EQ(result->status, 201);
    EXPECT_EQ(ElementText(result->body, "Duration"), "600");
    EXPECT_EQ(ElementText(result->body, "Expires").size(), 20u);
    EXPECT_EQ(Renew(id, "86400")->status, 200);
    EXPECT_EQ(Renew(id, "")->status, 200) << "as long as last time";
    for (const char* duration : {"0", "-1", "86401", "99999999999999999999", "1.5", "ten", " 5"}) {
        ExpectRefusal(Renew(id, duration), 422, "The duration is not a number of seconds from 1 to 86400");
    }
    Subscribe(other.Address());

    EXPECT_EQ(client.Delete("/subscriptions/" + id)->status, 200);
    Change("a");

    EXPECT_EQ(other.Wait(1).size(), 1u);
    EXPECT_TRUE(cancelled.Wait(0).empty());
    ExpectRefusal(client.Delete("/subscriptions/" + id), 404, "There is no such subscription");
    ExpectRefusal(Renew(id, "60"), 404, "There is no such subscription");
}

TEST_F(WndeviceEventTest, SubscriptionLastsAsLongAsItsDuration) {
    EventConsumer expired;
    EventConsumer renewed;
    const std::string first = Subscribe(renewed.Address(), "<Duration>1</Duration>");
    EXPECT_EQ(Renew(first, "60")->status, 200);
    const std::string second = Subscribe(expired.Address(), "<Duration>1</Duration>");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));

    Change("a");

    EXPECT_EQ(renewed.Wait(1).size(), 1u);
    EXPECT_TRUE(expired.Wait(0).empty());
    EXPECT_EQ(Renew(second, "60")->status, 404);
}

TEST_F(WndeviceEventTest, RepeatedSubscriptionHasNoTwin) {
    EventConsumer consumer;
    const httplib::Headers id = {{"Request-Id", std::string(32, 'b')}};
    const std::string ticket = Ticket(consumer.Address(), "<Duration>60</Duration>");
    const auto first = Post("/subscription-tickets", ticket, id);
    EXPECT_EQ(ElementText(Post("/subscription-tickets", ticket, id)->body, "SubscriptionID"),
              ElementText(first->body, "SubscriptionID"));
}

TEST_F(WndeviceEventTest, ConsumersThatHangMisbehaveOrAreGoneDelayNobody) {
    EventConsumer hanging;
    EventConsumer good;
    const RawServer garbage("garbage\n");
    const RawServer endless("HTTP/1.1 200 OK\r\nA: " + std::string(1'000'000, 'a'));
    hanging.Hold();
    const std::string id = Subscribe(hanging.Address());
    for (const std::string& consumer : {std::string(kNobody), garbage.Address(), endless.Address()}) {
        Subscribe(consumer);
    }
    Subscribe(good.Address());

    for (int i = 0; i < 20; ++i) Change("a");

    EXPECT_EQ(good.Wait(20).size(), 20u);
    EXPECT_TRUE(hanging.Wait(0).empty());
    EXPECT_EQ(client.Delete("/subscriptions/" + id)->status, 200);
    EXPECT_EQ(device.Stop(), 0);
}

TEST_F(WndeviceEventTest, RefusedEventIsTriedAgainUnlessBestEffortWasAskedFor) {
    EventConsumer retried;
    EventConsumer once;
    retried.Refuse(2);
    once.Refuse(1);
    Subscribe(retried.Address());
    Subscribe(once.Address(), "<ReliabilityOption>bestEffort</ReliabilityOption>");

    Change("a");
    Change("b");

    ASSERT_EQ(retried.Wait(2).size(), 2u);
    EXPECT_EQ(ElementText(retried.Wait(2)[0], "Sequence"), "1");
    EXPECT_EQ(ElementText(retried.Wait(2)[1], "Sequence"), "2");
    ASSERT_EQ(once.Wait(1).size(), 1u);
    EXPECT_EQ(ElementText(once.Wait(1)[0], "Sequence"), "2");
}

TEST_F(WndeviceEventTest, QueueOfASlowConsumerIsBoundedAndTheGapShows) {
    EventConsumer consumer;
    consumer.Hold();
    Subscribe(consumer.Address());
    Change("a", 1000);
    Change("a", 1000);
    consumer.Release();

    EXPECT_GE(consumer.Wait(1000).size(), 1000u);
    Change("last");
    std::size_t count = 1000;
    while (ElementText(consumer.Wait(count).back(), "Sequence") != "2001" && count < 2000) ++count;
    EXPECT_LE(consumer.Wait(0).size(), 1003u);
}

TEST_F(WndeviceEventTest, SubscriptionThatMakesNoSenseIsRefusedWithAReason) {
    std::string many;
    for (int i = 0; i < 101; ++i) many += Filter("jobId", "1");
    const std::pair<std::string, const char*> cases[] = {
        {"<Other/>", "The document is not a Subscription"},
        {Ticket(kNobody, "<EventName>fire</EventName>"), "There is no such event: fire"},
        {Ticket(kNobody, "<ReliabilityOption>x</ReliabilityOption>"), "neither retry nor bestEffort"},
        {Ticket(kNobody, "<ClientCookie>" + std::string(1025, 'a') + "</ClientCookie>"), "ClientCookie is too long"},
        {Ticket(kNobody, "<ClientCookie>a&#10;b</ClientCookie>"), "contains control characters"},
        {Ticket(kNobody, "<FilterOn><Name>jobId</Name></FilterOn>"), "not a pair"},
        {Ticket(kNobody, "<FilterOn><Name>a</Name><Name>b</Name><Value>c</Value></FilterOn>"), "not a pair"},
        {Ticket(kNobody, Filter("colour", "1")), "has the property colour"},
        {Ticket(kNobody, "<EventName>deviceDataChanged</EventName>" + Filter("jobId", "1")),
         "has the property jobId"},
        {Ticket(kNobody, many), "more than 100 filters"},
        {Ticket(kNobody, "<Duration>0</Duration>"), "The duration is not a number"},
        {Ticket(""), "does not begin with http://"},
        {Ticket("http://192.0.2.1/"), "not an http address on loopback"},
        {Ticket("http://127.0.0.1.example/"), "not an http address on loopback"},
        {Ticket("https://127.0.0.1/"), "not an http address on loopback"},
        {Ticket("http://user@127.0.0.1/"), "contains a user name or a password"},
        {Ticket("http://127.0.0.1/" + std::string(1024, 'a')), "the consumer's address is too long"},
    };
    for (const auto& [ticket, reason] : cases) ExpectRefusal(Post("/subscription-tickets", ticket), 422, reason);
}

TEST_F(WndeviceEventTest, AHundredSubscriptionsAreKeptAndMoreAreTakenWhenSomeEnd) {
    EventConsumer consumer;
    std::string last;
    for (int i = 0; i < 100; ++i) last = Subscribe(consumer.Address());
    ExpectRefusal(Post("/subscription-tickets", Ticket(kNobody)), 503, "The device keeps no more subscriptions");
    client.Delete("/subscriptions/" + last);
    while (Subscribe(consumer.Address()).empty()) std::this_thread::yield();
}

}  // namespace
}  // namespace wncom::test
