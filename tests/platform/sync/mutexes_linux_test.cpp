#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <windows.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

// The files in memory whose names hold a mutex's name.
std::ptrdiff_t FilesNamed(const std::string& name) {
    const std::filesystem::directory_iterator files("/dev/shm");
    return std::count_if(begin(files), end(files), [&name](const auto& entry) {
        return entry.path().filename().string().find(name) != std::string::npos;
    });
}

std::string Name() { return "wncom-file-" + HomePath().substr(HomePath().size() - 6); }

TEST(MutexesOnLinux, LeaveNoFileBehind) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, Name().c_str());
    EXPECT_EQ(FilesNamed(Name()), 1);
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_EQ(FilesNamed(Name()), 0);
    const HANDLE owned = CreateMutexA(nullptr, TRUE, Name().c_str());
    EXPECT_TRUE(CloseHandle(owned));
    EXPECT_EQ(FilesNamed(Name()), 0);
}

TEST(MutexesOnLinux, OfAForkedAndKilledProcessAreAbandoned) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, Name().c_str());
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
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, Name().c_str());
    const pid_t child = fork();
    if (child == 0) {
        CloseHandle(mutex);
        _exit(0);
    }
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    Peer peer("own \"" + Name() + "\" \"" + InHome("ready") + "\" 60000");
    AwaitFile(InHome("ready"));
    EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    // Whoever is killed leaves the file to those that hold the mutex open.
    peer.Kill();
    EXPECT_TRUE(CloseHandle(mutex));
    EXPECT_EQ(FilesNamed(Name()), 0);
}

TEST(MutexesOnLinux, AFileLeftBehindUnfinishedIsMadeAnew) {
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, Name().c_str());
    std::string path;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        if (entry.path().string().find(Name()) != std::string::npos) path = entry.path().string();
    }
    EXPECT_TRUE(CloseHandle(mutex));
    // Left behind by a process that was killed before it was done.
    WriteWholeFile(path, "short");
    const HANDLE again = CreateMutexA(nullptr, FALSE, Name().c_str());
    EXPECT_EQ(GetLastError(), DWORD{NO_ERROR});
    EXPECT_EQ(WaitForSingleObject(again, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(again));
    EXPECT_TRUE(CloseHandle(again));
}

}  // namespace
}  // namespace wncom::test
