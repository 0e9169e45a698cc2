// Events on their way from the device to its consumers.
#include <gmock/gmock.h>

#include "tests/libraries/EventsFixture.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(HttpTransportEventsTest, JobsWayIsToldToTheConsumerInOrder) {
    const DeviceProcess device;
    EventConsumer consumer;
    const std::string id = Subscribe(*Make(device.Address()), consumer,
                                     "<Subscription><ClientCookie>c &lt; 7</ClientCookie></Subscription>");
    const CString answer = MakeInSession(device.Address())->SubmitJob(kTicket, 1);
    const std::string job = ElementText(answer, "JobId");
    httplib::Client(device.Address()).Put("/jobs/" + job + "/data", "%PDF-", "application/pdf");

    const std::vector<std::string> events = consumer.Wait(2);

    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(ElementText(events[0], "EventName"), "jobAccepted");
    EXPECT_EQ(ElementText(events[0], "SubscriptionID"), id);
    EXPECT_EQ(ElementText(events[0], "ClientCookie"), "c &lt; 7");
    EXPECT_THAT(events[0], HasSubstr("<Name>jobId</Name>\n    <Value>" + job + "</Value>"));
    EXPECT_THAT(events[0], HasSubstr("<Name>jobName</Name>\n    <Value>Programme</Value>"));
    EXPECT_EQ(ElementText(events[1], "EventName"), "jobDataReceived");
    EXPECT_EQ(ElementText(events[1], "Sequence"), "2");
    EXPECT_THAT(events[1], HasSubstr("<Name>dataBytes</Name>\n    <Value>5</Value>"));
}

TEST_F(HttpTransportEventsTest, OnlyTheEventsNamedAndFilteredForAreDelivered) {
    const DeviceProcess device;
    EventConsumer named;
    EventConsumer filtered;
    const Object object = MakeInSession(device.Address());
    Subscribe(*object, named, "<S><EventName>jobAccepted</EventName></S>");
    Subscribe(*object, filtered, "<S><EventName>deviceDataChanged</EventName></S>",
              "<F><FilterOn><Name>value</Name><Value>b</Value></FilterOn>"
              "<FilterOn><Name>value</Name><Value>\xE9</Value></FilterOn></F>");

    for (const char* value : {"a", "b", "\xC3\xA9"}) Change(*object, value);
    object->SubmitJob(kTicket, 1);

    EXPECT_THAT(filtered.Wait(2), ElementsAre(HasSubstr("<Value>b</Value>"), HasSubstr("<Value>\xC3\xA9</Value>")));
    EXPECT_THAT(named.Wait(1), ElementsAre(HasSubstr("<EventName>jobAccepted</EventName>")));
}

TEST_F(HttpTransportEventsTest, CancelledSubscriptionGetsNoMore) {
    const DeviceProcess device;
    EventConsumer cancelled;
    EventConsumer other;
    const Object object = MakeInSession(device.Address());
    const std::string id = Subscribe(*object, cancelled);
    Subscribe(*object, other);
    object->Unsubscribe(id.c_str());

    Change(*object, "a");

    EXPECT_EQ(other.Wait(1).size(), 1u);
    EXPECT_TRUE(cancelled.Wait(0).empty());
    EXPECT_THAT(FailureOf([&] { object->Unsubscribe(id.c_str()); }), HasSubstr("There is no such subscription"));
}

TEST_F(HttpTransportEventsTest, SubscriptionWhoseAnswerWasLostHasNoTwin) {
    const DeviceProcess device({"--fault", "subscribe:lost-answer"});
    EventConsumer consumer;
    EventConsumer other;
    const Object object = MakeInSession(device.Address());
    object->Unsubscribe(Subscribe(*object, consumer).c_str());
    Subscribe(*object, other);
    Change(*object, "a");
    EXPECT_EQ(other.Wait(1).size(), 1u);
    EXPECT_TRUE(consumer.Wait(0).empty());
}

TEST_F(HttpTransportEventsTest, ConsumersThatHangOrAreGoneDelayNobody) {
    DeviceProcess device;
    EventConsumer hanging;
    EventConsumer good;
    hanging.Hold();
    const Object object = MakeInSession(device.Address());
    const std::string id = Subscribe(*object, hanging);
    object->Subscribe("", "", "http://127.0.0.1:1/");
    Subscribe(*object, good);

    for (int i = 0; i < 20; ++i) Change(*object, "a");

    EXPECT_EQ(good.Wait(20).size(), 20u);
    EXPECT_TRUE(hanging.Wait(0).empty());
    object->Unsubscribe(id.c_str());
    EXPECT_EQ(device.Stop(), 0);
}

TEST_F(HttpTransportEventsTest, RefusedEventIsTriedAgainUnlessBestEffortWasAskedFor) {
    const DeviceProcess device;
    EventConsumer retried;
    EventConsumer once;
    retried.Refuse(2);
    once.Refuse(1);
    const Object object = MakeInSession(device.Address());
    Subscribe(*object, retried);
    Subscribe(*object, once, "<S><ReliabilityOption>bestEffort</ReliabilityOption></S>");

    Change(*object, "a");
    Change(*object, "b");

    EXPECT_THAT(retried.Wait(2), ElementsAre(HasSubstr("<Value>a</Value>"), HasSubstr("<Value>b</Value>")));
    EXPECT_THAT(once.Wait(1), ElementsAre(HasSubstr("<Sequence>2</Sequence>")));
}

TEST_F(HttpTransportEventsTest, QueueOfASlowConsumerIsBoundedAndTheGapShows) {
    const DeviceProcess device;
    EventConsumer consumer;
    consumer.Hold();
    const Object object = MakeInSession(device.Address());
    Subscribe(*object, consumer);
    Change(*object, "a", 1000);
    Change(*object, "a", 1000);
    consumer.Release();

    EXPECT_GE(consumer.Wait(1000).size(), 1000u);
    Change(*object, "last");
    std::size_t count = 1000;
    while (ElementText(consumer.Wait(count).back(), "Sequence") != "2001" && count < 2000) ++count;
    EXPECT_LE(consumer.Wait(0).size(), 1003u);
}

}  // namespace
}  // namespace wncom::test
