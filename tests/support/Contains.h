// Texts that hold other texts.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace wncom::test {

// For EXPECT_TRUE: shows the whole text when the part is not in it.
inline testing::AssertionResult Contains(std::string_view text, std::string_view part) {
    if (text.find(part) != std::string_view::npos) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "\"" << text << "\" does not contain \"" << part << "\"";
}

}  // namespace wncom::test
