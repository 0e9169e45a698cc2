#include "samples/transport/Texts.h"

namespace sample {
namespace {

constexpr WCHAR kReplacement = 0xFFFD;

// The bits of the byte at this place, when it continues a sequence; -1 when it does not.
int Continuation(std::string_view text, std::size_t at) {
    const int byte = at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
    return (byte & 0xC0) == 0x80 ? byte & 0x3F : -1;
}

bool IsHighSurrogate(WCHAR unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLowSurrogate(WCHAR unit) { return unit >= 0xDC00 && unit < 0xE000; }

}  // namespace

std::basic_string<WCHAR> Widened(std::string_view text) {
    std::basic_string<WCHAR> wide;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const int lead = static_cast<unsigned char>(text[at]);
        const int second = Continuation(text, at + 1);
        const int third = Continuation(text, at + 2);
        if (lead < 0x80) {
            wide += static_cast<WCHAR>(lead);
        } else if ((lead & 0xE0) == 0xC0 && second >= 0) {
            wide += static_cast<WCHAR>((lead & 0x1F) << 6 | second);
            at += 1;
        } else if ((lead & 0xF0) == 0xE0 && second >= 0 && third >= 0) {
            wide += static_cast<WCHAR>((lead & 0x0F) << 12 | second << 6 | third);
            at += 2;
        } else {
            wide += kReplacement;
        }
    }
    return wide;
}

std::string AsciiXml(std::string_view text) {
    const std::basic_string<WCHAR> wide = Widened(text);
    std::string ascii;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        unsigned character = wide[i];
        if (IsHighSurrogate(wide[i]) && i + 1 < wide.size() && IsLowSurrogate(wide[i + 1])) {
            character = 0x10000 + ((character - 0xD800) << 10) + (wide[++i] - 0xDC00U);
        } else if (IsHighSurrogate(wide[i]) || IsLowSurrogate(wide[i])) {
            character = kReplacement;  // half a character cannot be said in XML
        }
        if (character < 0x80) {
            ascii += static_cast<char>(character);
        } else {
            ascii += "&#" + std::to_string(character) + ";";
        }
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
