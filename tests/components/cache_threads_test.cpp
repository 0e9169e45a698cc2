// The cache manager under several apartments at once.
#include <array>
#include <atomic>
#include <thread>

#include "tests/components/CacheFixture.h"

namespace wncom::test {
namespace {

class CacheThreads : public CacheFixture {
protected:
    // Answers how many of its steps failed.
    static int PutAndFetch(int thread) {
        const Apartment apartment;
        int failed = 0;
        for (int i = 0; i < 30; ++i) {
            const std::string name = std::to_string(thread) + "-" + std::to_string(i);
            if (Put(name, name) != S_OK || Fetch(name) != name) ++failed;
        }
        return failed;
    }
};

TEST_F(CacheThreads, ShareTheConnection) {
    std::atomic<int> failed = 0;
    std::array<std::thread, 4> threads;
    for (int i = 0; i < 4; ++i) {
        threads[static_cast<std::size_t>(i)] = std::thread([&failed, i] { failed += PutAndFetch(i); });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failed, 0) << DebugOutput();
}

}  // namespace
}  // namespace wncom::test
