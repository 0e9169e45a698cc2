#include "tests/support/Golden.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sstream>

#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

// The build leaves a note beside the programs of where the tests' sources lie.
const std::string& SourceFolder() {
    static const std::string folder = [] {
        std::string text = ReadWholeFile(ProgramFolder() + "/tests-folder");
        while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.pop_back();
        return text;
    }();
    return folder;
}

void Replace(std::string& line, const std::string& what, const std::string& with) {
    if (what.empty()) return;
    for (std::size_t at = line.find(what); at != std::string::npos; at = line.find(what, at + with.size())) {
        line.replace(at, what.size(), with);
    }
}

// What stands between two texts.
void MaskBetween(std::string& line, const std::string& before, const std::string& after, const std::string& mask) {
    const std::size_t start = line.find(before);
    if (start == std::string::npos) return;
    const std::size_t end = line.find(after, start + before.size());
    if (end != std::string::npos) line.replace(start + before.size(), end - start - before.size(), mask);
}

std::string SystemText(DWORD error) {
    char text[512];
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                                        MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), text, sizeof(text), nullptr);
    const std::string whole(text, length);
    return whole.substr(0, whole.find_first_of("\r\n"));
}

// "12/31/05-09:07:03,[1520:2044/3] Component::message" as "3 Component::message".
void TakePrefixOff(std::string& line) {
    const std::size_t close = line.find("] ");
    const std::size_t slash = line.rfind('/', close);
    if (close == std::string::npos || slash == std::string::npos || line.find(",[") > slash) return;
    line = line.substr(slash + 1, close - slash - 1) + " " + line.substr(close + 2);
}

std::string FirstDifference(const std::string& expected, const std::string& actual) {
    std::istringstream left(expected);
    std::istringstream right(actual);
    for (int number = 1;; ++number) {
        std::string wanted;
        std::string found;
        const bool more = static_cast<bool>(std::getline(left, wanted));
        const bool further = static_cast<bool>(std::getline(right, found));
        if (!more && !further) return "in the ends of lines";
        if (wanted == found && more == further) continue;
        return "at line " + std::to_string(number) + "\n  file: " + (more ? wanted : "(its end)") +
               "\n  test: " + (further ? found : "(its end)");
    }
}

}  // namespace

void ExpectGolden(const std::string& file, const std::string& text) {
    const std::string path = SourceFolder() + "/" + file;
    const char* const mode = std::getenv("WNCOM_GOLDEN");
    if (mode && std::string(mode) == "write") {
        WriteWholeFile(path, text);
        return;
    }
    const std::string expected = ReadWholeFile(path);
    if (text == expected) return;
    ADD_FAILURE() << "differs from tests/" << file << " " << FirstDifference(expected, text)
                  << "\nIf the difference is meant, run the test with WNCOM_GOLDEN=write and read it with git diff.";
}

std::vector<std::string> UnmaskedLines(const std::string& log) {
    std::vector<std::string> lines;
    std::istringstream text(log);
    for (std::string line; std::getline(text, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        TakePrefixOff(line);
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> MaskedLines(const std::string& log) {
    struct Mask {
        std::string text;
        const char* shown;
    };
    static const Mask masks[] = {{HomePath(), "{home}"},
                                 {ProgramFolder(), "{programs}"},
                                 {SystemText(ERROR_MOD_NOT_FOUND), "{module not found}"},
                                 {SystemText(ERROR_PROC_NOT_FOUND), "{procedure not found}"},
                                 {SystemText(ERROR_INVALID_NAME), "{invalid name}"},
                                 {SystemText(ERROR_FILENAME_EXCED_RANGE), "{name too long}"}};
    std::vector<std::string> lines = UnmaskedLines(log);
    for (std::string& line : lines) {
        for (const Mask& mask : masks) Replace(line, mask.text, mask.shown);
        MaskBetween(line, " @{", "}@", "call");
        MaskBetween(line, " on line ", " in file ", "N");
        if (line.find("Assertion failed: ") != std::string::npos)
            line.resize(std::min(line.size(), line.find(", file ")));
    }
    return lines;
}

}  // namespace wncom::test
