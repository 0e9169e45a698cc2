// File-name patterns with * and ?.
#pragma once

#include <string_view>

namespace wnplatform {

// True when the name, in UTF-8, matches the pattern without regard to case. "*.*" matches every name, also one
// without a dot.
bool MatchesPattern(std::string_view name, std::string_view pattern) noexcept;

}  // namespace wnplatform
