#include "transport/SystemCodePage.h"

#include <climits>
#include <new>
#include <string>

namespace wncom {
namespace {

// The system counts in int; a longer text does not fit into memory next to its conversion.
int Count(std::size_t length) {
    if (length > INT_MAX) throw std::bad_alloc();
    return static_cast<int>(length);
}

}  // namespace

Bstr WidenFromSystemCodePage(std::string_view text) {
    const int bytes = Count(text.size());
    const int units = bytes > 0 ? MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, nullptr, 0) : 0;
    Bstr wide;
    wide.attach(SysAllocStringLen(nullptr, static_cast<UINT>(units)));
    if (!wide) throw std::bad_alloc();
    if (units > 0) MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, wide.get(), units);
    wide.get()[units] = 0;
    return wide;
}

CString NarrowToSystemCodePage(const WCHAR* text) {
    const int units = text ? Count(wcslen(text)) : 0;
    if (units == 0) return {};
    const int bytes = WideCharToMultiByte(CP_ACP, 0, text, units, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(CP_ACP, 0, text, units, narrow.data(), bytes, nullptr, nullptr);
    return CString(std::string_view(narrow));
}

}  // namespace wncom
