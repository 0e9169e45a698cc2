// The end of wn events watch by a signal.
#include <csignal>

#include "tests/tools/WatchFixture.h"

namespace wncom::test {
namespace {

class WnWatchSignalTest : public WnWatchTest, public testing::WithParamInterface<int> {};

TEST_P(WnWatchSignalTest, CancelsTheSubscription) {
    DeviceProcess device;
    WnProcess wn(Arguments(device, {}));
    const std::string id = WaitForLines(wn, 1)[0].at("subscription");
    Submit(device);
    WaitForLines(wn, 2);
    kill(wn.Pid(), GetParam());
    const WnOutcome outcome = wn.Wait();
    ExpectDone(outcome);
    EXPECT_EQ(Lines(outcome.output).back().at("events"), 1);
    ExpectCancelled(device, id);
}

INSTANTIATE_TEST_SUITE_P(All, WnWatchSignalTest, testing::Values(SIGINT, SIGTERM), [](const auto& given) {
    return std::string(given.param == SIGINT ? "Interrupt" : "Terminate");
});

}  // namespace
}  // namespace wncom::test
