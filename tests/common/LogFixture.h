// What the tests of the logger share: its registry key, a log file in the home, and the lines that were written.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "common/logging/LoggingInternals.h"
#include "tests/support/TestHome.h"

namespace wncom::test {

inline constexpr const char* kLoggingKey = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";
inline constexpr const char* kParentKey = "SOFTWARE\\Quillbeck\\QBNorvel";

// Writes a registry value byte for byte; a null name is the key's default value.
void SetRegistryBytes(const char* key, const char* name, std::string_view bytes);
// The same, with the terminator that a text has.
void SetRegistryText(const char* key, const char* name, const std::string& text);

// The lines of a text, each with its line end.
std::vector<std::string> SplitLines(const std::string& text);

class LogTest : public testing::Test {
protected:
    LogTest();
    // Gives back what a test took, so that the next one finds the logger closed.
    void TearDown() override;

    // "file,PATH,LEVEL" for the test's log file.
    std::string FileConfig(int level) const { return "file," + path + "," + std::to_string(level); }
    // Configures every component and starts one.
    void Start(const std::string& configuration, const char* component = "CWendrel");
    std::string Text() const { return ReadWholeFile(path); }
    std::vector<std::string> Lines() const { return SplitLines(Text()); }
    // The lines without their prefix and line end: component, "::" and message.
    std::vector<std::string> Messages() const;
    // What was sent to the debugger since the test began.
    std::string DebuggerText() const { return ReadWholeFile(m_debuggerFile); }

    const std::string path = HomePath() + "/x.log";

private:
    const std::string m_debuggerFile = HomePath() + "/debugger.txt";
};

}  // namespace wncom::test
