#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <windows.h>

#include <string>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

HANDLE Open(const std::string& path, DWORD access) {
    return CreateFileA(path.c_str(), access, 0, nullptr, OPEN_ALWAYS, 0, nullptr);
}

TEST(FilesOnLinux, AFullDiskIsTold) {
    const HANDLE full = Open("/dev/full", GENERIC_WRITE);
    DWORD written = 99;
    EXPECT_FALSE(WriteFile(full, "x", 1, &written, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
    EXPECT_EQ(written, 0U);
    EXPECT_TRUE(CloseHandle(full));
}

TEST(FilesOnLinux, WhatASizeLimitCutsOffIsTold) {
    const std::string path = InHome("limited");
    WriteWholeFile(path, std::string(100, '.'));
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{102, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const HANDLE file = Open(path, GENERIC_WRITE);
    DWORD written = 99;
    OVERLAPPED at{};
    at.Offset = 99;
    EXPECT_FALSE(WriteFile(file, "12345", 5, &written, &at));
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(written, 3U);
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ(ReadWholeFile(path), std::string(99, '.') + "123");
}

TEST(FilesOnLinux, APipeWithoutReaderFailsTheWriteAndNotTheProcess) {
    const std::string path = InHome("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    const HANDLE pipe = Open(path, GENERIC_WRITE);
    DWORD written = 99;
    EXPECT_TRUE(WriteFile(pipe, "x", 1, &written, nullptr));
    close(reader);
    EXPECT_FALSE(WriteFile(pipe, "x", 1, &written, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_DATA});
    EXPECT_TRUE(CloseHandle(pipe));
}

TEST(FilesOnLinux, ALinkToNothingIsRefusedInTheEnd) {
    ASSERT_EQ(symlink("/nowhere/at/all", InHome("link").c_str()), 0);
    EXPECT_EQ(Open(InHome("link"), GENERIC_WRITE), INVALID_HANDLE_VALUE);
}

TEST(FilesOnLinux, AFolderInThePlaceOfAFileIsAMissingFolder) {
    WriteWholeFile(InHome("file"), "x");
    EXPECT_EQ(Open(InHome("file/below"), GENERIC_READ), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST(FilesOnLinux, WhatIsNotOfferedIsRefused) {
    const std::string file = InHome("file");
    WriteWholeFile(file, "x");
    char full[MAX_PATH];
    char* part = nullptr;
    DWORD count = 0;
    const HANDLE handle =
        CreateFileA(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(WriteFile(handle, nullptr, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_FALSE(ReadFile(handle, nullptr, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_TRUE(CloseHandle(handle));
    EXPECT_FALSE(MoveFileExA(file.c_str(), HomePath().c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(MoveFileExA(file.c_str(), InHome("new").c_str(), 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(GetFullPathNameA("x", sizeof(full), full, &part), 0U);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    const SYSTEMTIME moment{2005, 12, 0, 4, 9, 7, 53, 0};
    for (const char* picture : {"MMM", "dddd", "yyyy", "gg", "h tt"}) {
        EXPECT_EQ(GetDateFormatA(LOCALE_SYSTEM_DEFAULT, 0, &moment, picture, nullptr, 0), 0) << picture;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    }
}

TEST(FilesOnLinux, StandardOutputReceivesEveryByte) {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    ASSERT_EQ(GetStdHandle(STD_OUTPUT_HANDLE), output);
    testing::internal::CaptureStdout();
    DWORD written = 0;
    const std::string text("100% \r\n\0\xE9", 9);
    EXPECT_TRUE(WriteFile(output, text.data(), 9, &written, nullptr));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), text);
}

TEST(FilesOnLinux, TheCurrentFolderLeadsAFullPath) {
    ASSERT_EQ(chdir(HomePath().c_str()), 0);
    char full[MAX_PATH];
    GetFullPathNameA("sub\\..\\x.txt", sizeof(full), full, nullptr);
    EXPECT_EQ(full, HomePath() + "/x.txt");
    GetFullPathNameA("\\qbv-event.log", sizeof(full), full, nullptr);
    EXPECT_STREQ(full, "C:\\qbv-event.log");
}

TEST(FilesOnLinux, TheDriveLiesInTheHome) {
    const HANDLE file = Open("\\qbv-event.log", GENERIC_WRITE);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_EQ(access(InHome("drive_c/qbv-event.log").c_str(), F_OK), 0);
}

}  // namespace
}  // namespace wncom::test
