#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/platform/OnWine.h"
#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

HANDLE Open(const std::string& path, DWORD disposition, DWORD access = GENERIC_READ | GENERIC_WRITE) {
    SetLastError(4711);
    return CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, disposition,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

// An open file with some text, closed at the end.
class OpenFile {
public:
    explicit OpenFile(const std::string& text, DWORD access = GENERIC_READ | GENERIC_WRITE)
        : path(InHome("file.txt")) {
        WriteWholeFile(path, text);
        handle = Open(path, OPEN_EXISTING, access);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() { CloseHandle(handle); }

    std::string path;
    HANDLE handle;
};

bool Write(HANDLE file, const std::string& text, OVERLAPPED* at = nullptr) {
    DWORD written = 0;
    return WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, at) && written == text.size();
}

TEST(Files, TellWhatTheyFoundAndKeepOrCutIt) {
    const struct {
        DWORD disposition;
        bool opensAbsent;
        DWORD errorAbsent, errorPresent;
        const char* textPresent;
    } cases[] = {
        {CREATE_ALWAYS, true, NO_ERROR, ERROR_ALREADY_EXISTS, ""},
        {OPEN_EXISTING, false, ERROR_FILE_NOT_FOUND, NO_ERROR, "text"},
        {OPEN_ALWAYS, true, NO_ERROR, ERROR_ALREADY_EXISTS, "text"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.disposition);
        const HANDLE absent = Open(InHome("absent.txt"), each.disposition);
        EXPECT_EQ(GetLastError(), each.errorAbsent);
        EXPECT_EQ(absent != INVALID_HANDLE_VALUE, each.opensAbsent);
        if (absent != INVALID_HANDLE_VALUE) CloseHandle(absent);
        DeleteFileA(InHome("absent.txt").c_str());

        WriteWholeFile(InHome("present.txt"), "text");
        const HANDLE present = Open(InHome("present.txt"), each.disposition);
        EXPECT_EQ(GetLastError(), each.errorPresent);
        EXPECT_TRUE(CloseHandle(present));
        EXPECT_EQ(ReadWholeFile(InHome("present.txt")), each.textPresent);
    }
}

TEST(Files, AreNotOpenedByFoldersMissingFoldersAndNonsense) {
    const struct {
        std::string path;
        DWORD disposition, access, error;
    } cases[] = {
        {HomePath(), OPEN_EXISTING, GENERIC_READ | GENERIC_WRITE, ERROR_ACCESS_DENIED},
        {HomePath(), OPEN_EXISTING, GENERIC_READ, ERROR_ACCESS_DENIED},
        {InHome("no/such.txt"), OPEN_ALWAYS, GENERIC_READ, ERROR_PATH_NOT_FOUND},
        {"", OPEN_ALWAYS, GENERIC_READ, ERROR_PATH_NOT_FOUND},
        {InHome("a.txt"), 0, GENERIC_READ, ERROR_INVALID_PARAMETER},
        {InHome("a.txt"), 9, GENERIC_READ, ERROR_INVALID_PARAMETER},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(Open(each.path, each.disposition, each.access), INVALID_HANDLE_VALUE) << each.path;
        EXPECT_EQ(GetLastError(), each.error) << each.path;
    }
}

TEST(Files, AreOpenedByAWidePath) {
    const OpenFile file("x");
    const std::basic_string<WCHAR> path(file.path.begin(), file.path.end());
    const HANDLE wide = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(wide, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(CloseHandle(wide));
}

TEST(Files, AreReadToTheirEndAndThenNothing) {
    const OpenFile file("12345");
    char buffer[16];
    for (const char* expected : {"12345", ""}) {
        DWORD read = 99;
        EXPECT_TRUE(ReadFile(file.handle, buffer, sizeof(buffer), &read, nullptr));
        EXPECT_EQ(std::string(buffer, read), expected);
    }
}

TEST(Files, AreReadAtAnOffsetAndTellTheEndAsAnError) {
    const OpenFile file("12345");
    char buffer[16];
    DWORD read = 99;
    OVERLAPPED at{};
    at.Offset = 3;
    EXPECT_TRUE(ReadFile(file.handle, buffer, 1, &read, &at));
    EXPECT_EQ(std::string(buffer, read), "4");
    EXPECT_TRUE(ReadFile(file.handle, buffer, sizeof(buffer), &read, nullptr));
    EXPECT_EQ(std::string(buffer, read), "5") << "the position follows";
    for (const DWORD high : {0U, 1U}) {
        at.Offset = 5;
        at.OffsetHigh = high;
        EXPECT_FALSE(ReadFile(file.handle, buffer, sizeof(buffer), &read, &at));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_HANDLE_EOF});
        EXPECT_EQ(read, 0U);
    }
}

TEST(Files, AreWrittenAtThePositionAtAnOffsetAndAtTheEnd) {
    const OpenFile file("..........");
    OVERLAPPED at{};
    at.Offset = 4;
    OVERLAPPED end{};
    end.Offset = end.OffsetHigh = 0xFFFFFFFF;
    EXPECT_TRUE(Write(file.handle, "ab"));
    EXPECT_TRUE(Write(file.handle, "cd", &at));
    EXPECT_TRUE(Write(file.handle, "e"));
    EXPECT_TRUE(Write(file.handle, "f", &end));
    EXPECT_TRUE(Write(file.handle, "g"));
    EXPECT_EQ(ReadWholeFile(file.path), "ab..cde...fg");
}

TEST(Files, RefuseWhatTheirHandleWasNotOpenedFor) {
    const OpenFile reader("text", GENERIC_READ), writer("text", GENERIC_WRITE);
    char byte = 0;
    DWORD count = 99;
    EXPECT_FALSE(WriteFile(reader.handle, &byte, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(count, 0U);
    EXPECT_FALSE(SetEndOfFile(reader.handle));
    EXPECT_EQ(GetLastError(), OnWine() ? DWORD{ERROR_INVALID_PARAMETER} : DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(ReadFile(writer.handle, &byte, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST(Files, AreCutAndGrowAtThePosition) {
    const OpenFile file("0123456789");
    for (const std::string& expected : {std::string("012"), std::string("012\0\0", 5)}) {
        EXPECT_EQ(SetFilePointer(file.handle, static_cast<LONG>(expected.size()), nullptr, FILE_BEGIN),
                  expected.size());
        EXPECT_TRUE(SetEndOfFile(file.handle));
        EXPECT_EQ(ReadWholeFile(file.path), expected);
        DWORD high = 99;
        EXPECT_EQ(GetFileSize(file.handle, &high), expected.size());
        EXPECT_EQ(high, 0U);
    }
    EXPECT_EQ(SetFilePointer(file.handle, -2, nullptr, FILE_END), 3U);
    EXPECT_EQ(SetFilePointer(file.handle, -6, nullptr, FILE_END), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NEGATIVE_SEEK});
    EXPECT_EQ(SetFilePointer(file.handle, -1, nullptr, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NEGATIVE_SEEK});
    EXPECT_EQ(SetFilePointer(file.handle, 0, nullptr, 3), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(Files, KeepTheLinesOfAppendingProcessesWhole) {
    if (OnWine())
        GTEST_SKIP() << "Wine looks for the end and writes in two steps, and another process may come between.";
    const std::string path = InHome("shared.log");
    {
        Peer a("append \"" + path + "\" a 300");
        Peer b("append \"" + path + "\" b 300");
        Peer c("append \"" + path + "\" c 300");
        for (Peer* peer : {&a, &b, &c}) EXPECT_EQ(peer->Result(), 0U);
    }
    const std::string text = ReadWholeFile(path);
    ASSERT_EQ(text.size(), 900U * 201U);
    for (std::size_t at = 0; at < text.size(); at += 201) {
        ASSERT_EQ(text.substr(at, 201), std::string(200, text[at]) + "\n") << "at " << at;
    }
}

TEST(Files, TellWhyTheyAreNotThere) {
    WriteWholeFile(InHome("file.txt"), "12345");
    WIN32_FIND_DATAA found;
    const struct {
        std::string path;
        DWORD error;
    } cases[] = {{InHome("absent"), ERROR_FILE_NOT_FOUND}, {InHome("no/absent"), ERROR_PATH_NOT_FOUND}};
    for (const auto& each : cases) {
        EXPECT_EQ(GetFileAttributesA(each.path.c_str()), INVALID_FILE_ATTRIBUTES);
        EXPECT_EQ(GetLastError(), each.error);
        EXPECT_EQ(FindFirstFileA(each.path.c_str(), &found), INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), each.error);
    }
    EXPECT_EQ(GetFileAttributesA(InHome("file.txt").c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0U);
    EXPECT_EQ(GetFileAttributesA(HomePath().c_str()) & FILE_ATTRIBUTE_DIRECTORY, DWORD{FILE_ATTRIBUTE_DIRECTORY});
}

TEST(Files, AreDescribedUnderTheirOwnName) {
    WriteWholeFile(InHome("Sub/File.txt"), "12345");
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA(InHome("sub\\FILE.TXT").c_str(), &found);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    EXPECT_STREQ(found.cFileName, "File.txt");
    EXPECT_EQ(found.nFileSizeLow, 5U);
    EXPECT_EQ(found.nFileSizeHigh, 0U);
    EXPECT_EQ(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, 0U);
    // Later than the year 2000, which began at 125911584000000000.
    EXPECT_GT(found.ftLastWriteTime.dwHighDateTime, 29315904U);
    EXPECT_GT(found.ftCreationTime.dwHighDateTime, 29315904U);
    EXPECT_TRUE(FindClose(search));
    EXPECT_FALSE(FindClose(INVALID_HANDLE_VALUE));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

TEST(Files, AreDeletedButFoldersAreNot) {
    WriteWholeFile(InHome("file.txt"), "");
    EXPECT_TRUE(DeleteFileA(InHome("FILE.TXT").c_str()));
    EXPECT_FALSE(DeleteFileA(InHome("file.txt").c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_FALSE(DeleteFileA(HomePath().c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST(Files, TakeThePlaceOfOthers) {
    WriteWholeFile(InHome("new.txt"), "new");
    WriteWholeFile(InHome("old.txt"), "old");
    EXPECT_TRUE(MoveFileExA(InHome("new.txt").c_str(), InHome("old.txt").c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(ReadWholeFile(InHome("old.txt")), "new");
    EXPECT_FALSE(MoveFileExA(InHome("new.txt").c_str(), InHome("old.txt").c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(Files, HaveFullPaths) {
    char full[MAX_PATH];
    EXPECT_EQ(GetFullPathNameA("C:\\a\\.\\b/../x.txt", sizeof(full), full, nullptr), 10U);
    EXPECT_STREQ(full, "C:\\a\\x.txt");
    EXPECT_EQ(GetFullPathNameA("C:\\a\\x.txt", 10, full, nullptr), 11U);
    EXPECT_EQ(GetFullPathNameA("C:\\..\\a\\", sizeof(full), full, nullptr), 5U);
    EXPECT_STREQ(full, "C:\\a\\");
    EXPECT_EQ(GetFullPathNameA("", sizeof(full), full, nullptr), 0U);
}

TEST(Files, StandardOutputIsOneOfThem) {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    EXPECT_NE(output, INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetStdHandle(STD_OUTPUT_HANDLE), output);
    EXPECT_TRUE(Write(output, "written to standard output\n"));
}

TEST(Files, OfTheWindowsDirectoryLieInAFolder) {
    char path[MAX_PATH];
    const UINT length = GetWindowsDirectoryA(path, sizeof(path));
    EXPECT_EQ(length, std::string(path).size());
    EXPECT_EQ(GetFileAttributesA(path) & FILE_ATTRIBUTE_DIRECTORY, DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(GetWindowsDirectoryA(path, length), length + 1);
}

}  // namespace
}  // namespace wncom::test
