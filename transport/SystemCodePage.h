// Texts between UTF-16 and the system's narrow (ANSI) code page.
#pragma once

#include <windows.h>

#include <string_view>

#include "wncom/Bstr.h"
#include "wncom/CString.h"

namespace wncom {

// A new text, never null. Throws std::bad_alloc when memory runs out.
Bstr WidenFromSystemCodePage(std::string_view text);

// Reads up to the terminator; null gives an empty value. Characters without a mapping become the code page's default
// character. Throws std::bad_alloc when memory runs out.
CString NarrowToSystemCodePage(const WCHAR* text);

}  // namespace wncom
