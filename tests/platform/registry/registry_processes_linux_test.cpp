// The registry under several processes at once, and under processes that are killed.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tests/support/TestHome.h"

namespace {

constexpr char kKey[] = "SOFTWARE\\WncomTests\\Shared";

LSTATUS Set(const std::string& name, const std::string& text) {
    HKEY key;
    LSTATUS status = RegCreateKeyExA(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
    if (status != ERROR_SUCCESS) return status;
    status = RegSetValueExA(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                            static_cast<DWORD>(text.size() + 1));
    RegCloseKey(key);
    return status;
}

std::string Get(const std::string& name) {
    HKEY key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kKey, 0, KEY_READ, &key) != ERROR_SUCCESS) return "(no key)";
    std::string text(8192, '\0');
    auto size = static_cast<DWORD>(text.size());
    const LSTATUS status =
        RegQueryValueExA(key, name.c_str(), nullptr, nullptr, reinterpret_cast<LPBYTE>(text.data()), &size);
    RegCloseKey(key);
    return status == ERROR_SUCCESS ? text.c_str() : "(no value)";
}

std::string Name(int process, int value) {
    char name[32];
    std::snprintf(name, sizeof name, "%d-%d", process, value);
    return name;
}

template <class Work>
pid_t Fork(Work work) {
    const pid_t child = fork();
    if (child == 0) _exit(work() ? 0 : 1);
    return child;
}

TEST(RegistryProcesses, LoseNothingOfWhatTheyWriteAtTheSameTime) {
    constexpr int processes = 6, values = 40;
    std::vector<pid_t> children;
    for (int p = 0; p < processes; ++p) {
        children.push_back(Fork([p] {
            for (int v = 0; v < values; ++v) {
                if (Set(Name(p, v), std::to_string(v)) != ERROR_SUCCESS) return false;
            }
            return true;
        }));
    }
    for (const pid_t child : children) {
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    for (int p = 0; p < processes; ++p) {
        for (int v = 0; v < values; ++v) {
            EXPECT_EQ(Get(Name(p, v)), std::to_string(v));
        }
    }
}

TEST(RegistryProcesses, SeeEachOthersChanges) {
    ASSERT_EQ(Set("v", "parent"), 0);
    const pid_t child = Fork([] { return Get("v") == "parent" && Set("v", "child") == ERROR_SUCCESS; });
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Get("v"), "child");
}

// A large value beside the small one that changes makes a file that was cut short or mixed show.
TEST(RegistryProcesses, LeaveAWholeFileWhereverAWriterIsKilled) {
    const std::string filler(4000, 'x');
    ASSERT_EQ(Set("filler", filler), 0);
    ASSERT_EQ(Set("v", "0"), 0);
    for (int round = 0; round < 60; ++round) {
        const pid_t writer = Fork([] {
            for (int i = 0;; ++i) Set("v", std::to_string(i));
            return true;
        });
        usleep(static_cast<useconds_t>(500 + round * 137));
        kill(writer, SIGKILL);
        ASSERT_EQ(waitpid(writer, nullptr, 0), writer);
        ASSERT_EQ(Get("filler"), filler);
        const std::string before = Get("v");
        ASSERT_NE(before, "(no value)");
        ASSERT_EQ(Set("after", before), ERROR_SUCCESS);
        ASSERT_EQ(Get("v"), before);
    }
}

}  // namespace
