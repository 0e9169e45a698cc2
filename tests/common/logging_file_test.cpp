// The log file: its size limit, its mutex and what goes wrong with it.
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <thread>

#include "tests/common/LogFixture.h"
#include "tests/support/Host.h"
#include "tests/support/MatchesPattern.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

class LoggingFile : public LogTest {
protected:
    LoggingFile() { std::filesystem::remove(DefaultFile()); }

    static std::string DefaultFile() { return HostPath("\\qbv-event.log"); }
    // Lines of 11 bytes each, numbered.
    static std::string Numbered(int lines) {
        std::string text;
        char line[16];
        for (int i = 0; i != lines; ++i) {
            std::snprintf(line, sizeof(line), "%09d\r\n", i);
            text += line;
        }
        return text;
    }
    std::string SizedConfig(int kilobytes) const { return "file," + path + "," + std::to_string(kilobytes) + ",3"; }
};

TEST_F(LoggingFile, IsCutToItsNewestLinesByTheLastEnd) {
    const std::string text = Numbered(20000);
    WriteWholeFile(path, text);
    Start(SizedConfig(100));
    Start(SizedConfig(100));
    EndLogging();
    EXPECT_EQ(text.size(), Text().size());
    EndLogging();
    // 102400 is no multiple of 11: the line that the limit divides is left out.
    EXPECT_EQ(text.substr(text.size() - 102400 / 11 * 11), Text());
}

TEST_F(LoggingFile, IsCutBehindTheFirstLineFeedOfItsNewestBytesOrNotAtAll) {
    struct {
        std::string text;
        int limit;
        std::size_t kept;
    } const cases[] = {{Numbered(1000) + std::string(1024, 'x'), 1, 1024},  // no line feed among them
                       {std::string(3072 - 8, 'x') + "1234567\n", 1, 0},
                       {std::string(2048, '\n'), 1, 1023},
                       {std::string(6000, 'x') + "\n" + std::string(10, 'y'), 5, 10},  // beyond the first chunk
                       {Numbered(100000), 0, 1100000},
                       {Numbered(100000), 1024, 1100000},
                       {std::string(1024, '\n'), 1, 1024},
                       {std::string(1025, '\n'), 1, 1023},
                       {Numbered(100000), 1023, 1023 * 1024 - 11}};
    for (const auto& given : cases) {
        WriteWholeFile(path, given.text);
        Start(SizedConfig(given.limit));
        EndLogging();
        EXPECT_TRUE(Text() == given.text.substr(given.text.size() - given.kept))
            << given.kept << " of " << given.text.size() << " bytes, " << given.limit << " KB";
    }
}

TEST_F(LoggingFile, IsNotCutWhileAnotherHandleHoldsALockOnIt) {
    WriteWholeFile(path, Numbered(1000));
    const HANDLE other = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                     nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_TRUE(LockFile(other, 5000, 0, 1, 0));
    Start(SizedConfig(1));
    EXPECT_FALSE(TrimLogFile(1));
    UnlockFile(other, 5000, 0, 1, 0);
    EXPECT_TRUE(TrimLogFile(1));
    EXPECT_FALSE(TrimLogFile(1));
    CloseHandle(other);
    EXPECT_EQ(1, QueryLogging(nullptr, nullptr)) << "a trim that is not the end";
    Log(3, "line");
    EXPECT_EQ("CWendrel::line", Messages().back());
}

TEST_F(LoggingFile, LeavesTheLevelAndNoReferenceWhenItDoesNotOpen) {
    Start("file," + HomePath() + "/absent/x.log,3");
    EXPECT_EQ(0, QueryLogging(nullptr, nullptr));
    EXPECT_EQ(3, LogLevel);
    Log(3, "lost");
    EXPECT_EQ("", DebuggerText());
    EXPECT_EQ(0, InitLogging(3, LogDestination::File, nullptr, 0));
}

TEST_F(LoggingFile, EndsTheHalfLineThatItWasLeftWith) {
    const std::string found[] = {"half", "half\r", "whole\n", "whole\r\n", ""};
    const std::string ended[] = {"half\r\n", "half\r\n", "whole\n", "whole\r\n", ""};
    for (std::size_t i = 0; i != std::size(found); ++i) {
        WriteWholeFile(path, found[i]);
        Start(FileConfig(3));
        EXPECT_EQ(found[i], Text()) << "only before a line";
        Log(3, "line");
        EXPECT_THAT(Text(), MatchesPattern(ended[i] + "[0-9][^ ]+ CWendrel::line\r\n")) << found[i];
        EndLogging();
    }
}

TEST_F(LoggingFile, SharesAMutexNamedAfterItsPath) {
    const std::string odd = HomePath() + "/Odd~name (1)[2]{3}#.log";
    ASSERT_EQ(1, InitLogging(1, LogDestination::File, odd.c_str(), 0));
    std::string folder = HomePath();
    for (char& c : folder) c = std::strchr("/\\:", c) ? '_' : static_cast<char>(std::tolower(c));
    const std::string name = "qb_rmx_logging_mutex-" + folder + "_odd~name_(1)[2]{3}#.log";
    const HANDLE mutex = OpenMutexA(SYNCHRONIZE, FALSE, name.c_str());
    EXPECT_NE(nullptr, mutex) << name;
    CloseHandle(mutex);
}

TEST_F(LoggingFile, DropsALineWhoseMutexIsHeldAndGoesOn) {
    Start("file,\\held.log,3");
    const HANDLE mutex = OpenMutexA(SYNCHRONIZE, FALSE, "qb_rmx_logging_mutex-_held.log");
    ASSERT_NE(nullptr, mutex);
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(mutex, 0));
    std::thread([] { Log(3, "dropped"); }).join();
    ReleaseMutex(mutex);
    CloseHandle(mutex);
    Log(3, "written");
    EXPECT_THAT(ReadWholeFile(HostPath("\\held.log")), AllOf(HasSubstr("::written\r\n"), Not(HasSubstr("dropped"))));
}

TEST_F(LoggingFile, HandsItsLinesToTheDebuggerAfterAFailedWrite) {
    Start("file,/dev/full,3");
    Log(3, "lost");
    EXPECT_EQ("", DebuggerText());
    Log(3, "kept");
    EXPECT_EQ("CWendrel::kept\r\n", DebuggerText());
    LogDestination destination = LogDestination::None;
    EXPECT_EQ(1, QueryLogging(nullptr, &destination));
    EXPECT_EQ(LogDestination::Debugger, destination);
    EndLogging();
    Start(FileConfig(3));
    Log(3, "again");
    EXPECT_THAT(Messages(), ElementsAre("CWendrel::again"));
}

TEST_F(LoggingFile, TakesLinesOfLevelZeroByDefaultAndIsClosedAgain) {
    Log(0, "first");
    Log(0, "second %d", 2);
    EXPECT_EQ(0, QueryLogging(nullptr, nullptr));
    const auto lines = SplitLines(ReadWholeFile(DefaultFile()));
    ASSERT_THAT(lines, SizeIs(2));
    EXPECT_THAT(lines[1], MatchesPattern("[^ ]+/0\\] [A-Za-z]*::second 2\r\n"));
}

TEST_F(LoggingFile, IsNotTheDefaultOneWhenAnotherDestinationIsOpen) {
    Start("debug,3");
    Log(0, "line");
    EXPECT_EQ("CWendrel::line\r\n", DebuggerText());
    EXPECT_EQ("", ReadWholeFile(DefaultFile()));
}

}  // namespace
}  // namespace wncom::test
