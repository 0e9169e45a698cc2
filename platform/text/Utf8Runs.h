// UTF-8 many characters at a time.
#pragma once

#include <cstddef>

#include "windef.h"

namespace wnplatform {

struct Utf8Run {
    std::size_t bytes;  // read
    std::size_t units;  // written
};

// Converts characters of up to three bytes from the start of a source, as long as they are valid; stops before it has
// read them all where that is quicker. The destination has room for a unit a byte of the source.
Utf8Run WidenUtf8Run(const char* begin, const char* end, WCHAR* units) noexcept;

}  // namespace wnplatform
