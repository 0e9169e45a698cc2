#include <gtest/gtest.h>
#include <windows.h>

#include <ostream>
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
    explicit OpenFile(const std::string& name, const std::string& text = "") : path(InHome(name)) {
        WriteWholeFile(path, text);
        handle = Open(path, OPEN_EXISTING);
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

struct Disposition {
    const char* name;
    DWORD value;
    bool opensAbsent;
    DWORD errorAbsent;
    bool opensPresent;
    DWORD errorPresent;
    const char* textPresent;
};

void PrintTo(const Disposition& disposition, std::ostream* output) { *output << disposition.name; }

class FileDisposition : public testing::TestWithParam<Disposition> {};

TEST_P(FileDisposition, TellsWhatItFoundAndKeepsOrCutsIt) {
    const Disposition& expected = GetParam();
    const HANDLE absent = Open(InHome("absent.txt"), expected.value);
    EXPECT_EQ(GetLastError(), expected.errorAbsent);
    EXPECT_EQ(absent != INVALID_HANDLE_VALUE, expected.opensAbsent);
    if (absent != INVALID_HANDLE_VALUE) CloseHandle(absent);

    WriteWholeFile(InHome("present.txt"), "text");
    const HANDLE present = Open(InHome("present.txt"), expected.value);
    EXPECT_EQ(GetLastError(), expected.errorPresent);
    EXPECT_EQ(present != INVALID_HANDLE_VALUE, expected.opensPresent);
    if (present != INVALID_HANDLE_VALUE) CloseHandle(present);
    EXPECT_EQ(ReadWholeFile(InHome("present.txt")), expected.textPresent);
}

INSTANTIATE_TEST_SUITE_P(
    Files, FileDisposition,
    testing::Values(Disposition{"CreateNew", CREATE_NEW, true, NO_ERROR, false, ERROR_FILE_EXISTS, "text"},
                    Disposition{"CreateAlways", CREATE_ALWAYS, true, NO_ERROR, true, ERROR_ALREADY_EXISTS, ""},
                    Disposition{"OpenExisting", OPEN_EXISTING, false, ERROR_FILE_NOT_FOUND, true, NO_ERROR, "text"},
                    Disposition{"OpenAlways", OPEN_ALWAYS, true, NO_ERROR, true, ERROR_ALREADY_EXISTS, "text"},
                    Disposition{"TruncateExisting", TRUNCATE_EXISTING, false, ERROR_FILE_NOT_FOUND, true, NO_ERROR,
                                ""}),
    [](const auto& instance) { return instance.param.name; });

TEST(Files, RefusesToOpenFoldersMissingFoldersAndNonsense) {
    EXPECT_EQ(Open(HomePath(), OPEN_EXISTING), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(Open(HomePath(), OPEN_EXISTING, GENERIC_READ), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(Open(InHome("no/such.txt"), OPEN_ALWAYS), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(Open("", OPEN_ALWAYS), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(Open(InHome("a.txt"), 9), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(Files, OpensByAWidePath) {
    const OpenFile file("wide.txt", "x");
    std::basic_string<WCHAR> path(file.path.begin(), file.path.end());
    const HANDLE wide = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(wide, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(CloseHandle(wide));
}

TEST(Files, ReadsWhatIsThereAndThenNothing) {
    const OpenFile file("read.txt", "12345");
    char buffer[16];
    DWORD read = 99;
    EXPECT_TRUE(ReadFile(file.handle, buffer, sizeof(buffer), &read, nullptr));
    EXPECT_EQ(std::string(buffer, read), "12345");
    EXPECT_TRUE(ReadFile(file.handle, buffer, sizeof(buffer), &read, nullptr));
    EXPECT_EQ(read, 0U);
}

TEST(Files, ReadsAtAnOffsetAndTellsTheEndAsAnError) {
    const OpenFile file("offset.txt", "12345");
    char buffer[16];
    DWORD read = 99;
    OVERLAPPED at{};
    at.Offset = 3;
    EXPECT_TRUE(ReadFile(file.handle, buffer, sizeof(buffer), &read, &at));
    EXPECT_EQ(std::string(buffer, read), "45");
    EXPECT_EQ(SetFilePointer(file.handle, 0, nullptr, FILE_CURRENT), 5U);
    at.Offset = 5;
    EXPECT_FALSE(ReadFile(file.handle, buffer, sizeof(buffer), &read, &at));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_HANDLE_EOF});
    EXPECT_EQ(read, 0U);
}

TEST(Files, WritesAtThePositionAtAnOffsetAndAtTheEnd) {
    const OpenFile file("write.txt", "..........");
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

TEST(Files, RefusesWhatTheHandleWasNotOpenedFor) {
    const OpenFile file("access.txt", "text");
    const HANDLE reader = Open(file.path, OPEN_EXISTING, GENERIC_READ);
    const HANDLE writer = Open(file.path, OPEN_EXISTING, GENERIC_WRITE);
    char byte = 0;
    DWORD count = 99;
    EXPECT_FALSE(WriteFile(reader, &byte, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(count, 0U);
    EXPECT_FALSE(SetEndOfFile(reader));
    EXPECT_EQ(GetLastError(), OnWine() ? DWORD{ERROR_INVALID_PARAMETER} : DWORD{ERROR_ACCESS_DENIED});
    EXPECT_FALSE(ReadFile(writer, &byte, 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
    CloseHandle(reader);
    CloseHandle(writer);
}

TEST(Files, MovesThePositionFromThreeOriginsButNotBeforeTheStart) {
    const OpenFile file("seek.txt", "0123456789");
    EXPECT_EQ(SetFilePointer(file.handle, 4, nullptr, FILE_BEGIN), 4U);
    EXPECT_EQ(SetFilePointer(file.handle, -1, nullptr, FILE_CURRENT), 3U);
    EXPECT_EQ(SetFilePointer(file.handle, 2, nullptr, FILE_END), 12U);
    EXPECT_EQ(SetFilePointer(file.handle, -13, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NEGATIVE_SEEK});
    EXPECT_EQ(SetFilePointer(file.handle, 0, nullptr, FILE_CURRENT), 12U);
    EXPECT_EQ(SetFilePointer(file.handle, 0, nullptr, 3), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(Files, HoldsPositionsOf64Bits) {
    const OpenFile file("large.txt");
    LONG high = 1;
    SetLastError(4711);
    EXPECT_EQ(SetFilePointer(file.handle, -1, &high, FILE_BEGIN), 0xFFFFFFFFU);
    EXPECT_EQ(GetLastError(), DWORD{NO_ERROR});
    EXPECT_EQ(high, 1);
    // The position would not fit into the result alone.
    EXPECT_EQ(SetFilePointer(file.handle, 0, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER);
    // Wine answers its low half instead, here the same number.
    EXPECT_EQ(GetLastError(), OnWine() ? DWORD{NO_ERROR} : DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(SetFilePointer(file.handle, 1, nullptr, FILE_BEGIN), 1U);
}

TEST(Files, CutsAndGrowsAtThePosition) {
    const OpenFile file("end.txt", "0123456789");
    DWORD high = 99;
    EXPECT_EQ(GetFileSize(file.handle, &high), 10U);
    EXPECT_EQ(high, 0U);
    SetFilePointer(file.handle, 3, nullptr, FILE_BEGIN);
    EXPECT_TRUE(SetEndOfFile(file.handle));
    EXPECT_EQ(ReadWholeFile(file.path), "012");
    SetFilePointer(file.handle, 5, nullptr, FILE_BEGIN);
    EXPECT_TRUE(SetEndOfFile(file.handle));
    EXPECT_EQ(ReadWholeFile(file.path), std::string("012\0\0", 5));
}

TEST(Files, AppendingProcessesKeepEachOthersLinesWhole) {
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

TEST(Files, MakesFoldersOnceAndOnlyInFolders) {
    EXPECT_TRUE(CreateDirectoryA(InHome("folder").c_str(), nullptr));
    EXPECT_EQ(GetFileAttributesA(InHome("folder").c_str()) & FILE_ATTRIBUTE_DIRECTORY,
              DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_FALSE(CreateDirectoryA(InHome("folder").c_str(), nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_FALSE(CreateDirectoryA(InHome("no/folder").c_str(), nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST(Files, TellsWhyAFileHasNoAttributes) {
    WriteWholeFile(InHome("file.txt"), "");
    EXPECT_EQ(GetFileAttributesA(InHome("file.txt").c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0U);
    EXPECT_EQ(GetFileAttributesA(InHome("absent").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(GetFileAttributesA(InHome("no/absent").c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST(Files, DeletesFilesOnly) {
    WriteWholeFile(InHome("file.txt"), "");
    EXPECT_TRUE(DeleteFileA(InHome("FILE.TXT").c_str()));
    EXPECT_FALSE(DeleteFileA(InHome("file.txt").c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_FALSE(DeleteFileA(HomePath().c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST(Files, MovesOverAnotherFileOnlyWhenTold) {
    WriteWholeFile(InHome("new.txt"), "new");
    WriteWholeFile(InHome("old.txt"), "old");
    EXPECT_FALSE(MoveFileExA(InHome("new.txt").c_str(), InHome("old.txt").c_str(), 0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_EQ(ReadWholeFile(InHome("old.txt")), "old");
    EXPECT_TRUE(MoveFileExA(InHome("new.txt").c_str(), InHome("old.txt").c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(ReadWholeFile(InHome("old.txt")), "new");
    EXPECT_FALSE(MoveFileExA(InHome("new.txt").c_str(), InHome("old.txt").c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(Files, GivesTheFullPathAndItsLastPart) {
    char full[MAX_PATH];
    char* part = nullptr;
    const DWORD length = GetFullPathNameA("C:\\a\\.\\b/../x.txt", sizeof(full), full, &part);
    EXPECT_STREQ(full, "C:\\a\\x.txt");
    EXPECT_EQ(length, 10U);
    EXPECT_STREQ(part, "x.txt");
    EXPECT_EQ(GetFullPathNameA("C:\\a\\x.txt", 10, full, &part), 11U);
    EXPECT_EQ(GetFullPathNameA("C:\\a\\", sizeof(full), full, &part), 5U);
    EXPECT_EQ(part, nullptr);
    EXPECT_EQ(GetFullPathNameA("", sizeof(full), full, nullptr), 0U);
}

TEST(Files, StandardOutputIsOneOfThem) {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    EXPECT_NE(output, INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetStdHandle(STD_OUTPUT_HANDLE), output);
    EXPECT_TRUE(Write(output, "written to standard output\n"));
}

TEST(Files, TheWindowsDirectoryIsAFolder) {
    char path[MAX_PATH];
    const UINT length = GetWindowsDirectoryA(path, sizeof(path));
    EXPECT_EQ(length, std::string(path).size());
    EXPECT_EQ(GetFileAttributesA(path) & FILE_ATTRIBUTE_DIRECTORY, DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(GetWindowsDirectoryA(path, length), length + 1);
}

}  // namespace
}  // namespace wncom::test
