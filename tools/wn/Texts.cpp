#include "tools/wn/Texts.h"

#include <algorithm>
#include <utility>

#include "tools/wn/Command.h"

namespace wn {
namespace {

using WideText = std::basic_string<OLECHAR>;

// Nothing for bytes that are none of that code page's.
std::optional<WideText> Widen(UINT codePage, std::string_view text) {
    if (text.empty()) return WideText();
    const int bytes = static_cast<int>(text.size());
    const int units = MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, text.data(), bytes, nullptr, 0);
    if (units <= 0) return std::nullopt;
    WideText wide(static_cast<std::size_t>(units), OLECHAR());
    MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, text.data(), bytes, wide.data(), units);
    return wide;
}

std::string NarrowTo(UINT codePage, std::basic_string_view<OLECHAR> text) {
    if (text.empty()) return {};
    const int units = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(codePage, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(bytes), '\0');
    WideCharToMultiByte(codePage, 0, text.data(), units, narrow.data(), bytes, nullptr, nullptr);
    return narrow;
}

}  // namespace

std::string ToUtf8(std::basic_string_view<OLECHAR> text) { return NarrowTo(CP_UTF8, text); }

wncom::Bstr FromUtf8(std::string_view text, const std::string& what) {
    const std::optional<WideText> wide = Widen(CP_UTF8, text);
    if (!wide) throw CommandError(what + " is not UTF-8 text");
    wncom::Bstr result{std::basic_string_view<OLECHAR>(*wide)};
    if (!result) throw CommandError(what + " does not fit into memory");
    return result;
}

std::optional<std::string> ToNarrow(std::string_view text) {
    const std::optional<WideText> wide = Widen(CP_UTF8, text);
    if (!wide) return std::nullopt;
    std::string narrow = NarrowTo(CP_ACP, *wide);
    // Whether a character was replaced shows on every code page only in the way back.
    if (Widen(CP_ACP, narrow) != wide) return std::nullopt;
    return narrow;
}

std::string FromNarrow(std::string_view text) {
    // A byte that the code page does not know must not hide the rest.
    if (const std::optional<WideText> wide = Widen(CP_ACP, text)) return ToUtf8(*wide);
    std::string ascii(text);
    std::replace_if(
        ascii.begin(), ascii.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; }, '?');
    return ascii;
}

std::string Printable(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
    return text;
}

std::string OneLine(const std::string& text) {
    constexpr std::size_t kLongest = 1000;  // bytes
    std::string line;
    bool blank = false;
    for (const char c : text) {
        if (c == ' ' || (c >= '\t' && c <= '\r')) {
            blank = !line.empty();
            continue;
        }
        const bool first = (static_cast<unsigned char>(c) & 0xC0) != 0x80;  // of a character
        if (line.size() >= kLongest && first) return line + " ...";
        if (std::exchange(blank, false)) line += ' ';
        line += c;
    }
    return line;
}

}  // namespace wn
