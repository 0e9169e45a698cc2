// Objects on several threads at once, each thread with its own session and all with one pool of connections.
#include <thread>
#include <vector>

#include "tests/libraries/HttpTransportFixture.h"

namespace wncom::test {
namespace {

TEST_F(HttpTransportTest, ThreadsSubmitSideBySideEachInItsOwnSession) {
    constexpr std::size_t kThreads = 6;
    constexpr std::size_t kJobs = 10;
    const DeviceProcess device;
    std::vector<std::string> failures(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            failures[i] = FailureOf([&] {
                for (std::size_t job = 0; job < kJobs; ++job) MakeInSession(device.Address())->SubmitJob(kTicket, 1);
                Make(device.Address())->EndSession();
            });
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures, std::vector<std::string>(kThreads, "none"));
    EXPECT_EQ(device.Jobs().size(), kThreads * kJobs);
}

}  // namespace
}  // namespace wncom::test
