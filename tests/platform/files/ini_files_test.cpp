#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/platform/processes/Peer.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::string Path() { return InHome("settings.ini"); }

// The number that a key of a text reads as, 7 being the default.
UINT Read(const std::string& text, const char* section = "Cache", const char* key = "CapTicket") {
    WriteWholeFile(Path(), text);
    return GetPrivateProfileIntA(section, key, 7, Path().c_str());
}

std::string InWindowsDirectory(const char* name) {
    char folder[MAX_PATH];
    GetWindowsDirectoryA(folder, sizeof(folder));
    return std::string(folder) + "/" + name;
}

TEST(IniFiles, ReadTheNumberThatAValueBeginsWith) {
    const struct {
        const char* value;
        UINT number;
    } cases[] = {
        {"12", 12},  {"  12xyz", 12},   {"\"12\"", 12}, {"'12'", 12}, {"0x1F", 31},
        {"0xa", 10}, {"0b101", 5},      {"0o17", 15},   {"010", 10},  {"-1", 0xFFFFFFFF},
        {"+5", 5},   {"4294967298", 2}, {"text", 0},    {"0x", 0},    {"", 7},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(Read("[Cache]\r\nCapTicket=" + std::string(each.value) + "\r\n"), each.number) << each.value;
    }
}

TEST(IniFiles, FindNamesWhateverTheirCaseAndBlanksInTheFirstSectionAlone) {
    EXPECT_EQ(Read("; CapTicket=1\n  [ CACHE ]  \n;CapTicket=2\n  capticket \t=  3\nCapTicket=4\n"), 3U);
    const std::string text = "[Cache]\nOther=1\n[Next]\nCapTicket=2\n[Cache]\nCapTicket=3\n";
    EXPECT_EQ(Read(text), 7U);
    EXPECT_EQ(Read(text, "Absent"), 7U);
    EXPECT_EQ(Read(text, "Next"), 2U);
    EXPECT_EQ(GetPrivateProfileIntA("Cache", "CapTicket", -1, InHome("absent.ini").c_str()), 0xFFFFFFFFU);
}

TEST(IniFiles, WithABareNameLieInTheWindowsDirectoryAlone) {
    const std::string path = InWindowsDirectory("wncom-test-bare.ini");
    const auto read = [](const char* file) { return GetPrivateProfileIntA("a", "b", 7, file); };
    EXPECT_EQ(read("wncom-test-bare.ini"), 7U);
    EXPECT_TRUE(WritePrivateProfileStringA("a", "b", "2", "wncom-test-bare.ini"));
    EXPECT_EQ(read("wncom-test-bare.ini"), 2U);
    EXPECT_EQ(read(path.c_str()), 2U);
    EXPECT_TRUE(DeleteFileA(path.c_str()));
}

TEST(IniFiles, ChangeWhereTheyAreToldAndStayTheSameElsewhere) {
    WriteWholeFile(Path(), "; first\r\n[a]\r\nx=1\r\ny = 2\r\n\r\n[b]\r\nx=3\r\n");
    EXPECT_TRUE(WritePrivateProfileStringA("A", "X", "10", Path().c_str()));
    EXPECT_TRUE(WritePrivateProfileStringA("a", "z", "4", Path().c_str()));
    EXPECT_TRUE(WritePrivateProfileStringA("c", "x", "5", Path().c_str()));
    EXPECT_TRUE(WritePrivateProfileStringA("a", "y", nullptr, Path().c_str()));
    EXPECT_TRUE(WritePrivateProfileStringA("b", nullptr, nullptr, Path().c_str()));
    const struct {
        const char *section, *key;
        UINT number;
    } cases[] = {{"a", "x", 10}, {"a", "y", 7}, {"a", "z", 4}, {"b", "x", 7}, {"c", "x", 5}};
    for (const auto& each : cases) {
        EXPECT_EQ(GetPrivateProfileIntA(each.section, each.key, 7, Path().c_str()), each.number) << each.key;
    }
    EXPECT_EQ(ReadWholeFile(Path()).substr(0, 9), "; first\r\n");
}

TEST(IniFiles, TellWhenTheyCannotBeWritten) {
    EXPECT_FALSE(WritePrivateProfileStringA("a", "b", "1", InHome("no/file.ini").c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
}

}  // namespace
}  // namespace wncom::test
