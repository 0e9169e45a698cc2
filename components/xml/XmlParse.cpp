#include "components/xml/XmlParse.h"

#include <algorithm>
#include <new>

#include "components/xml/XmlSource.h"

namespace wncom::components {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

[[noreturn]] void Refuse(std::string_view source, std::size_t offset, const std::string& what) {
    throw Problem(kBadDocument, PlaceIn(source, static_cast<std::ptrdiff_t>(offset)) + ": " + what);
}

bool IsCharacter(unsigned long long code) {
    return code != 0 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
}

// The number of a reference like "&#65;" or "&#x41;", whose text begins after "&#"; 1 when it is no number, which
// the parser judges by itself.
unsigned long long ReferencedCode(std::string_view text) {
    const unsigned base = text.starts_with('x') ? 16 : 10;
    if (base == 16) text.remove_prefix(1);
    unsigned long long code = 0;
    for (const char c : text) {
        if (c == ';') return code;
        const char lower = static_cast<char>(c | 0x20);
        const bool letter = base == 16 && lower >= 'a' && lower <= 'f';
        if (!letter && (c < '0' || c > '9')) return 1;
        code = std::min(code * base + static_cast<unsigned>(letter ? lower - 'a' + 10 : c - '0'), 0x110000ULL);
    }
    return 1;
}

// The parser would take a reference to a character that does not exist and end the text there, or make a text that
// is no UTF-8.
void RefuseForbiddenReferences(std::string_view source) {
    static constexpr struct {
        std::string_view open;
        std::string_view close;
    } kLiteral[] = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};

    for (std::size_t at = source.find_first_of("<&"); at != kNone; at = source.find_first_of("<&", at + 1)) {
        const std::string_view rest = source.substr(at);
        if (rest.starts_with("&#") && !IsCharacter(ReferencedCode(rest.substr(2)))) {
            Refuse(source, at, "the reference names no character");
        }
        for (const auto& literal : kLiteral) {
            if (!rest.starts_with(literal.open)) continue;
            const std::size_t end = source.find(literal.close, at + literal.open.size());
            if (end == kNone) return;  // cut off, as the parser will say
            at = end;
            break;
        }
    }
}

bool IsBlank(const char* text) { return std::string_view(text).find_first_not_of(" \t\r\n") == kNone; }

}  // namespace

pugi::xml_node ParseXml(std::string_view source, pugi::xml_document& document) {
    document.reset();
    if (const std::size_t zero = source.find('\0'); zero != kNone) Refuse(source, zero, "a zero character");
    RefuseForbiddenReferences(source);

    // As a fragment, so that what stands beside the top element shows up instead of being dropped unseen.
    constexpr unsigned kOptions = pugi::parse_default | pugi::parse_ws_pcdata | pugi::parse_fragment;
    const pugi::xml_parse_result result =
        document.load_buffer(source.data(), source.size(), kOptions, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) {
        document.reset();
        throw std::bad_alloc();
    }
    if (!result) {
        document.reset();
        Refuse(source, static_cast<std::size_t>(result.offset), result.description());
    }

    pugi::xml_node top;
    for (const pugi::xml_node node : document.children()) {
        const bool element = node.type() == pugi::node_element;
        if ((element && !top) || (!element && IsBlank(node.value()))) {
            if (element) top = node;
            continue;
        }
        const std::ptrdiff_t offset = node.offset_debug();
        document.reset();
        Refuse(source, static_cast<std::size_t>(offset), "only one top element may stand here");
    }
    if (!top) {
        document.reset();
        Refuse(source, source.size(), "there is no top element");
    }
    return top;
}

std::string PlaceIn(std::string_view source, std::ptrdiff_t offset) {
    const std::size_t end = offset < 0 ? 0 : std::min(static_cast<std::size_t>(offset), source.size());
    const std::string_view before = source.substr(0, end);
    const std::size_t line = before.rfind('\n');
    const std::string_view start = line == kNone ? before : before.substr(line + 1);
    const auto firstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; };
    return "line " + std::to_string(std::count(before.begin(), before.end(), '\n') + 1) + ", column " +
           std::to_string(std::count_if(start.begin(), start.end(), firstByte) + 1);
}

}  // namespace wncom::components
