// wn events watch, with the real modules and a real device service.
#include <httplib.h>

#include "tests/tools/WatchFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;

TEST_F(WnWatchTest, ShowsTheEventsOfAJobAndCancelsAfterTheLast) {
    DeviceProcess device;
    WnProcess wn(Arguments(device, {"jobAccepted", "jobDataReceived", "--cookie", "desk", "--count", "2"}));
    const std::string id = WaitForLines(wn, 1)[0].at("subscription");
    WriteWholeFile(InHome("data"), "12345");
    ExpectDone(RunWn({"submit", NewTicket(), "--to", device.Address(), "--data", InHome("data")}));

    const WnOutcome outcome = wn.Wait();
    ExpectDone(outcome);
    const auto lines = Lines(outcome.output);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[1].at("event"), "jobAccepted");
    EXPECT_EQ(lines[1].at("cookie"), "desk");
    EXPECT_EQ(lines[1].at("properties").at("jobName"),
              "Gr\xC3\xB6\xC3\x9F"
              "e");
    EXPECT_EQ(lines[2].at("event"), "jobDataReceived");
    EXPECT_EQ(lines[2].at("properties").at("dataBytes"), "5");
    EXPECT_EQ(lines[3], nlohmann::json::parse(R"({"cancelled": ")" + id + R"(", "events": 2})"));
    ExpectCancelled(device, id);
}

TEST_F(WnWatchTest, OutlivesTheDurationOfItsSubscription) {
    DeviceProcess device;
    const WnOutcome outcome = RunWn(Arguments(device, {"--duration", "4", "--for", "5"}));
    ExpectDone(outcome);
    ExpectCancelled(device, Lines(outcome.output).at(0).at("subscription"));
}

TEST_F(WnWatchTest, FailsWhenTheServiceIsGone) {
    DeviceProcess device;
    WnProcess wn(Arguments(device, {"--duration", "2"}));
    const std::string id = WaitForLines(wn, 1)[0].at("subscription");
    device.Kill();
    ExpectRefusal(wn.Wait(), 1, "The subscription " + id + " was not renewed at " + device.Address());
}

TEST_F(WnWatchTest, FailsWhenTheServiceRefusesTheSubscriptionOrItsEnd) {
    const DeviceProcess device({"--fault", "cancel:status=500"});
    const WnOutcome refused = RunWn(Arguments(device, {"nothing"}));
    ExpectRefusal(refused, 1, "No subscription at " + device.Address());
    EXPECT_THAT(refused.error, HasSubstr("There is no such event: nothing"));
    EXPECT_EQ(refused.output, "");
    ExpectRefusal(RunWn(Arguments(device, {"--for", "1"})), 1, "was not cancelled at " + device.Address());
}

TEST_F(WnWatchTest, CancelsWhenItsOutputCannotBeWritten) {
    DeviceProcess device;
    ExpectRefusal(WnProcess(Arguments(device, {}), "/dev/full").Wait(), 1, "Cannot write the answer");
    EXPECT_EQ(device.Stop(), 0);
    EXPECT_THAT(device.Log(), HasSubstr("DELETE /subscriptions/"));
}

TEST_F(WnWatchTest, TellsWhatIsLostAndTakesNothingTwiceNorFromOthers) {
    const DeviceProcess device;
    WnProcess wn(Arguments(device, {"--count", "2"}));
    const auto beginning = WaitForLines(wn, 1)[0];
    const std::string consumer = beginning.at("consumer");
    httplib::Client client(consumer.substr(0, consumer.rfind('/')));
    const auto post = [&client](const std::string& id, const std::string& sequence) {
        return client
            .Post("/events",
                  "<Event><SubscriptionID>" + id + "</SubscriptionID><Sequence>" + sequence +
                      "</Sequence><EventName>probe</EventName></Event>",
                  "application/xml")
            ->status;
    };
    const std::string id = beginning.at("subscription");
    EXPECT_EQ(post("another", "1"), 200);
    EXPECT_EQ(post(id, "none"), 422);
    EXPECT_EQ(client.Post("/events", "<Event>", "application/xml")->status, 422);
    EXPECT_EQ(post(id, "3"), 200);
    EXPECT_EQ(post(id, "3"), 200);
    EXPECT_EQ(post(id, "4"), 200);

    const auto lines = Lines(wn.Wait().output);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[1].at("sequence"), 3);
    EXPECT_EQ(lines[1].at("lost"), 2);
    EXPECT_EQ(lines[2].at("sequence"), 4);
    EXPECT_EQ(lines[2].at("lost"), 0);
}

}  // namespace
}  // namespace wncom::test
