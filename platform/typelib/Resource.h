// Where a file holds a type library.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace wnplatform::typelib {

// The type-library resource of a module, open for reading; a file that is no module is one itself. None when there is
// no such thing, when the file is damaged, or for more than a megabyte.
std::optional<std::string> ReadResource(int file, std::uint64_t fileSize);

}  // namespace wnplatform::typelib
