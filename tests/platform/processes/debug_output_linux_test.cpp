#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

TEST(DebugOutput, GoesToStandardErrorAndLeavesTheLastErrorAlone) {
    unsetenv("WNCOM_DEBUG_OUTPUT");
    testing::internal::CaptureStderr();
    SetLastError(4711);
    OutputDebugStringA("one %s\r\n");
    OutputDebugStringA(nullptr);
    EXPECT_EQ(GetLastError(), 4711U);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "one %s\r\n");
}

TEST(DebugOutput, IsAppendedToTheFileNamedTextByText) {
    setenv("WNCOM_DEBUG_OUTPUT", "C:\\debug.txt", 1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([i] {
            const std::string text = std::string(50, static_cast<char>('a' + i)) + "\n";
            for (int n = 0; n < 100; ++n) OutputDebugStringA(text.c_str());
        });
    }
    for (std::thread& thread : threads) thread.join();
    const std::string text = ReadWholeFile(InHome("drive_c/debug.txt"));
    ASSERT_EQ(text.size(), 400U * 51U);
    for (std::size_t at = 0; at < text.size(); at += 51) {
        ASSERT_EQ(text.substr(at, 51), std::string(50, text[at]) + "\n") << "at " << at;
    }
}

TEST(DebugOutput, FallsBackWhenTheFileCannotBeOpened) {
    setenv("WNCOM_DEBUG_OUTPUT", InHome("no/such/file").c_str(), 1);
    testing::internal::CaptureStderr();
    OutputDebugStringA("text");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "text");
}

}  // namespace
}  // namespace wncom::test
