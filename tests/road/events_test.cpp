// A subscription's way from the client to the device, and the events' way to the consumer.
#include "tests/road/RoadFixture.h"
#include "tests/support/ElementText.h"
#include "tests/support/EventConsumer.h"

namespace wncom::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class EventsRoadTest : public RoadFixture {
protected:
    std::string Ticket(const std::string& content = "") const {
        return "<Subscription>" + content + "<ConsumerInterface>" + m_consumer.Address() +
               "</ConsumerInterface></Subscription>";
    }
    // The subscription's id.
    std::string Subscribe(const std::string& ticket) const {
        Bstr exception;
        Bstr result;
        EXPECT_EQ(Hex(m_tickets->SubscribeForEvents(Text(ticket).get(), exception.put(), result.put())), Hex(S_OK));
        EXPECT_EQ(Narrow(exception.get()), "");
        return ElementText(Narrow(result.get()), "SubscriptionID");
    }
    // "0x80004005, words of the device".
    template <class Operation>
    static std::string Outcome(Operation operation) {
        Bstr exception;
        const HRESULT status = operation(exception.put());
        return Hex(status) + ", " + Narrow(exception.get());
    }
    std::string Renew(const std::string& id, const char* duration) const {
        return Outcome(
            [&](BSTR* exception) { return m_tickets->Resubscribe(Text(id).get(), Text(duration).get(), exception); });
    }
    std::string Cancel(const std::string& id) const {
        return Outcome([&](BSTR* exception) { return m_tickets->UnsubscribeForEvents(Text(id).get(), exception); });
    }

    const DeviceProcess m_device;
    EventConsumer m_consumer;
    const CPComPtr<IWendrel> m_agent = Agent(m_device.Address());
    const CPComPtr<IComBaseEvent> m_events = Ask<IComBaseEvent>(m_agent);
    const CPComPtr<IWNEventAccess> m_tickets = Ask<IWNEventAccess>(m_agent);
};

TEST_F(EventsRoadTest, TheDevicesEventsAndPropertiesAreListed) {
    Bstr list;
    EXPECT_EQ(Hex(m_events->GetSupportedEvents(nullptr, nullptr, list.put())), Hex(S_OK));
    EXPECT_EQ(Narrow(list.get()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<SupportedEvents>\n  <Event>deviceDataChanged</Event>\n"
              "  <Event>jobAccepted</Event>\n  <Event>jobDataReceived</Event>\n</SupportedEvents>\n");
    EXPECT_EQ(Hex(m_events->GetEventProperties(Text("jobAccepted").get(), nullptr, nullptr, list.put())), Hex(S_OK));
    EXPECT_THAT(Narrow(list.get()), HasSubstr("  <Name>jobId</Name>\n  <Name>jobName</Name>\n"));
    Bstr exception;
    EXPECT_EQ(Hex(m_tickets->GetEventCapabilities(exception.put(), list.put())), Hex(S_OK));
    EXPECT_THAT(Narrow(list.get()), HasSubstr("<LongestDuration>86400</LongestDuration>"));
}

TEST_F(EventsRoadTest, ASubmissionReachesTheConsumer) {
    const std::string id = Subscribe(Ticket("<EventName>jobAccepted</EventName><ClientCookie>desk</ClientCookie>"));
    EXPECT_EQ(Submit(m_agent), Hex(S_OK));
    const std::vector<std::string> events = m_consumer.Wait(1);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_THAT(events[0], AllOf(HasSubstr("<SubscriptionID>" + id + "<"), HasSubstr(">jobAccepted<"),
                                 HasSubstr(">desk<"), HasSubstr(">Programme<"), HasSubstr(m_device.Jobs()[0])));
}

TEST_F(EventsRoadTest, ASubscriptionIsRenewedAndEndsWithItsCancellation) {
    const std::string id = Subscribe(Ticket());
    EXPECT_EQ(Renew(id, "600"), Hex(S_OK) + ", ");
    EXPECT_THAT(Renew(id, "never"), testing::StartsWith(Hex(E_FAIL) + ", "));
    EXPECT_EQ(Cancel(id), Hex(S_OK) + ", ");

    EXPECT_EQ(Cancel(id), Hex(E_FAIL) + ", There is no such subscription");
    EXPECT_EQ(Renew(id, "600"), Hex(E_FAIL) + ", There is no such subscription");
    // Only the subscription that is still there hears of the job.
    const std::string other = Subscribe(Ticket());
    EXPECT_EQ(Submit(m_agent), Hex(S_OK));
    const std::vector<std::string> events = m_consumer.Wait(1);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_THAT(events[0], HasSubstr(other));
}

TEST_F(EventsRoadTest, ARefusedTicketBringsTheDevicesWords) {
    Bstr result;
    EXPECT_THAT(Outcome([&](BSTR* exception) {
                    return m_tickets->SubscribeForEvents(Text("<Subscription/>").get(), exception, result.put());
                }),
                AllOf(testing::StartsWith(Hex(E_FAIL) + ", "), HasSubstr("no http address")));
    EXPECT_FALSE(result);
}

TEST_F(EventsRoadTest, ASubscriptionInThreeTextsFiltersAndEnds) {
    const char* const filters =
        "<Filters><FilterOn><Name>jobName</Name><Value>Programme</Value></FilterOn></Filters>";
    Bstr exception;
    Bstr id;
    ASSERT_EQ(Hex(m_events->Subscribe(nullptr, Text(filters).get(), Text(m_consumer.Address()).get(), nullptr,
                                      exception.put(), id.put())),
              Hex(S_OK));
    EXPECT_EQ(Narrow(exception.get()), "No Info");
    CPComPtr<IUnknown> answer;
    EXPECT_EQ(Hex(m_agent->SendIntentTicket(Text("<t><jobName>Other</jobName></t>").get(), answer.put())), Hex(S_OK));
    EXPECT_EQ(Submit(m_agent), Hex(S_OK));
    const std::vector<std::string> events = m_consumer.Wait(1);
    ASSERT_EQ(events.size(), 1U) << "the filtered job and the other one";
    EXPECT_THAT(events[0], AllOf(HasSubstr(">Programme<"), HasSubstr("<Sequence>1</Sequence>")));

    EXPECT_EQ(Hex(m_events->Unsubscribe(id.get(), nullptr, nullptr)), Hex(S_OK));
    EXPECT_EQ(Cancel(Narrow(id.get())), Hex(E_FAIL) + ", There is no such subscription");
}

TEST_F(EventsRoadTest, WithoutADeviceNothingIsSubscribedAndTheListIsEmpty) {
    DeviceProcess gone;
    const CPComPtr<IWendrel> agent = Agent(gone.Address());
    const auto events = Ask<IComBaseEvent>(agent);
    gone.Kill();
    Bstr exception;
    Bstr id;
    EXPECT_EQ(Hex(events->Subscribe(nullptr, nullptr, Text(m_consumer.Address()).get(), nullptr, exception.put(),
                                    id.put())),
              Hex(E_FAIL));
    EXPECT_FALSE(id);
    Bstr list;
    EXPECT_EQ(Hex(events->GetSupportedEvents(nullptr, nullptr, list.put())), Hex(S_OK));
    EXPECT_THAT(Narrow(list.get()), HasSubstr("<SupportedEvents>\n</SupportedEvents>\n"));
}

}  // namespace
}  // namespace wncom::test
