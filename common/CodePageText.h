// Texts between UTF-16 and the bytes of a code page: CP_ACP, the narrow code page, or CP_UTF8.
#pragma once

#include <windows.h>

#include <climits>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "wncom/Bstr.h"

namespace wncom {

using WideText = std::basic_string<OLECHAR>;
using WideView = std::basic_string_view<OLECHAR>;

namespace detail {

// The system counts in int, and a conversion may be a few times as long as its text.
inline int ConversionCount(std::size_t length) {
    if (length > INT_MAX / 4) throw std::bad_alloc();
    return static_cast<int>(length);
}

// The units that the bytes become; 0 for none and for bytes that the flags refuse.
inline int MeasureWide(UINT codePage, DWORD flags, std::string_view bytes) {
    const int count = ConversionCount(bytes.size());
    return count == 0 ? 0 : MultiByteToWideChar(codePage, flags, bytes.data(), count, nullptr, 0);
}

inline void ConvertToWide(UINT codePage, DWORD flags, std::string_view bytes, OLECHAR* place, int units) noexcept {
    if (units > 0) {
        MultiByteToWideChar(codePage, flags, bytes.data(), static_cast<int>(bytes.size()), place, units);
    }
}

inline WideText Widen(UINT codePage, DWORD flags, std::string_view bytes) {
    const int units = MeasureWide(codePage, flags, bytes);
    WideText text(static_cast<std::size_t>(units), OLECHAR());
    ConvertToWide(codePage, flags, bytes, text.data(), units);
    return text;
}

inline std::string Narrow(UINT codePage, DWORD flags, WideView text, BOOL* replaced) {
    const int units = ConversionCount(text.size());
    if (units == 0) return {};
    const int size = WideCharToMultiByte(codePage, flags, text.data(), units, nullptr, 0, nullptr, replaced);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (size > 0) WideCharToMultiByte(codePage, flags, text.data(), units, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

}  // namespace detail

// All of them throw std::bad_alloc, also for texts that no conversion could hold.

// What has no counterpart becomes the default character of the other side.
inline WideText Widen(UINT codePage, std::string_view bytes) { return detail::Widen(codePage, 0, bytes); }
inline std::string Narrow(UINT codePage, WideView text) { return detail::Narrow(codePage, 0, text, nullptr); }
// The same as a BSTR, never null.
inline Bstr WidenToBstr(UINT codePage, std::string_view bytes) {
    const int units = detail::MeasureWide(codePage, 0, bytes);
    Bstr text;
    text.attach(SysAllocStringLen(nullptr, static_cast<UINT>(units)));
    if (!text) throw std::bad_alloc();
    detail::ConvertToWide(codePage, 0, bytes, text.get(), units);
    text.get()[units] = 0;
    return text;
}

// Nothing for bytes that the code page does not know.
inline std::optional<WideText> WidenExactly(UINT codePage, std::string_view bytes) {
    WideText text = detail::Widen(codePage, MB_ERR_INVALID_CHARS, bytes);
    if (text.empty() && !bytes.empty()) return std::nullopt;
    return text;
}
// Nothing for a character that the code page lacks, and for half of a surrogate pair.
inline std::optional<std::string> NarrowExactly(UINT codePage, WideView text) {
    const bool utf8 = codePage == CP_UTF8 || (codePage == CP_ACP && GetACP() == CP_UTF8);
    BOOL replaced = FALSE;
    std::string bytes = detail::Narrow(codePage, utf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS, text,
                                       utf8 ? nullptr : &replaced);
    if (replaced || (bytes.empty() && !text.empty())) return std::nullopt;
    return bytes;
}

}  // namespace wncom
