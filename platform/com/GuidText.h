// Identifiers as texts.
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "guiddef.h"

namespace wnplatform {

// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in capitals, without a terminator.
constexpr std::size_t kGuidTextLength = 38;
std::array<char, kGuidTextLength> TextOfGuid(REFGUID guid) noexcept;

// Either case of digits; anything else in that form's place gives nothing.
std::optional<GUID> GuidOfText(std::string_view text) noexcept;

}  // namespace wnplatform
