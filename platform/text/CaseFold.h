// Comparing names without regard to case, as the registry and paths do.
#pragma once

#include <string_view>

namespace wnplatform {

// Orders two UTF-8 names without regard to case, in every script; negative, 0 or positive. Bytes that are no UTF-8
// compare as they are.
int CompareNames(std::string_view a, std::string_view b) noexcept;

// For ordered containers whose keys are names; looks them up without making a string.
struct NameLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const noexcept { return CompareNames(a, b) < 0; }
};

}  // namespace wnplatform
