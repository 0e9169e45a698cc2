#include <gtest/gtest.h>
#include <windows.h>

#include <fstream>
#include <regex>
#include <string>

namespace {

TEST(Errors, HaveATextForEveryCodeThatIsDeclared) {
    std::ifstream header(WNCOM_STATUS_HEADER);
    const std::regex plain("#define ERROR_\\w+ (\\d+)");
    const std::regex status("#define \\w+ \\(static_cast<HRESULT>\\((0x[0-9A-F]+)U\\)\\)");
    int checked = 0;
    for (std::string line; std::getline(header, line);) {
        std::smatch match;
        if (!std::regex_match(line, match, plain) && !std::regex_match(line, match, status)) continue;
        ++checked;
        char text[512];
        const auto code = static_cast<DWORD>(std::stoul(match[1], nullptr, 0));
        EXPECT_NE(FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0, text, sizeof text, nullptr), 0U)
            << line;
    }
    EXPECT_GT(checked, 60);
}

}  // namespace
