// Levels, references and destinations of the logger.
#include <algorithm>

#include "tests/common/LogFixture.h"
#include "tests/support/MatchesPattern.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Logging = LogTest;

TEST_F(Logging, WritesNothingWhenNothingIsConfigured) {
    StartLogging("CWendrel");
    Log(1, "lost");
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_EQ("", DebuggerText());
}

TEST_F(Logging, PutsDateProcessThreadLevelAndComponentBeforeTheMessage) {
    Start(FileConfig(3), "JobControlFactory");
    Log(3, "Entering %s", "here");
    const std::string ids = std::to_string(GetCurrentProcessId()) + ":" + std::to_string(GetCurrentThreadId());
    EXPECT_THAT(Text(), MatchesPattern("1?[0-9]/[1-3]?[0-9]/[0-9][0-9]-[0-2][0-9]:[0-5][0-9]:[0-6][0-9],\\[" + ids +
                                       "/3\\] JobControlFactory::Entering here\r\n"));
}

TEST_F(Logging, WritesLevelsUpToTheConfiguredOne) {
    Start(FileConfig(3));
    for (std::uint8_t level = 0; level != 9; ++level) Log(level, "%d", level);
    EXPECT_THAT(Messages(), ElementsAre("CWendrel::0", "CWendrel::1", "CWendrel::2", "CWendrel::3"));
}

TEST_F(Logging, EvaluatesNoArgumentOfADisabledLine) {
    int evaluated = 0;
    WNCOM_LOG(1, "%d", ++evaluated);
    EXPECT_EQ(0, evaluated);
    Start("debug,1");
    WNCOM_LOG(1, "%d", ++evaluated);
    EXPECT_EQ(1, evaluated);
}

TEST_F(Logging, KeepsASingleLineFeed) {
    Start(FileConfig(1));
    Log(1, "a\n");
    Log(1, "%s", "b\n");
    Log(1, "c");
    const std::string text = Text();
    EXPECT_EQ(1, std::count(text.begin(), text.end(), '\r'));
    EXPECT_THAT(Messages(), ElementsAre("CWendrel::a", "CWendrel::b", "CWendrel::c"));
}

TEST_F(Logging, WritesToStandardOutputWithoutThePrefix) {
    testing::internal::CaptureStdout();
    Start("console,3");
    Log(3, "100%% of %s\n", "%s");
    Log(3, "next");
    // On Windows, what is captured is read back as text, without the carriage return.
    EXPECT_THAT(testing::internal::GetCapturedStdout(), MatchesPattern("CWendrel::100% of %s\nCWendrel::next\r?\n"));
}

TEST_F(Logging, MarksTheFirstStartAndTheLastEndAtLevelFour) {
    Start(FileConfig(4));
    Start(FileConfig(4), "CWendrelParent");
    SetRegistryText(kLoggingKey, nullptr, "debug,4");
    StartLogging("JobControlFactory");  // refused
    EndLogging();
    EXPECT_THAT(Messages(), ElementsAre("CWendrel:: ---Start Logging---"));
    EndLogging();
    const auto marked = ElementsAre("CWendrel:: ---Start Logging---", "JobControlFactory:: ---End Logging---");
    EXPECT_THAT(Messages(), marked);
    Start(FileConfig(3));
    EndLogging();
    EXPECT_THAT(Messages(), marked);
}

TEST_F(Logging, JoinsTheOpenDestinationWhateverElseTheSecondStartAsksFor) {
    Start(FileConfig(3));
    const std::string other = HomePath() + "/other.log";
    Start("file," + other + ",5", "CWendrelParent");
    std::uint8_t level = 0;
    EXPECT_EQ(2, QueryLogging(&level, nullptr));
    EXPECT_EQ(3, level);
    Log(3, "line");
    EXPECT_THAT(Messages(), ElementsAre("CWendrelParent::line"));
    EXPECT_EQ("", ReadWholeFile(other));
}

TEST_F(Logging, RefusesAnotherKindOfDestinationAndStaysOpenWhenWhoWasRefusedEnds) {
    Start(FileConfig(3));
    for (const std::string other : {"debug,5", "console,5", "file,y.log,9,5"}) {
        SCOPED_TRACE(other);
        SetRegistryText(kLoggingKey, nullptr, other);
        bool taken = true;
        EXPECT_EQ(3, StartLogging("CWendrelParent", &taken));
        EXPECT_FALSE(taken);
        LogReference().Start("CWendrelParent");
    }
    LogDestination destination = LogDestination::None;
    EXPECT_EQ(1, QueryLogging(nullptr, &destination));
    EXPECT_EQ(LogDestination::File, destination);
}

TEST_F(Logging, ReadsTheRegistryAfreshAfterTheLastEnd) {
    Start("debug,3");
    EndLogging();
    std::uint8_t level = 77;
    LogDestination destination = LogDestination::Console;
    EXPECT_EQ(0, QueryLogging(&level, &destination));
    EXPECT_EQ(77, level);
    EXPECT_EQ(LogDestination::Console, destination);
    EXPECT_EQ(0, LogLevel);
    Start(FileConfig(5));
    EXPECT_EQ(5, LogLevel);
}

TEST_F(Logging, NamesTheComponentThatStartedLastEvenByATextThatOpensNothing) {
    Start("debug,1");
    Start("nothing", "JobControlFactory");
    Log(1, "line");
    Start("debug,1", std::string(1000, 'n').c_str());
    Log(1, "line");
    EXPECT_EQ("JobControlFactory::line\r\n" + std::string(63, 'n') + "::line\r\n", DebuggerText());
}

TEST_F(Logging, KeepsTheLastError) {
    for (const std::string& configuration : {std::string("debug,3"), std::string("console,3"), FileConfig(3)}) {
        Start(configuration);
        SetLastError(1234);
        Log(3, "line");
        EXPECT_EQ(1234U, GetLastError()) << configuration;
        EndLogging();
    }
    SetLastError(1234);
    Log(0, "line");
    EXPECT_EQ(1234U, GetLastError());
}

TEST_F(Logging, ShowsAtMostTwentyThreeBytes) {
    Start("debug,3");
    const unsigned char five[] = {0x01, 0xAB, 0x00, 0x10, 0xFF};
    LogBytes(3, false, five, 5);
    const std::string many(24, '\x7F');
    LogBytes(3, true, many.data(), 23);
    LogBytes(3, true, many.data(), 24);
    LogBytes(3, true, nullptr, 4000000000U);
    LogBytes(4, true, five, 5);
    std::string shown;
    for (int i = 0; i != 23; ++i) shown += " 7F";
    EXPECT_EQ(
        "CWendrel::    5 SND> 01 AB 00 10 FF\r\n"
        "CWendrel::   23 <RCV" +
            shown +
            "\r\n"
            "CWendrel::   24 <RCV" +
            shown +
            "\r\n"
            "CWendrel::4000000000 <RCV\r\n",
        DebuggerText());
}

}  // namespace
}  // namespace wncom::test
