// The western European narrow code page.
#pragma once

#include <optional>

#include "windef.h"

namespace wnplatform {

// Every byte has a character: the five that the page leaves open stand for the control characters of their number.
WCHAR WideFrom1252(unsigned char byte) noexcept;

// Empty for a character that the page lacks; none is replaced by one that merely looks like it.
std::optional<unsigned char> Narrow1252(WCHAR unit) noexcept;

}  // namespace wnplatform
