#include "libraries/http/WireText.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

namespace wncom::http {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";  // before the XML declaration no character may stand

unsigned Byte(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

// Whether the three bytes at a position are one half of a surrogate pair: the leading one begins with 0xA0 to 0xAF in
// its second byte, the trailing one with 0xB0 to 0xBF.
bool IsHalf(std::string_view text, std::size_t at, unsigned second) {
    return Byte(text, at) == 0xED && (Byte(text, at + 1) & 0xF0) == second && Byte(text, at + 2) >= 0x80;
}

unsigned HalfBits(std::string_view text, std::size_t at) {
    return (Byte(text, at + 1) & 0x0Fu) << 6 | (Byte(text, at + 2) & 0x3Fu);
}

void AppendReference(std::string& text, std::uint32_t character) {
    text.append("&#").append(std::to_string(character)).append(";");
}

// One UTF-16 unit in the narrow code page; false when the page lacks it.
bool AppendNarrow(std::string& text, WCHAR unit) {
    char bytes[8];
    BOOL replaced = FALSE;
    const int count =
        WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, &unit, 1, bytes, sizeof(bytes), nullptr, &replaced);
    if (count <= 0 || replaced) return false;
    text.append(bytes, static_cast<std::size_t>(count));
    return true;
}

// Empty when the text is, or is not of the code page and the flags refuse that.
std::basic_string<WCHAR> Widen(UINT codePage, DWORD flags, std::string_view text) {
    const int bytes = static_cast<int>(text.size());
    const int units = MultiByteToWideChar(codePage, flags, text.data(), bytes, nullptr, 0);
    if (units <= 0) return {};
    std::basic_string<WCHAR> wide(static_cast<std::size_t>(units), WCHAR{});
    MultiByteToWideChar(codePage, flags, text.data(), bytes, wide.data(), units);
    return wide;
}

std::basic_string<WCHAR> Decode(std::string_view text) {
    std::basic_string<WCHAR> wide = Widen(CP_UTF8, MB_ERR_INVALID_CHARS, text);
    if (wide.empty()) throw std::runtime_error("the answer is no UTF-8");
    return wide;
}

}  // namespace

std::string ToWire(std::string_view text) {
    std::string wire;
    wire.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        if (IsHalf(text, at, 0xA0) && IsHalf(text, at + 3, 0xB0)) {
            const unsigned character = 0x10000u + (HalfBits(text, at) << 10) + HalfBits(text, at + 3);
            wire += static_cast<char>(0xF0u | character >> 18);
            wire += static_cast<char>(0x80u | (character >> 12 & 0x3Fu));
            wire += static_cast<char>(0x80u | (character >> 6 & 0x3Fu));
            wire += static_cast<char>(0x80u | (character & 0x3Fu));
            at += 6;
        } else if (IsHalf(text, at, 0xA0) || IsHalf(text, at, 0xB0)) {
            throw std::invalid_argument("the text holds half a character at byte " + std::to_string(at));
        } else {
            wire += text[at++];
        }
    }
    return wire;
}

std::string NarrowToWire(std::string_view text) {
    const std::basic_string<WCHAR> wide = Widen(CP_THREAD_ACP, 0, text);
    const int units = static_cast<int>(wide.size());
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string wire(static_cast<std::size_t>(std::max(bytes, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, wire.data(), bytes, nullptr, nullptr);
    return wire;
}

std::basic_string<WCHAR> WireToWide(std::string_view text) { return Widen(CP_UTF8, 0, text); }

std::string XmlElement(const char* name, std::string_view text) {
    std::string element = std::string("<") + name + ">";
    for (const char c : text) {
        switch (c) {
            case '<':
                element += "&lt;";
                break;
            case '>':
                element += "&gt;";
                break;
            case '&':
                element += "&amp;";
                break;
            case '\r':
                element += "&#13;";
                break;  // a bare one would come out as a line feed
            default:
                element += c;
        }
    }
    return element + "</" + name + ">";
}

std::string XmlFromWire(std::string answer) {
    if (answer.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) answer.erase(0, kByteOrderMark.size());
    const bool plain = std::all_of(answer.begin(), answer.end(), [](char c) { return (c & 0x80) == 0; });
    if (plain) return answer;
    const std::basic_string<WCHAR> wide = Decode(answer);
    if (GetACP() == CP_UTF8) return answer;
    std::string narrow;
    narrow.reserve(wide.size());
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const std::uint32_t unit = wide[i];
        if (unit < 0x80) {
            narrow += static_cast<char>(unit);
        } else if (unit >= 0xD800 && unit < 0xDC00) {
            // Decoded from UTF-8, so its other half follows.
            const std::uint32_t other = wide[++i];
            AppendReference(narrow, 0x10000u + ((unit - 0xD800u) << 10) + (other - 0xDC00u));
        } else if (!AppendNarrow(narrow, wide[i])) {
            AppendReference(narrow, unit);
        }
    }
    return narrow;
}

}  // namespace wncom::http
