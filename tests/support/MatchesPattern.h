// A whole text against an ECMAScript pattern, the same on every host: the test library's own patterns know neither
// sets nor groups on Windows.
#pragma once

#include <gmock/gmock.h>

#include <regex>
#include <string>

namespace wncom::test {

MATCHER_P(MatchesPattern, pattern, std::string(negation ? "does not match " : "matches ") + pattern) {
    return std::regex_match(std::string(arg), std::regex(pattern));
}

}  // namespace wncom::test
