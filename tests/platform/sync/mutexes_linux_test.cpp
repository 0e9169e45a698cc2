#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <windows.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

constexpr char kName[] = "wncom file";

std::string FilePath() { return InHome("locks/mutex-wncom%20file"); }
bool FileExists() { return std::filesystem::exists(FilePath()); }

TEST(MutexesOnLinux, LeaveNoFileBehind) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, kName);
    EXPECT_TRUE(FileExists());
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_FALSE(FileExists());
    const HANDLE owned = CreateMutexA(nullptr, TRUE, kName);
    EXPECT_TRUE(CloseHandle(owned));
    EXPECT_FALSE(FileExists());
}

TEST(MutexesOnLinux, OfAForkedAndKilledProcessAreAbandoned) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, kName);
    const pid_t child = fork();
    if (child == 0) {
        WaitForSingleObject(mutex, INFINITE);
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(mutex));
    EXPECT_TRUE(CloseHandle(mutex));
}

TEST(MutexesOnLinux, AForkedProcessThatClosesLeavesThemOpenForTheOther) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, kName);
    const pid_t child = fork();
    if (child == 0) {
        CloseHandle(mutex);
        _exit(0);
    }
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    Peer peer(std::string("own \"") + kName + "\" \"" + InHome("ready") + "\" 60000");
    AwaitFile(InHome("ready"));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    // Whoever is killed leaves the file to those that hold the mutex open.
    peer.Kill();
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_FALSE(FileExists());
}

TEST(MutexesOnLinux, AFileLeftBehindUnfinishedIsMadeAnew) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, kName);
    EXPECT_TRUE(CloseHandle(mutex));
    // Left behind by a process that was killed before it was done.
    WriteWholeFile(FilePath(), "short");
    const HANDLE again = CreateMutexA(nullptr, FALSE, kName);
    EXPECT_EQ(GetLastError(), DWORD{NO_ERROR});
    EXPECT_EQ(WaitForSingleObject(again, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(again));
    EXPECT_TRUE(CloseHandle(again));
}

}  // namespace
}  // namespace wncom::test
