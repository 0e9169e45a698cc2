// Between UTF-16 and UTF-8, exactly: what has no counterpart on the other side is refused, never replaced.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

#include "wncom/Bstr.h"

namespace wncom::components {

using WideText = std::basic_string<OLECHAR>;
using WideView = std::basic_string_view<OLECHAR>;

// Nothing for an unpaired surrogate.
std::optional<std::string> ToUtf8(WideView text);

// Nothing for bytes that are none of that code page's, or none of UTF-8.
std::optional<WideText> FromCodePage(UINT codePage, std::string_view bytes);

bool IsUtf8(std::string_view bytes) noexcept;

// A new text, never null; throws std::bad_alloc.
Bstr MakeBstr(WideView text);

}  // namespace wncom::components
