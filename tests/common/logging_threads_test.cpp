// One logger under many threads.
#include <atomic>
#include <cstdio>
#include <functional>
#include <thread>

#include "tests/common/LogFixture.h"
#include "tests/support/Host.h"
#include "tests/support/MatchesPattern.h"

namespace wncom::test {
namespace {

using testing::Each;
using testing::Eq;

constexpr int kThreads = 4;

void RunThreads(const std::function<void(int)>& work) {
    std::vector<std::thread> threads;
    for (int i = 0; i != kThreads; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
}

using LoggingThreads = LogTest;

TEST_F(LoggingThreads, LoseNoLine) {
    constexpr int kLines = 1000;
    Start(FileConfig(3));
    RunThreads([](int thread) {
        for (int i = 0; i != kLines; ++i) Log(3, "%d of %d", i, thread);
    });
    EndLogging();
    int next[kThreads] = {};  // each thread's lines stand in order
    for (const std::string& message : Messages()) {
        int thread = 0;
        int line = -1;
        ASSERT_EQ(2, std::sscanf(message.c_str(), "CWendrel::%d of %d", &line, &thread)) << message;
        ASSERT_EQ(next[thread]++, line);
    }
    EXPECT_THAT(next, Each(kLines));
}

TEST_F(LoggingThreads, OpenTheDestinationOnceAndCloseItOnce) {
    SetRegistryText(kLoggingKey, nullptr, FileConfig(4));
    for (int round = 0; round != 20; ++round) {
        WriteWholeFile(path, "");
        RunThreads([](int) { StartLogging("CWendrel"); });
        EXPECT_EQ(kThreads, QueryLogging(nullptr, nullptr));
        RunThreads([](int) { EndLogging(); });
        EXPECT_THAT(Messages(),
                    testing::ElementsAre("CWendrel:: ---Start Logging---", "CWendrel:: ---End Logging---"));
    }
}

TEST_F(LoggingThreads, StartLogAndEndAtOnce) {
    SetRegistryText(kLoggingKey, nullptr, "file," + path + ",1,3");
    RunThreads([](int thread) {
        const std::string name(static_cast<std::size_t>(20 + thread), static_cast<char>('a' + thread));
        for (int i = 0; i != 200; ++i) {
            LogReference reference;
            reference.Start(name.c_str());
            Log(3, "line %d", i);
            std::uint8_t level = 0;
            EXPECT_GE(QueryLogging(&level, nullptr), 1);
        }
    });
    EXPECT_EQ(0, QueryLogging(nullptr, nullptr));
    EXPECT_THAT(Messages(), Each(MatchesPattern("(a{20}|b{21}|c{22}|d{23})::line [0-9]+")));
}

TEST_F(LoggingThreads, WriteNothingIntoAFileThatWasClosed) {
    SetRegistryText(kLoggingKey, nullptr, FileConfig(3));
    std::atomic<bool> stop = false;
    std::thread writer([&stop] {
        while (!stop) Log(1, "line");
    });
    for (int i = 0; i != 200; ++i) {
        StartLogging("CWendrel");
        EndLogging();
    }
    stop = true;
    writer.join();
    EXPECT_THAT(Messages(), Each(Eq("CWendrel::line")));
    EXPECT_EQ("", DebuggerText());
}

TEST_F(LoggingThreads, WriteLevelZeroByDefaultBesideStartsAndEnds) {
    SetRegistryText(kLoggingKey, nullptr, FileConfig(3));
    std::atomic<int> written = 0;
    RunThreads([&written](int thread) {
        for (int i = 0; i != 100; ++i) {
            if (thread % 2 == 0) {
                LogReference reference;
                reference.Start("CWendrel");
            } else {
                Log(0, "line");
                ++written;
            }
        }
    });
    const auto other = SplitLines(ReadWholeFile(HostPath("\\qbv-event.log")));
    EXPECT_EQ(static_cast<std::size_t>(written), Lines().size() + other.size());
}

}  // namespace
}  // namespace wncom::test
