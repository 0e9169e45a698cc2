#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::string Script(const std::string& text, mode_t mode = 0700) {
    const std::string path = InHome("script.exe");
    WriteWholeFile(path, text);
    chmod(path.c_str(), mode);
    return path;
}

BOOL Start(std::string line, PROCESS_INFORMATION& information, DWORD flags = 0, const char* environment = nullptr) {
    STARTUPINFOA startup{};
    std::string block = environment ? std::string(environment) + std::string(2, '\0') : "";
    return CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, flags, environment ? block.data() : nullptr,
                          nullptr, &startup, &information);
}

DWORD ExitCodeOf(const std::string& line, DWORD flags = 0, const char* environment = nullptr) {
    PROCESS_INFORMATION information{};
    EXPECT_TRUE(Start(line, information, flags, environment)) << GetLastError();
    EXPECT_EQ(WaitForSingleObject(information.hProcess, 60'000), WAIT_OBJECT_0);
    DWORD code = STILL_ACTIVE;
    EXPECT_TRUE(GetExitCodeProcess(information.hProcess, &code));
    CloseHandle(information.hThread);
    CloseHandle(information.hProcess);
    return code;
}

TEST(ProcessesOnLinux, RunScriptsByAnyName) {
    EXPECT_EQ(ExitCodeOf(Script("#!/bin/sh\nexit $#\n") + " a 'b c'"), 3U);
}

TEST(ProcessesOnLinux, OfFilesThatAreNoProgramsAreNotMade) {
    PROCESS_INFORMATION information{};
    EXPECT_FALSE(Start(Script("no program"), information));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_BAD_EXE_FORMAT});
    EXPECT_FALSE(Start(Script("#!/bin/sh\n", 0600), information));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST(ProcessesOnLinux, GetTheEnvironmentGiven) {
    EXPECT_EQ(ExitCodeOf(Script("#!/bin/sh\nexit $CODE\n"), 0, "CODE=17"), 17U);
}

TEST(ProcessesOnLinux, InheritNoDescriptorButTheStandardOnes) {
    const int stray = open("/dev/null", O_RDONLY);
    const HANDLE file = CreateFileA(InHome("held").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    EXPECT_EQ(ExitCodeOf(Script("#!/bin/sh\n[ ! -e /proc/$$/fd/" + std::to_string(stray) +
                                " ] && ! ls -l /proc/$$/fd | grep -q held\n")),
              0U);
    CloseHandle(file);
    close(stray);
}

TEST(ProcessesOnLinux, DetachedHaveASessionOfTheirOwnAndNoInput) {
    const std::string script = Script(
        "#!/bin/sh\n[ $(cut -d' ' -f6 /proc/$$/stat) = $$ ] && "
        "[ $(readlink /proc/$$/fd/1) = /dev/null ] && ! read line\n");
    EXPECT_EQ(ExitCodeOf(script, DETACHED_PROCESS), 0U);
}

TEST(ProcessesOnLinux, EndedByASignalHaveItsNumber) {
    EXPECT_EQ(ExitCodeOf(Script("#!/bin/sh\nkill -TERM $$\n")), 143U);
}

TEST(ProcessesOnLinux, LeaveNothingBehindWhenTheirHandlesAreClosedFirst) {
    PROCESS_INFORMATION information{};
    ASSERT_TRUE(Start("\"" + PeerProgram() + "\" sleep 50", information));
    CloseHandle(information.hThread);
    CloseHandle(information.hProcess);
    const std::string trace = "/proc/" + std::to_string(information.dwProcessId);
    for (int i = 0; i < 1000 && std::filesystem::exists(trace); ++i) Sleep(10);
    EXPECT_FALSE(std::filesystem::exists(trace));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST(ProcessesOnLinux, AForkedProcessHasIdsOfItsOwn) {
    const DWORD process = GetCurrentProcessId();
    const DWORD thread = GetCurrentThreadId();
    const pid_t child = fork();
    if (child == 0) {
        const bool own = GetCurrentProcessId() != process && GetCurrentThreadId() != thread &&
                         GetCurrentProcessId() == static_cast<DWORD>(getpid());
        _exit(own ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace wncom::test
