// The conversions that the layer itself needs: inside it texts are UTF-8, at its functions they are UTF-16 or in the
// narrow code page. What cannot be converted becomes the replacement or the default character.
#pragma once

#include <string>
#include <string_view>

#include "windef.h"

namespace wnplatform {

std::string Utf8FromWide(std::basic_string_view<WCHAR> text);
std::string Utf8FromNarrow(std::string_view text);
std::string NarrowFromUtf8(std::string_view text);

bool IsAscii(std::string_view text) noexcept;

}  // namespace wnplatform
