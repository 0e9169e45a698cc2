// wn events, with the real modules and a real device service.
#include <nlohmann/json.hpp>

#include "tests/support/DeviceProcess.h"
#include "tests/support/EventConsumer.h"
#include "tests/tools/WnFixture.h"

namespace wncom::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class WnEventsTest : public WnTest {
protected:
    void SetUp() override { Install(); }

    static WnOutcome Events(const DeviceProcess& device, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "events");
        arguments.insert(arguments.end(), {"--to", device.Address()});
        return RunWn(arguments);
    }
    static nlohmann::json Answer(const DeviceProcess& device, std::vector<std::string> arguments) {
        arguments.emplace_back("--json");
        const WnOutcome outcome = Events(device, arguments);
        ExpectDone(outcome);
        return nlohmann::json::parse(outcome.output);
    }
};

TEST_F(WnEventsTest, AreListedWithTheirProperties) {
    const DeviceProcess device;
    EXPECT_EQ(Events(device, {"list"}).output, "deviceDataChanged\njobAccepted\njobDataReceived\n");
    EXPECT_EQ(
        Answer(device, {"properties", "jobDataReceived", "deviceDataChanged"}).at("events"),
        nlohmann::json::parse(
            R"({"jobDataReceived": ["dataBytes", "jobId", "jobUri"], "deviceDataChanged": ["path", "value"]})"));
    EXPECT_THAT(Events(device, {"capabilities"}).output, HasSubstr("<LongestDuration>86400</LongestDuration>\n"));
}

TEST_F(WnEventsTest, ThatCannotBeListedAreNoEmptyList) {
    DeviceProcess device;
    ExpectRefusal(Events(device, {"properties", "nothing"}), 1, "No properties of nothing from " + device.Address());
    device.Kill();
    ExpectRefusal(Events(device, {"list", "--json"}), 1, "No events from " + device.Address());
    ExpectRefusal(Events(device, {"capabilities"}), 1, "No event capabilities from " + device.Address());
}

TEST_F(WnEventsTest, SubscriptionOfTheSampleIsRenewedAndCancelled) {
    const DeviceProcess device;
    const auto made = Answer(device, {"subscribe", Sample("event-subscription.xml")});
    EXPECT_EQ(made.at("duration"), 600);
    const std::string id = made.at("subscription");
    ExpectDone(Events(device, {"renew", id}));
    ExpectDone(Events(device, {"renew", id, "--duration", "5"}));
    ExpectRefusal(Events(device, {"renew", id, "--duration", "86401"}), 1, "from 1 to 86400");
    ExpectDone(Events(device, {"cancel", id}));

    ExpectRefusal(Events(device, {"cancel", id}), 1,
                  "The subscription " + id + " was not cancelled at " + device.Address() +
                      ": The operation failed for a reason that was not given (0x80004005). There is no such "
                      "subscription");
    ExpectRefusal(Events(device, {"renew", "not an id"}), 1, "invalid subscription id");
}

TEST_F(WnEventsTest, SubscriptionByOptionsGetsWhatItAsksFor) {
    const DeviceProcess device;
    EventConsumer consumer;
    Answer(device, {"subscribe", "--event", "jobAccepted", "--event", "deviceDataChanged", "--filter", "value=a=<&>",
                    "--cookie", "desk \"3\" <&>", "--best-effort", "--consumer", consumer.Address()});
    WriteWholeFile(InHome("set.xml"),
                   "<setData><prefixes>d=urn:wncom:device-data</prefixes>"
                   "<set><path>//d:operatorMessage</path><value>another</value></set>"
                   "<set><path>//d:operatorMessage</path><value>a=&lt;&amp;&gt;</value></set></setData>");
    ExpectDone(RunWn({"data", "set", InHome("set.xml"), "--to", device.Address()}));
    const std::vector<std::string> events = consumer.Wait(1);
    ASSERT_EQ(events.size(), 1U);
    EXPECT_THAT(events[0], AllOf(HasSubstr("<Value>a=&lt;&amp;&gt;</Value>"),
                                 HasSubstr("<ClientCookie>desk \"3\" &lt;&amp;&gt;</ClientCookie>")));
}

TEST_F(WnEventsTest, RefusedSubscriptionShowsTheWordsOfTheService) {
    const DeviceProcess device;
    const std::string consumer = "http://127.0.0.1:1/";
    ExpectRefusal(Events(device, {"subscribe", "--event", "nothing", "--consumer", consumer}), 1,
                  "There is no such event: nothing");
    ExpectRefusal(Events(device, {"subscribe", "--consumer", "http://192.0.2.1/"}), 1,
                  "not an http address on loopback");
    ExpectRefusal(Events(device, {"subscribe"}), 2, "Give either FILE or --consumer");
    ExpectRefusal(Events(device, {"subscribe", "a.xml", "--event", "jobAccepted"}), 2, "FILE excludes --event");
}

TEST_F(WnEventsTest, AnswerThatIsNoSubscriptionIsShown) {
    for (const char* answer : {"<SubscriptionResult>\n<Other/>\n</SubscriptionResult>", "<open>"}) {
        WriteWholeFile(InHome("answer.xml"), answer);
        const DeviceProcess device({"--fault", "subscribe-ticket:body=" + InHome("answer.xml")});
        ExpectRefusal(Events(device, {"subscribe", "--consumer", "http://127.0.0.1:1/"}), 1,
                      "The service answers without a SubscriptionID: <");
    }
}

}  // namespace
}  // namespace wncom::test
