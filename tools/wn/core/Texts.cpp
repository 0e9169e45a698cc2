#include "tools/wn/core/Texts.h"

#include <algorithm>
#include <utility>

#include "common/CodePageText.h"
#include "tools/wn/core/CommandError.h"

namespace wn {

std::string ToUtf8(std::basic_string_view<OLECHAR> text) { return wncom::Narrow(CP_UTF8, text); }

wncom::Bstr FromUtf8(std::string_view text, const std::string& what) {
    const auto wide = wncom::WidenExactly(CP_UTF8, text);
    if (!wide) throw WrongInput(what + " is not UTF-8 text");
    wncom::Bstr result{wncom::WideView(*wide)};
    if (!result) throw CommandError(what + " does not fit into memory");
    return result;
}

bool IsUtf8(std::string_view text) { return wncom::WidenExactly(CP_UTF8, text).has_value(); }

std::optional<std::string> ToNarrow(std::string_view text) {
    const auto wide = wncom::WidenExactly(CP_UTF8, text);
    return wide ? wncom::NarrowExactly(CP_ACP, *wide) : std::nullopt;
}

std::string FromNarrow(std::string_view text) {
    // A byte that the code page does not know must not hide the rest.
    if (const auto wide = wncom::WidenExactly(CP_ACP, text)) return ToUtf8(*wide);
    std::string ascii(text);
    std::replace_if(
        ascii.begin(), ascii.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; }, '?');
    return ascii;
}

bool IsControl(char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }

std::string Printable(std::string text) {
    std::replace_if(text.begin(), text.end(), IsControl, '?');
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
