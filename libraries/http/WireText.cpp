#include "libraries/http/WireText.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <stdexcept>

#include "common/CodePageText.h"

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

std::string NarrowToWire(std::string_view text) { return Narrow(CP_UTF8, Widen(CP_THREAD_ACP, text)); }

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
    const std::optional<WideText> decoded = WidenExactly(CP_UTF8, answer);
    if (!decoded) throw std::runtime_error("the answer is not UTF-8");
    if (GetACP() == CP_UTF8) return answer;
    const WideText& wide = *decoded;
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
        } else if (const auto bytes = NarrowExactly(CP_ACP, WideView(&wide[i], 1))) {
            narrow += *bytes;
        } else {
            AppendReference(narrow, unit);
        }
    }
    return narrow;
}

}  // namespace wncom::http
