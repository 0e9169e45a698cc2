// The registry under several processes at once, and under processes that are killed.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <windows.h>

#include <atomic>
#include <string>
#include <vector>

#include "tests/platform/registry/Key.h"

namespace {

using wncom::test::GetText;
using wncom::test::Key;
using wncom::test::SetText;

constexpr char kKey[] = "SOFTWARE\\WncomTests\\Shared";

LSTATUS SetShared(const std::string& name, const std::string& text) {
    return SetText(Key(kKey).get(), name.c_str(), text);
}

std::string GetShared(const std::string& name) { return GetText(kKey, name.c_str()); }

template <class Work>
pid_t Fork(Work work) {
    const pid_t child = fork();
    if (child == 0) _exit(work() ? 0 : 1);
    return child;
}

TEST(RegistryProcesses, LoseNothingOfWhatTheyWriteAtTheSameTime) {
    constexpr int processes = 6, values = 100;
    const auto name = [](int process, int value) { return std::to_string(process) + "-" + std::to_string(value); };
    std::vector<pid_t> children;
    for (int p = 0; p < processes; ++p) {
        children.push_back(Fork([p, name] {
            for (int v = 0; v < values; ++v) {
                if (SetShared("last " + std::to_string(p), std::to_string(v)) != ERROR_SUCCESS ||
                    SetShared(name(p, v), std::to_string(v)) != ERROR_SUCCESS) {
                    return false;
                }
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
        EXPECT_EQ(GetShared("last " + std::to_string(p)), std::to_string(values - 1));
        for (int v = 0; v < values; ++v) EXPECT_EQ(GetShared(name(p, v)), std::to_string(v));
    }
}

TEST(RegistryProcesses, SeeEachOthersChangesThroughOpenHandles) {
    const Key key(kKey), gone(std::string(kKey) + "\\Gone");
    ASSERT_EQ(SetText(key.get(), "v", "parent"), 0);
    const pid_t child = Fork([] {
        return GetShared("v") == "parent" && SetShared("v", "child") == ERROR_SUCCESS &&
               RegDeleteTreeA(HKEY_LOCAL_MACHINE, (std::string(kKey) + "\\Gone").c_str()) == ERROR_SUCCESS;
    });
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_STREQ(wncom::test::Get(key.get(), "v").c_str(), "child");
    EXPECT_EQ(SetText(gone.get(), "v", "1"), ERROR_KEY_DELETED);
}

// A large value beside the small one that changes makes a file that was cut short or mixed show.
TEST(RegistryProcesses, LoseNothingThatWasAnsweredWhereverAWriterIsKilled) {
    const std::string filler(4000, 'x');
    ASSERT_EQ(SetShared("filler", filler), 0);
    ASSERT_EQ(SetShared("v", "0"), 0);
    void* const memory = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    auto* const answered = new (memory) std::atomic<int>(0);
    for (int round = 0; round < 60; ++round) {
        const pid_t writer = Fork([answered] {
            for (int i = *answered + 1; SetShared("v", std::to_string(i)) == ERROR_SUCCESS; ++i) *answered = i;
            return true;
        });
        usleep(static_cast<useconds_t>(500 + round * 137));
        kill(writer, SIGKILL);
        ASSERT_EQ(waitpid(writer, nullptr, 0), writer);
        ASSERT_EQ(GetShared("filler"), filler);
        const int found = std::stoi(GetShared("v"));
        ASSERT_TRUE(found == *answered || found == *answered + 1) << found << ", answered " << *answered;
        *answered = found;
        ASSERT_EQ(SetShared("after", std::to_string(found)), ERROR_SUCCESS);
    }
    EXPECT_GT(*answered, 0);
    munmap(memory, 4096);
}

}  // namespace
