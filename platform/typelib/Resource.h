// Where a file holds the description of a type library.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace wnplatform::typelib {

// No description is longer, in bytes.
inline constexpr std::uint64_t kLongestDescription = 1 << 20;

// The text of the numbered type-library resource of a module, open for reading; a file that is no module is a
// description itself, number 1. None when there is no such thing, or when the file is damaged.
std::optional<std::string> ReadResource(int file, std::uint64_t fileSize, unsigned number);

}  // namespace wnplatform::typelib
