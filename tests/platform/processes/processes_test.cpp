#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <string>

#include "tests/platform/OnWine.h"
#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

BOOL Start(std::string line, PROCESS_INFORMATION& information, DWORD flags = NORMAL_PRIORITY_CLASS) {
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_HIDE;
    return CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, flags, nullptr, nullptr, &startup,
                          &information);
}

TEST(Processes, GiveTheirExitCode) {
    Peer peer("exit 42");
    EXPECT_EQ(peer.Result(), 42U);
    EXPECT_EQ(WaitForSingleObject(peer.Process(), 0), WAIT_OBJECT_0);
}

TEST(Processes, KnowTheIdThatTheirStarterIsTold) {
    PROCESS_INFORMATION information{};
    ASSERT_TRUE(Start("platform_peer id \"" + InHome("id") + "\"", information));
    EXPECT_EQ(WaitForSingleObject(information.hProcess, 60'000), WAIT_OBJECT_0);
    EXPECT_EQ(ReadWholeFile(InHome("id")), std::to_string(information.dwProcessId));
    EXPECT_TRUE(CloseHandle(information.hThread));
    EXPECT_TRUE(CloseHandle(information.hProcess));
}

TEST(Processes, AreWaitedForUpToTheTimeGiven) {
    Peer peer("sleep 60000");
    DWORD code = 0;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WaitForSingleObject(peer.Process(), 50), WAIT_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(45));
    EXPECT_EQ(WaitForSingleObject(peer.Process(), 0), WAIT_TIMEOUT);
    EXPECT_TRUE(GetExitCodeProcess(peer.Process(), &code));
    EXPECT_EQ(code, STILL_ACTIVE);
}

TEST(Processes, HaveAFirstThreadThatEndsWithThem) {
    PROCESS_INFORMATION information{};
    ASSERT_TRUE(Start("\"" + PeerProgram() + "\" exit 0", information, DETACHED_PROCESS | NORMAL_PRIORITY_CLASS));
    EXPECT_NE(information.dwProcessId, GetCurrentProcessId());
    EXPECT_EQ(WaitForSingleObject(information.hThread, 60'000), WAIT_OBJECT_0);
    DWORD code = 0;
    EXPECT_FALSE(GetExitCodeProcess(information.hThread, &code));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_TRUE(CloseHandle(information.hThread));
    EXPECT_TRUE(CloseHandle(information.hProcess));
}

TEST(Processes, GetTheirArgumentsByTheRuntimesRules) {
    const std::string path = InHome("arguments");
    Peer peer("arguments \"" + path + "\"" + R"(  plain "two words" "" a\b "a\\" \"quoted\" x"y z"w "say ""hi""")");
    EXPECT_EQ(peer.Result(), 0U);
    EXPECT_EQ(ReadWholeFile(path), R"(<plain><two words><><a\b><a\><"quoted"><xy zw><say "hi">)");
}

TEST(Processes, BeginInTheFolderGiven) {
    PROCESS_INFORMATION information{};
    STARTUPINFOA startup{};
    std::string line = "platform_peer arguments here.txt x";
    const std::string program = PeerProgram();
    ASSERT_TRUE(CreateProcessA(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, HomePath().c_str(),
                               &startup, &information));
    EXPECT_EQ(WaitForSingleObject(information.hProcess, 60'000), WAIT_OBJECT_0);
    EXPECT_EQ(ReadWholeFile(InHome("here.txt")), "<x>");
    EXPECT_TRUE(CloseHandle(information.hThread));
    EXPECT_TRUE(CloseHandle(information.hProcess));
    EXPECT_FALSE(CreateProcessA(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                InHome("absent").c_str(), &startup, &information));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DIRECTORY});
}

TEST(Processes, AreFoundBesideTheRunningProgramWithoutExtension) {
    PROCESS_INFORMATION information{};
    ASSERT_TRUE(Start("platform_peer exit 3", information));
    EXPECT_EQ(WaitForSingleObject(information.hProcess, 60'000), WAIT_OBJECT_0);
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(information.hProcess, &code));
    EXPECT_EQ(code, 3U);
    EXPECT_TRUE(CloseHandle(information.hThread));
    EXPECT_TRUE(CloseHandle(information.hProcess));
}

TEST(Processes, OfProgramsThatCannotRunAreNotMade) {
    PROCESS_INFORMATION information{};
    EXPECT_FALSE(Start("\"" + InHome("absent.exe") + "\" /regserver", information));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_FALSE(Start("\"" + InHome("no/absent.exe") + "\"", information));
    // Wine does not tell a missing folder from a missing file.
    EXPECT_EQ(GetLastError(), OnWine() ? DWORD{ERROR_FILE_NOT_FOUND} : DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_FALSE(Start("\"" + HomePath() + "\"", information));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(Start("no-such-program-anywhere", information));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

}  // namespace
}  // namespace wncom::test
