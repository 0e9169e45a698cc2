#include "tests/support/LogCapture.h"

#include <windows.h>

#include <sstream>
#include <stdexcept>

#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

constexpr char kKey[] = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";

// An empty text removes the configuration.
void Configure(const std::string& text) {
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr) != ERROR_SUCCESS) {
        throw std::runtime_error("cannot configure logging");
    }
    if (text.empty()) {
        RegDeleteValueA(key, nullptr);
    } else {
        RegSetValueExA(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>(text.size() + 1));
    }
    RegCloseKey(key);
}

// "12/31/05-09:07:03,[1520:2044/3] Component::message" as "3 message".
std::string WithoutPrefix(const std::string& line) {
    const std::size_t close = line.find("] ");
    const std::size_t slash = line.rfind('/', close);
    const std::size_t colons = line.find("::", close);
    if (close == std::string::npos || slash == std::string::npos || colons == std::string::npos) return line;
    return line.substr(slash + 1, close - slash - 1) + " " + line.substr(colons + 2);
}

}  // namespace

LogCapture::LogCapture(int level) : m_path(HomePath() + "/capture.log") {
    WriteWholeFile(m_path, "");
    Configure("file," + m_path + "," + std::to_string(level));
    m_reference.Start("LogCapture");
    Clear();
}

LogCapture::~LogCapture() {
    m_reference.End();
    Configure("");
}

std::vector<std::string> LogCapture::Lines(std::string_view without) const {
    std::istringstream text(ReadWholeFile(m_path).substr(m_start));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (without.empty() || line.find(without) == std::string::npos) lines.push_back(WithoutPrefix(line));
    }
    return lines;
}

void LogCapture::Clear() { m_start = ReadWholeFile(m_path).size(); }

testing::AssertionResult ContainsInOrder(const std::vector<std::string>& lines,
                                         const std::vector<std::string>& wanted) {
    auto next = wanted.begin();
    for (const std::string& line : lines) {
        if (next != wanted.end() && line == *next) ++next;
    }
    if (next == wanted.end()) return testing::AssertionSuccess();
    auto failure = testing::AssertionFailure() << "no line \"" << *next << "\" in its place among:";
    for (const std::string& line : lines) failure << "\n  " << line;
    return failure;
}

}  // namespace wncom::test
