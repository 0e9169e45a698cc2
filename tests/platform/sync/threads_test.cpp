#include <gtest/gtest.h>
#include <windows.h>

#include <thread>
#include <vector>

namespace wncom::test {
namespace {

TEST(Threads, HaveIdsOfTheirOwn) {
    const DWORD own = GetCurrentThreadId();
    EXPECT_NE(own, 0U);
    EXPECT_EQ(GetCurrentThreadId(), own);
    std::thread([own] { EXPECT_NE(GetCurrentThreadId(), own); }).join();
}

TEST(Threads, CountTogetherWithoutLosingOne) {
    volatile LONG counter = -4000;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&counter] {
            for (int i = 0; i < 1000; ++i) {
                InterlockedIncrement(&counter);
                InterlockedIncrement(&counter);
                InterlockedDecrement(&counter);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 0);
    EXPECT_EQ(InterlockedIncrement(&counter), 1);
    EXPECT_EQ(InterlockedDecrement(&counter), 0);
}

}  // namespace
}  // namespace wncom::test
