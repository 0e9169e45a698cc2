#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::string Path() { return InHome("settings.ini"); }

// The number that a value reads as, 7 being the default.
UINT Read(const std::string& value) {
    WriteWholeFile(Path(), "[Cache]\r\nCapTicket=" + value + "\r\n");
    return GetPrivateProfileIntA("Cache", "CapTicket", 7, Path().c_str());
}

std::string InWindowsDirectory(const char* name) {
    char folder[MAX_PATH];
    GetWindowsDirectoryA(folder, sizeof(folder));
    return std::string(folder) + "/" + name;
}

TEST(IniFiles, ReadTheNumberThatAValueBeginsWith) {
    EXPECT_EQ(Read("12"), 12U);
    EXPECT_EQ(Read("  12xyz"), 12U);
    EXPECT_EQ(Read("\"12\""), 12U);
    EXPECT_EQ(Read("0x1F"), 31U);
    EXPECT_EQ(Read("-1"), 0xFFFFFFFFU);
    EXPECT_EQ(Read("text"), 0U);
    EXPECT_EQ(Read("0x"), 0U);
    EXPECT_EQ(Read(""), 7U);
}

TEST(IniFiles, GiveTheDefaultForWhatIsMissing) {
    WriteWholeFile(Path(), "[Cache]\nOther=1\n[Next]\nCapTicket=2\n");
    EXPECT_EQ(GetPrivateProfileIntA("Cache", "CapTicket", 7, Path().c_str()), 7U);
    EXPECT_EQ(GetPrivateProfileIntA("Absent", "CapTicket", -1, Path().c_str()), 0xFFFFFFFFU);
    EXPECT_EQ(GetPrivateProfileIntA("Cache", "CapTicket", 7, InHome("absent.ini").c_str()), 7U);
}

TEST(IniFiles, FindNamesWhateverTheirCaseAndBlanks) {
    WriteWholeFile(Path(), "; CapTicket=1\n  [ CACHE ]  \n;CapTicket=2\n  capticket \t=  3\nCapTicket=4\n");
    EXPECT_EQ(GetPrivateProfileIntA("Cache", "CapTicket", 7, Path().c_str()), 3U);
}

TEST(IniFiles, WithABareNameLieInTheWindowsDirectoryAlone) {
    WriteWholeFile(InHome("bare.ini"), "[a]\nb=1\n");
    EXPECT_EQ(GetPrivateProfileIntA("a", "b", 7, "wncom-test-bare.ini"), 7U);
    EXPECT_TRUE(WritePrivateProfileStringA("a", "b", "2", "wncom-test-bare.ini"));
    EXPECT_EQ(GetPrivateProfileIntA("a", "b", 7, "wncom-test-bare.ini"), 2U);
    EXPECT_EQ(GetPrivateProfileIntA("a", "b", 7, InWindowsDirectory("wncom-test-bare.ini").c_str()), 2U);
    EXPECT_TRUE(DeleteFileA(InWindowsDirectory("wncom-test-bare.ini").c_str()));
    EXPECT_EQ(GetPrivateProfileIntA("a", "b", 7, "wncom-test-bare.ini"), 7U);
}

TEST(IniFiles, ChangeWhereTheyAreToldAndStayTheSameElsewhere) {
    WriteWholeFile(Path(), "; first\r\n[a]\r\nx=1\r\ny = 2\r\n\r\n[b]\r\nx=3\r\n");
    EXPECT_TRUE(WritePrivateProfileStringA("A", "X", "10", Path().c_str()));
    EXPECT_TRUE(WritePrivateProfileStringA("a", "z", "4", Path().c_str()));
    EXPECT_TRUE(WritePrivateProfileStringA("c", "x", "5", Path().c_str()));
    EXPECT_TRUE(WritePrivateProfileStringA("a", "y", nullptr, Path().c_str()));
    EXPECT_EQ(GetPrivateProfileIntA("a", "x", 7, Path().c_str()), 10U);
    EXPECT_EQ(GetPrivateProfileIntA("a", "y", 7, Path().c_str()), 7U);
    EXPECT_EQ(GetPrivateProfileIntA("a", "z", 7, Path().c_str()), 4U);
    EXPECT_EQ(GetPrivateProfileIntA("b", "x", 7, Path().c_str()), 3U);
    EXPECT_EQ(GetPrivateProfileIntA("c", "x", 7, Path().c_str()), 5U);
    EXPECT_TRUE(WritePrivateProfileStringA("b", nullptr, nullptr, Path().c_str()));
    EXPECT_EQ(GetPrivateProfileIntA("b", "x", 7, Path().c_str()), 7U);
    EXPECT_EQ(ReadWholeFile(Path()).substr(0, 9), "; first\r\n");
}

TEST(IniFiles, TellWhenTheyCannotBeWritten) {
    EXPECT_FALSE(WritePrivateProfileStringA("a", "b", "1", InHome("no/file.ini").c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
}

}  // namespace
}  // namespace wncom::test
