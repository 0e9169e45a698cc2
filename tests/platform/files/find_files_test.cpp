#include <gmock/gmock.h>
#include <windows.h>

#include <string>
#include <vector>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The names that a search in the folder of the test gives, in order, without "." and "..".
std::vector<std::string> Search(const std::string& pattern) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((InHome("searched/") + pattern).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        if (found.cFileName[0] != '.') names.emplace_back(found.cFileName);
    } while (FindNextFileA(search, &found));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
    EXPECT_TRUE(FindClose(search));
    return names;
}

class FindFiles : public testing::Test {
protected:
    FindFiles() {
        for (const char* name : {"a.txt", "ab.txt", "b.log", "plain"}) {
            WriteWholeFile(InHome("searched/") + name, "12345");
        }
        CreateDirectoryA(InHome("searched/sub").c_str(), nullptr);
    }
};

TEST_F(FindFiles, MatchesPatternsWithoutRegardToCase) {
    EXPECT_THAT(Search("*"), ElementsAre("a.txt", "ab.txt", "b.log", "plain", "sub"));
    EXPECT_THAT(Search("*.*"), ElementsAre("a.txt", "ab.txt", "b.log", "plain", "sub"));
    EXPECT_THAT(Search("*.TXT"), ElementsAre("a.txt", "ab.txt"));
    EXPECT_THAT(Search("?.txt"), ElementsAre("a.txt"));
    EXPECT_THAT(Search("a*b*t"), ElementsAre("ab.txt"));
    EXPECT_THAT(Search("PLAIN"), ElementsAre("plain"));
}

TEST_F(FindFiles, TellsAMissingFileFromAMissingFolder) {
    EXPECT_THAT(Search("*.none"), IsEmpty());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_THAT(Search("absent"), IsEmpty());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_THAT(Search("no\\absent"), IsEmpty());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(FindFiles, DescribesWhatItFound) {
    WIN32_FIND_DATAA found;
    FindClose(FindFirstFileA(InHome("searched\\a.txt").c_str(), &found));
    EXPECT_EQ(found.nFileSizeLow, 5U);
    EXPECT_EQ(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, 0U);
    // Later than the year 2000, which began at 125911584000000000.
    EXPECT_GT(found.ftLastWriteTime.dwHighDateTime, 29315904U);
    FindClose(FindFirstFileA(InHome("searched\\sub").c_str(), &found));
    EXPECT_EQ(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY, DWORD{FILE_ATTRIBUTE_DIRECTORY});
}

TEST_F(FindFiles, ASearchIsClosedByItsOwnFunctionOnly) {
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA(InHome("searched\\*").c_str(), &found);
    EXPECT_TRUE(FindClose(search));
    const HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
    EXPECT_FALSE(FindClose(INVALID_HANDLE_VALUE));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_TRUE(CloseHandle(mutex));
}

}  // namespace
}  // namespace wncom::test
