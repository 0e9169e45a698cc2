// Several processes that write to one log file.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <map>

#include "platform/include/wnplatform/inspect.h"
#include "tests/common/LogFixture.h"
#include "tests/support/MatchesPattern.h"

namespace wncom::test {
namespace {

using testing::Each;

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
    constexpr int kLines = 2000;
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

    std::map<std::string, int> next;  // each process's lines stand in order
    for (const std::string& message : Messages()) {
        int process = -1;
        int line = -1;
        ASSERT_EQ(2, std::sscanf(message.c_str(), "CWendrel::writer %d line %d", &process, &line)) << message;
        ASSERT_EQ(next[std::to_string(process)]++, line);
    }
    EXPECT_EQ(static_cast<std::size_t>(kProcesses * kLines), Lines().size());
}

TEST_F(LoggingProcesses, LeaveWholeLinesWhenOneIsKilled) {
    SetRegistryText(kLoggingKey, nullptr, FileConfig(3));
    for (int round = 0; round != 5; ++round) {
        const std::uintmax_t before = std::filesystem::file_size(path);
        const pid_t child = Run([] {
            StartLogging("CWendrel");
            for (;;) Log(3, "killed");
        });
        StartLogging("CWendrel");
        WaitForBytes(before + 10000);
        Kill(child);
        Log(3, "survivor");
        EndLogging();
        EXPECT_EQ("CWendrel::survivor", Messages().back());
    }
    EXPECT_THAT(Messages(), Each(MatchesPattern("CWendrel::(killed|survivor)")));
}

TEST_F(LoggingProcesses, TakeOverTheMutexOfOneThatDiedWithIt) {
    int ready[2];
    ASSERT_EQ(0, pipe(ready));
    const pid_t child = Run([&ready] {
        const HANDLE mutex = CreateMutexA(nullptr, TRUE, "qb_rmx_logging_mutex-_dead.log");
        if (mutex && write(ready[1], "", 1) == 1) pause();
    });
    char byte = 0;
    ASSERT_EQ(1, read(ready[0], &byte, 1));
    Start("file,\\dead.log,3");
    Kill(child);
    Log(3, "written");
    EXPECT_THAT(ReadWholeFile(wnplatform::HostPath("\\dead.log")), testing::HasSubstr("::written\r\n"));
    close(ready[0]);
    close(ready[1]);
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
    EXPECT_THAT(Messages(), Each(std::string("CWendrel::line")));
}

}  // namespace
}  // namespace wncom::test
