#include "tests/support/LogCapture.h"

#include <windows.h>

#include "common/OpenKey.h"
#include "tests/support/Com.h"
#include "tests/support/Golden.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

constexpr char kKey[] = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";

// "3 Component::message" as "3 message".
std::string WithoutComponent(const std::string& line) {
    const std::size_t space = line.find_first_not_of("0123456789");
    const std::size_t colons = line.find("::");
    if (space == 0 || colons == std::string::npos || line[space] != ' ') return line;
    return line.substr(0, space + 1) + line.substr(colons + 2);
}

}  // namespace

LogCapture::LogCapture(int level) : m_path(HomePath() + "/capture.log") {
    WriteWholeFile(m_path, "");
    SetRegistryValue(kKey, nullptr, "file," + m_path + "," + std::to_string(level));
    m_reference.Start("LogCapture");
    Clear();
}

LogCapture::~LogCapture() {
    m_reference.End();
    OpenKey key;
    if (key.Open(HKEY_LOCAL_MACHINE, kKey, KEY_WRITE) == ERROR_SUCCESS) RegDeleteValueA(key.get(), nullptr);
}

std::vector<std::string> LogCapture::Lines(std::string_view without) const {
    std::vector<std::string> lines;
    for (const std::string& line : UnmaskedLines(Text())) {
        if (without.empty() || line.find(without) == std::string::npos) lines.push_back(WithoutComponent(line));
    }
    return lines;
}

std::string LogCapture::Text() const { return ReadWholeFile(m_path).substr(m_start); }

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
