#include "samples/transport/Texts.h"

namespace sample {
namespace {

constexpr WCHAR kReplacement = 0xFFFD;

bool IsHalf(WCHAR unit) { return unit >= 0xD800 && unit < 0xE000; }
bool IsPair(WCHAR high, WCHAR low) { return IsHalf(high) && high < 0xDC00 && IsHalf(low) && low >= 0xDC00; }

}  // namespace

std::basic_string<WCHAR> Widened(std::string_view text) {
    // The bits of the byte at this place, when it continues a sequence; else a number without those bits.
    const auto next = [text](std::size_t at) {
        const int byte = at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
        return byte ^ 0x80;
    };
    std::basic_string<WCHAR> wide;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const int lead = static_cast<unsigned char>(text[at]);
        int unit = lead < 0x80 ? lead : kReplacement;
        if ((lead & 0xE0) == 0xC0 && next(at + 1) < 0x40) {
            unit = (lead & 0x1F) << 6 | next(at + 1);
            at += 1;
        } else if ((lead & 0xF0) == 0xE0 && next(at + 1) < 0x40 && next(at + 2) < 0x40) {
            unit = (lead & 0x0F) << 12 | next(at + 1) << 6 | next(at + 2);
            at += 2;
        }
        wide += static_cast<WCHAR>(unit);
    }
    return wide;
}

std::string AsciiXml(std::string_view text) {
    const std::basic_string<WCHAR> wide = Widened(text);
    std::string ascii;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        unsigned character = wide[i];
        if (i + 1 < wide.size() && IsPair(wide[i], wide[i + 1])) {
            character = 0x10000 + ((character - 0xD800) << 10) + (wide[++i] - 0xDC00U);
        } else if (IsHalf(wide[i])) {
            character = kReplacement;  // XML has no half characters
        }
        ascii +=
            character < 0x80 ? std::string(1, static_cast<char>(character)) : "&#" + std::to_string(character) + ";";
    }
    return ascii;
}

std::vector<std::string_view> Elements(std::string_view document, std::string_view name) {
    const std::string opening = "<" + std::string(name) + ">";
    const std::string closing = "</" + std::string(name) + ">";
    std::vector<std::string_view> contents;
    for (std::size_t at = document.find(opening); at != std::string_view::npos; at = document.find(opening, at)) {
        at += opening.size();
        const std::size_t end = document.find(closing, at);
        if (end == std::string_view::npos) break;
        contents.push_back(document.substr(at, end - at));
        at = end + closing.size();
    }
    return contents;
}

std::string_view FirstElement(std::string_view document, std::string_view name) {
    const std::vector<std::string_view> contents = Elements(document, name);
    return contents.empty() ? std::string_view() : contents.front();
}

std::string Element(std::string_view name, std::string_view content) {
    const std::string tag(name);
    return "<" + tag + ">" + std::string(content) + "</" + tag + ">";
}

}  // namespace sample
