// Texts between COM (UTF-16) and the terminal (UTF-8).
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "wncom/Bstr.h"

namespace wn {

// An unpaired surrogate becomes U+FFFD.
std::string ToUtf8(std::basic_string_view<OLECHAR> text);
// Throws CommandError naming what the text is when it is not UTF-8, or when memory runs out.
wncom::Bstr FromUtf8(std::string_view text, const std::string& what);

}  // namespace wn
