// Where paths lead on a host without drives.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "platform/include/wnplatform/inspect.h"
#include "tests/support/TestHome.h"

namespace {

using wncom::test::HomePath;
using wncom::test::WriteWholeFile;
using wnplatform::HostPath;

TEST(Paths, OfTheDriveLeadIntoTheHome) {
    const std::string drive = HomePath() + "/drive_c";
    EXPECT_EQ(HostPath("C:\\dir\\x"), drive + "/dir/x");
    EXPECT_EQ(HostPath("c:/dir/x"), drive + "/dir/x");
    EXPECT_EQ(HostPath("\\dir\\x"), drive + "/dir/x");
    EXPECT_EQ(HostPath("C:\\"), drive + "/");
    EXPECT_EQ(HostPath(OLESTR("C:\\x")), drive + "/x");
}

TEST(Paths, DoNotLeaveTheDriveUpwards) {
    EXPECT_EQ(HostPath("C:\\..\\..\\etc\\x"), HomePath() + "/drive_c/etc/x");
    EXPECT_EQ(HostPath("\\a\\..\\.\\b"), HomePath() + "/drive_c/b");
}

TEST(Paths, OfOtherDrivesLeadToNothing) {
    EXPECT_FALSE(std::filesystem::exists(HostPath("D:\\")));
    EXPECT_FALSE(std::filesystem::exists(HostPath("D:")));
}

TEST(Paths, OfTheHostStayAsTheyAre) {
    EXPECT_EQ(HostPath("/absent/Dir\\x"), "/absent/Dir/x");
    EXPECT_EQ(HostPath("absent\\x"), "absent/x");
    EXPECT_EQ(HostPath(""), "");
    EXPECT_EQ(HostPath(static_cast<const char*>(nullptr)), "");
}

TEST(Paths, MatchEveryComponentWithoutCaseWhereTheExactNameIsAbsent) {
    const std::string file = HomePath() + "/drive_c/Program Files/Sub Dir/File.DLL";
    WriteWholeFile(file, "x");
    EXPECT_EQ(HostPath("c:\\program files\\SUB DIR\\file.dll"), file);
    std::string lowered = file;
    for (char& c : lowered) c = static_cast<char>(std::tolower(c));
    EXPECT_EQ(HostPath(lowered.c_str()), file);
    // What is yet to be made keeps its spelling.
    EXPECT_EQ(HostPath("C:\\program files\\New.TXT"), HomePath() + "/drive_c/Program Files/New.TXT");
}

TEST(Paths, PreferTheExactName) {
    WriteWholeFile(HomePath() + "/drive_c/name", "x");
    WriteWholeFile(HomePath() + "/drive_c/NAME", "x");
    EXPECT_EQ(HostPath("C:\\name"), HomePath() + "/drive_c/name");
    EXPECT_EQ(HostPath("C:\\Name"), HomePath() + "/drive_c/NAME");
}

TEST(Paths, FindAWayAroundFoldersThatAreDeadEnds) {
    const std::string drive = HomePath() + "/drive_c";
    WriteWholeFile(drive + "/lib/other", "x");
    WriteWholeFile(drive + "/LIB/Sub/deep.dll", "x");
    WriteWholeFile(drive + "/Lib/sub/File.dll", "x");
    WriteWholeFile(drive + "/lib/sub", "a file");
    EXPECT_EQ(HostPath("C:\\lib\\sub\\file.dll"), drive + "/Lib/sub/File.dll");
    EXPECT_EQ(HostPath("C:\\lib\\sub\\deep.dll"), drive + "/LIB/Sub/deep.dll");
    EXPECT_EQ(HostPath("C:\\LIB\\OTHER"), drive + "/lib/other");
    // Where none leads to the end, the farthest; of several the first that was tried.
    EXPECT_EQ(HostPath("C:\\lib\\Sub\\New\\x"), drive + "/LIB/Sub/New/x");
    EXPECT_EQ(HostPath("C:\\lib\\New\\"), drive + "/lib/New/");
}

TEST(Paths, AreInTheNarrowCodePage) {
    const std::string file = HomePath() +
                             "/drive_c/gr\xC3\xBC\xC3\x9F"
                             "e";
    WriteWholeFile(file, "x");
    EXPECT_EQ(HostPath("C:\\gr\xFC\xDF"
                       "e"),
              file);
    EXPECT_EQ(HostPath("C:\\GR\xDC\xDF"
                       "E"),
              file);
    EXPECT_EQ(HostPath(OLESTR("C:\\gr\u00FC\u00DFe")), file);
}

}  // namespace
