// Several processes that write to one log file, some of which die.
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <random>

#include "tests/common/LogFixture.h"
#include "tests/support/Host.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;

class LoggingProcesses : public LogTest {
protected:
    // Runs a function in a process of its own, which ends with it.
    template <class Function>
    static pid_t Run(Function function) {
        const pid_t child = fork();
        if (child != 0) return child;
        function();
        _exit(0);
    }
    static void WaitFor(pid_t child) {
        int status = 0;
        ASSERT_EQ(child, waitpid(child, &status, 0));
        EXPECT_EQ(0, status);
    }
    static void Kill(pid_t child) {
        ASSERT_EQ(0, kill(child, SIGKILL));
        ASSERT_EQ(child, waitpid(child, nullptr, 0));
    }
    void WaitForBytes(std::uintmax_t bytes) const {
        while (std::filesystem::file_size(path) < bytes) Sleep(1);
    }
};

TEST_F(LoggingProcesses, LoseNoLine) {
    constexpr int kProcesses = 3;
    constexpr int kLines = 1000;
    SetRegistryText(kLoggingKey, nullptr, FileConfig(3));
    std::vector<pid_t> children;
    for (int process = 0; process != kProcesses; ++process) {
        children.push_back(Run([process] {
            StartLogging("CWendrel");
            for (int i = 0; i != kLines; ++i) Log(3, "writer %d line %d", process, i);
            EndLogging();
        }));
    }
    for (const pid_t child : children) WaitFor(child);

    int next[kProcesses] = {};  // each process's lines stand in order
    for (const std::string& message : Messages()) {
        int process = 0;
        int line = -1;
        ASSERT_EQ(2, std::sscanf(message.c_str(), "CWendrel::writer %d line %d", &process, &line)) << message;
        ASSERT_EQ(next[process]++, line);
    }
    EXPECT_THAT(next, testing::Each(kLines));
}

// Lines of every length, up to the longest, that show by themselves whether they are whole.
TEST_F(LoggingProcesses, LeaveHalfALineAtMostWhereOneIsKilled) {
    constexpr unsigned kSeed = 7;
    constexpr int kKills = 80;
    constexpr std::size_t kLongest = 1100;
    SCOPED_TRACE("seed " + std::to_string(kSeed));
    std::mt19937 random(kSeed);
    SetRegistryText(kLoggingKey, nullptr, FileConfig(3));
    for (int round = 0; round != kKills; ++round) {
        WriteWholeFile(path, "");
        const std::size_t first = random() % kLongest;
        const pid_t child = Run([first] {
            const std::string text = std::string(kLongest, 'x') + "|";
            StartLogging("CWendrel");
            for (std::size_t i = first;; ++i) Log(3, "%.1101s", text.c_str() + i % kLongest);
        });
        // Half of the time nobody else has the mutex, and it dies with the child.
        if (round % 2 == 0) StartLogging("CWendrel");
        WaitForBytes(2000 + random() % 5000);
        Kill(child);
        if (round % 2 != 0) StartLogging("CWendrel");
        Log(3, "survivor");
        EndLogging();
        std::vector<std::string> messages = Messages();
        ASSERT_EQ("CWendrel::survivor", messages.back()) << "round " << round;
        messages.pop_back();
        messages.pop_back();  // perhaps half a line
        for (const std::string& message : messages) {
            ASSERT_TRUE(message.starts_with("CWendrel::x") && message.find('|') == message.size() - 1) << message;
        }
    }
}

TEST_F(LoggingProcesses, TakeOverTheMutexOfOneThatDiedWithItAndEndItsHalfLine) {
    const std::string file = HostPath("\\dead.log");
    int ready[2];
    ASSERT_EQ(0, pipe(ready));
    Start("file,\\dead.log,3");
    Log(3, "before");  // its look at the file's end is over
    const std::string before = ReadWholeFile(file);
    const pid_t child = Run([&] {
        const HANDLE mutex = OpenMutexA(SYNCHRONIZE, FALSE, "qb_rmx_logging_mutex-_dead.log");
        WaitForSingleObject(mutex, INFINITE);
        WriteWholeFile(file, before + "half");
        if (write(ready[1], "", 1) == 1) pause();
    });
    char byte = 0;
    ASSERT_EQ(1, read(ready[0], &byte, 1));
    Kill(child);
    Log(3, "after");
    const auto lines = SplitLines(ReadWholeFile(file));
    ASSERT_THAT(lines, testing::SizeIs(3));
    EXPECT_EQ("half\r\n", lines[1]);
    EXPECT_THAT(lines[2], testing::EndsWith("] CWendrel::after\r\n"));
    close(ready[0]);
    close(ready[1]);
}

TEST_F(LoggingProcesses, TakeTheirLineBackWhereTheFileMayGrowNoMore) {
    SetRegistryText(kLoggingKey, nullptr, FileConfig(3));
    WaitFor(Run([] {
        rlimit limit{10'000, 10'000};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(1);
        StartLogging("CWendrel");
        for (int i = 0; i != 100; ++i) Log(3, "%d %s", i, std::string(300, 'x').c_str());
    }));
    const std::vector<std::string> lines = Lines();
    EXPECT_GT(lines.size(), 25U);
    EXPECT_THAT(lines, testing::Each(testing::EndsWith("x\r\n")));
    // The line that found no room is nowhere, and those behind it went to the debugger.
    const std::string next = "CWendrel::" + std::to_string(lines.size() + 1) + " x";
    EXPECT_EQ(next, DebuggerText().substr(0, next.size()));
}

TEST_F(LoggingProcesses, LeaveWholeLinesWhenOneCutsTheFileWhileAnotherWrites) {
    SetRegistryText(kLoggingKey, nullptr, "file," + path + ",8,3");
    const pid_t writer = Run([] {
        StartLogging("CWendrel");
        for (;;) Log(3, "line");
    });
    WaitForBytes(10000);
    for (int i = 0; i != 20; ++i) {
        StartLogging("CWendrel");
        EndLogging();
    }
    Kill(writer);
    auto messages = Messages();
    messages.pop_back();  // the kill may have cut it
    EXPECT_THAT(messages, testing::Each(std::string("CWendrel::line")));
}

}  // namespace
}  // namespace wncom::test
