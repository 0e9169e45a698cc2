#include "tests/common/LogFixture.h"

namespace wncom::test {
namespace {

class LoggingConfig : public LogTest {
protected:
    LogDestination Destination() const {
        LogDestination destination = LogDestination::None;
        QueryLogging(nullptr, &destination);
        return destination;
    }
};

TEST_F(LoggingConfig, OpensWhatTheTextAsksFor) {
    struct Case {
        std::string text;
        LogDestination destination;
        int level;
    };
    const Case cases[] = {
        {"console,3", LogDestination::Console, 3},
        {"CONSOLE, 4", LogDestination::Console, 4},
        {"console,5,file,6", LogDestination::Console, 5},
        {"console,", LogDestination::Console, 0},
        {"console,x", LogDestination::Console, 0},
        {"console,-1", LogDestination::Console, 0},
        {"debug,8x", LogDestination::Debugger, 8},
        {"debug,257", LogDestination::Debugger, 1},
        {"debug,4294967301", LogDestination::Debugger, 5},
        {"debug,340282366920938463463374607431768211463", LogDestination::Debugger, 7},
        {"File," + path + ",3", LogDestination::File, 3},
        {"file," + path + ",100,3", LogDestination::SizedFile, 3},
        {"file," + path + ",,\t7", LogDestination::SizedFile, 7},
    };
    for (const Case& given : cases) {
        SCOPED_TRACE(given.text);
        EXPECT_EQ(given.level, ParseLoggingConfig(given.text.c_str()));
        EXPECT_EQ(given.destination, Destination());
        EXPECT_EQ(given.level, LogLevel);
        CloseLogging();
    }
}

TEST_F(LoggingConfig, OpensNothingForWhatItDoesNotUnderstand) {
    const std::string noLevel = "file," + path;
    for (const char* text : {"", "console", "file", noLevel.c_str(), "screen,3", " console,3", ",3"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(0, ParseLoggingConfig(text));
        EXPECT_EQ(0, QueryLogging(nullptr, nullptr));
    }
    EXPECT_EQ(0, ParseLoggingConfig(nullptr));
    EXPECT_EQ(0, ParseLoggingConfig(("file," + std::string(300, 'x') + ",3").c_str())) << "cut before its level";
}

TEST_F(LoggingConfig, PrefersTheComponentsOwnValue) {
    SetRegistryText(kParentKey, "Logging", "debug,1");
    SetRegistryText(kLoggingKey, nullptr, "debug,2");
    SetRegistryText(kLoggingKey, "CWendrel", "debug,3");
    EXPECT_EQ(3, StartLogging("CWendrel"));
    EndLogging();
    EXPECT_EQ(2, StartLogging("CWendrelParent"));
}

TEST_F(LoggingConfig, AsksTheParentKeyOnlyWhereTheKeyIsAbsent) {
    bool taken = true;
    EXPECT_EQ(0, StartLogging("CWendrel", &taken));
    EXPECT_FALSE(taken);
    SetRegistryText(kParentKey, "Logging", "debug,1");
    EXPECT_EQ(1, StartLogging("CWendrel"));
    EndLogging();
    SetRegistryText(kLoggingKey, "Other", "debug,2");
    EXPECT_EQ(0, StartLogging("CWendrel"));
    EXPECT_EQ(0, QueryLogging(nullptr, nullptr));
}

TEST_F(LoggingConfig, TakesAValueThatFitsAndFallsBackFromOneThatDoesNot) {
    const auto text = [](std::size_t size) { return "debug,3" + std::string(size - 7, ' '); };
    SetRegistryText(kLoggingKey, nullptr, "debug,1");
    SetRegistryText(kLoggingKey, "CWendrel", text(259));
    EXPECT_EQ(3, StartLogging("CWendrel"));
    EndLogging();
    SetRegistryText(kLoggingKey, "CWendrel", text(260));
    EXPECT_EQ(1, StartLogging("CWendrel"));
    EndLogging();
    SetRegistryBytes(kLoggingKey, "CWendrel", text(260));  // fills the room without a terminator
    EXPECT_EQ(1, StartLogging("CWendrel"));
}

TEST_F(LoggingConfig, ReadsDataThatLacksItsTerminator) {
    SetRegistryText(kLoggingKey, "CWendrel", std::string(100, '9'));  // nothing of it may show
    SetRegistryBytes(kLoggingKey, "CWendrel", "debug,6");
    EXPECT_EQ(6, StartLogging("CWendrel"));
    EndLogging();
    SetRegistryBytes(kLoggingKey, "CWendrel", "");
    EXPECT_EQ(0, StartLogging("CWendrel"));
}

}  // namespace
}  // namespace wncom::test
