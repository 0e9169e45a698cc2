// BSTRs as UTF-8 and back, for tests and fakes.
#pragma once

#include <windows.h>

#include <new>
#include <string>

#include "wncom/Bstr.h"

namespace wncom::test {

// Null and an empty text give an empty one.
inline std::string ToUtf8(BSTR text) {
    const int units = static_cast<int>(SysStringLen(text));
    const int bytes = units ? WideCharToMultiByte(CP_UTF8, 0, text, units, nullptr, 0, nullptr, nullptr) : 0;
    std::string utf8(static_cast<std::size_t>(bytes), '\0');
    if (bytes) WideCharToMultiByte(CP_UTF8, 0, text, units, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

// Throws std::bad_alloc when memory runs out.
inline Bstr ToBstr(const std::string& utf8) {
    const int bytes = static_cast<int>(utf8.size());
    const int units = bytes ? MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0) : 0;
    Bstr text;
    text.attach(SysAllocStringLen(nullptr, static_cast<UINT>(units)));
    if (!text) throw std::bad_alloc();
    if (units) MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, text.get(), units);
    text.get()[units] = 0;
    return text;
}

}  // namespace wncom::test
