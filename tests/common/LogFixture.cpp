#include "tests/common/LogFixture.h"

#include "common/OpenKey.h"
#include "tests/support/Host.h"

namespace wncom::test {

void SetRegistryBytes(const char* keyPath, const char* name, std::string_view bytes) {
    OpenKey key;
    ASSERT_EQ(ERROR_SUCCESS, key.Create(HKEY_LOCAL_MACHINE, keyPath));
    EXPECT_EQ(ERROR_SUCCESS, RegSetValueExA(key.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(bytes.data()),
                                            static_cast<DWORD>(bytes.size())));
}

void SetRegistryText(const char* key, const char* name, const std::string& text) {
    SetRegistryBytes(key, name, {text.c_str(), text.size() + 1});
}

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t from = 0; from < text.size();) {
        const std::size_t feed = text.find('\n', from);
        const std::size_t to = feed == std::string::npos ? text.size() : feed + 1;
        lines.push_back(text.substr(from, to - from));
        from = to;
    }
    return lines;
}

LogTest::LogTest() {
    CaptureDebugOutput(m_debuggerFile);
    WriteWholeFile(m_debuggerFile, "");
    WriteWholeFile(path, "");
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quillbeck");
}

void LogTest::TearDown() {
    while (QueryLogging(nullptr, nullptr) != 0) CloseLogging();
    LogLevel = 0;  // stays set when a file could not be opened
}

void LogTest::Start(const std::string& configuration, const char* component) {
    SetRegistryText(kLoggingKey, nullptr, configuration);
    StartLogging(component);
}

std::vector<std::string> LogTest::Messages() const {
    std::vector<std::string> messages;
    for (const std::string& line : Lines()) {
        const std::size_t start = line.find("] ");
        const std::size_t end = line.find_last_not_of("\r\n");
        messages.push_back(start == std::string::npos ? line : line.substr(start + 2, end - start - 1));
    }
    return messages;
}

}  // namespace wncom::test
