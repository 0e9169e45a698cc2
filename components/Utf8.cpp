#include "components/Utf8.h"

#include <limits>
#include <new>

namespace wncom::components {
namespace {

// The conversions count in int.
constexpr std::size_t kLongest = std::numeric_limits<int>::max() / 4;

int Count(std::size_t size) {
    if (size > kLongest) throw std::bad_alloc();
    return static_cast<int>(size);
}

// The units that the bytes become; 0 when they become none.
int WideLength(UINT codePage, std::string_view bytes) noexcept {
    return MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                               0);
}

}  // namespace

std::optional<std::string> ToUtf8(WideView text) {
    if (text.empty()) return std::string();
    const int units = Count(text.size());
    const int size =
        WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), units, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return std::nullopt;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), units, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

std::optional<WideText> FromCodePage(UINT codePage, std::string_view bytes) {
    if (bytes.empty()) return WideText();
    const int size = Count(bytes.size());
    const int units = WideLength(codePage, bytes);
    if (units <= 0) return std::nullopt;
    WideText text(static_cast<std::size_t>(units), OLECHAR());
    MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, bytes.data(), size, text.data(), units);
    return text;
}

bool IsUtf8(std::string_view bytes) noexcept {
    return bytes.empty() || (bytes.size() <= kLongest && WideLength(CP_UTF8, bytes) > 0);
}

Bstr MakeBstr(WideView text) {
    if (text.size() > kLongest) throw std::bad_alloc();
    Bstr copy(text);
    if (!copy) throw std::bad_alloc();
    return copy;
}

}  // namespace wncom::components
