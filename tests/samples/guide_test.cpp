// The guides show code as it stands in the samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

// Without the indentation, which an excerpt may lose.
std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        const std::size_t start = line.find_first_not_of(' ');
        lines.push_back(start == std::string::npos ? "" : line.substr(start));
    }
    return lines;
}

std::string InTree(const std::string& path) { return std::string(WNCOM_SOURCES) + "/" + path; }

class GuideTest : public testing::TestWithParam<const char*> {};

// A fence such as "```cpp samples/client/Jobs.cpp" names the file.
TEST_P(GuideTest, ShowsWhatStandsInTheSamples) {
    const std::vector<std::string> guide =
        Lines(ReadWholeFile(InTree("docs/" + std::string(GetParam()) + "-guide.md")));
    int excerpts = 0;
    for (std::size_t at = 0; at < guide.size(); ++at) {
        if (!guide[at].starts_with("```")) continue;
        const std::size_t space = guide[at].find(' ');
        const auto start = guide.begin() + static_cast<std::ptrdiff_t>(at) + 1;
        const auto end = std::find(start, guide.end(), "```");
        ASSERT_NE(end, guide.end());
        if (space != std::string::npos) {
            ++excerpts;
            const std::vector<std::string> source = Lines(ReadWholeFile(InTree(guide[at].substr(space + 1))));
            EXPECT_NE(std::search(source.begin(), source.end(), start, end), source.end())
                << guide[at] << ", line " << at + 1;
        } else {
            EXPECT_NE(guide[at], "```cpp") << "code of no file, line " << at + 1;
        }
        at = static_cast<std::size_t>(end - guide.begin());
    }
    EXPECT_GE(excerpts, 5);
}

INSTANTIATE_TEST_SUITE_P(All, GuideTest, testing::Values("client", "transport"),
                         [](const auto& guide) { return std::string(guide.param); });

}  // namespace
}  // namespace wncom::test
