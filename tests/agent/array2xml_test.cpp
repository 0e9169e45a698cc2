#include "agent/Array2XML.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace wncom::test {
namespace {

std::string Document(std::vector<const char*> items) {
    items.push_back(nullptr);
    return Array2XML(items.data(), "SupportedEvents", "Event").get();
}

const std::string kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

TEST(Array2XML, EachItemIsALineAndNothingIsEscaped) {
    EXPECT_EQ(Document({"a", "b<&"}), kDeclaration +
                                          "<SupportedEvents>\n"
                                          "  <Event>a</Event>\n"
                                          "  <Event>b<&</Event>\n"
                                          "</SupportedEvents>\n");
}

TEST(Array2XML, NoItemsLeaveTheRootAlone) {
    const std::string empty = kDeclaration + "<SupportedEvents>\n</SupportedEvents>\n";
    EXPECT_EQ(Document({}), empty);
    EXPECT_EQ(Array2XML(nullptr, "SupportedEvents", "Event").get(), empty);
}

TEST(Array2XML, LongListsOfEmptyAndLongItemsFit) {
    const std::string item(1000, 'x');
    std::vector<const char*> items(20000, "");
    items.push_back(item.c_str());
    const std::string document = Document(items);
    EXPECT_TRUE(document.ends_with("  <Event>" + item + "</Event>\n</SupportedEvents>\n"));
}

}  // namespace
}  // namespace wncom::test
