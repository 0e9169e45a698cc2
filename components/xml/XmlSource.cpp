#include "components/xml/XmlSource.h"

#include <algorithm>
#include <array>

namespace wncom::components {
namespace {

enum class Encoding { Utf8, Utf16LittleEndian, Utf16BigEndian, Latin1, Windows1252 };

constexpr UINT kWindows1252 = 1252;
constexpr OLECHAR kByteOrderMark = 0xFEFF;

// The name in the encoding part of a declaration at the text's start; empty when there is none.
std::string_view DeclaredEncoding(std::string_view text) {
    if (!text.starts_with("<?xml")) return {};
    const std::string_view declaration = text.substr(0, text.find("?>"));
    std::size_t at = declaration.find("encoding");
    if (at == std::string_view::npos) return {};
    at = declaration.find_first_of("\"'", at);
    if (at == std::string_view::npos) return {};
    const std::size_t end = declaration.find(declaration[at], at + 1);
    return end == std::string_view::npos ? std::string_view() : declaration.substr(at + 1, end - at - 1);
}

Encoding EncodingNamed(std::string_view name) {
    static constexpr struct {
        const char* name;
        Encoding encoding;
    } kEncodings[] = {{"utf-8", Encoding::Utf8},
                      {"us-ascii", Encoding::Utf8},
                      {"iso-8859-1", Encoding::Latin1},
                      {"windows-1252", Encoding::Windows1252}};
    const std::string wanted(name);
    for (const auto& known : kEncodings) {
        if (_stricmp(known.name, wanted.c_str()) == 0) return known.encoding;
    }
    throw Problem(kBadDocument, "the encoding \"" + wanted + "\" is not supported");
}

// Takes a byte order mark off the bytes.
Encoding FindEncoding(std::string_view& bytes) {
    static constexpr struct {
        std::string_view mark;
        Encoding encoding;
    } kMarks[] = {{"\xEF\xBB\xBF", Encoding::Utf8},
                  {"\xFF\xFE", Encoding::Utf16LittleEndian},
                  {"\xFE\xFF", Encoding::Utf16BigEndian}};
    for (const auto& known : kMarks) {
        if (!bytes.starts_with(known.mark)) continue;
        bytes.remove_prefix(known.mark.size());
        return known.encoding;
    }
    const std::string_view name = DeclaredEncoding(bytes);
    return name.empty() ? Encoding::Utf8 : EncodingNamed(name);
}

WideText WideFromBytes(std::string_view bytes, bool littleEndian) {
    if (bytes.size() % 2 != 0) throw Problem(kBadDocument, "the UTF-16 text ends within a character");
    WideText text(bytes.size() / 2, OLECHAR());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto first = static_cast<unsigned char>(bytes[2 * i]);
        const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
        text[i] = static_cast<OLECHAR>(littleEndian ? first | second << 8 : first << 8 | second);
    }
    return text;
}

WideText WideFromLatin1(std::string_view bytes) {
    WideText text(bytes.size(), OLECHAR());
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](char byte) { return static_cast<unsigned char>(byte); });
    return text;
}

std::string RequireUtf8(WideView text) {
    std::optional<std::string> utf8 = NarrowExactly(CP_UTF8, text);
    if (!utf8) throw Problem(kBadDocument, "the text holds half of a surrogate pair");
    return *std::move(utf8);
}

void RequireSize(std::size_t bytes) {
    if (bytes > kXmlLimit) throw Problem(HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE), "the document exceeds 64 MB");
}

// What the system says of an error code, without its line end.
std::string ErrorText(DWORD code) {
    std::array<char, 512> buffer = {};
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                        buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
    const std::string_view text(buffer.data(), length);
    return std::string(text.substr(0, text.find_last_not_of(kXmlSpace) + 1)) + " (" + std::to_string(code) + ")";
}

}  // namespace

std::string ReadFileBytes(const OwnedHandle& file) {
    const auto fail = [](const char* what) {
        const DWORD error = GetLastError();
        throw Problem(HRESULT_FROM_WIN32(error), std::string(what) + ": " + ErrorText(error));
    };
    if (!file) fail("the file cannot be opened");
    // What the file says of its size is a hint only: it may grow under the reader, or not be a plain file at all.
    DWORD sizeHigh = 0;
    const DWORD size = GetFileSize(file.get(), &sizeHigh);
    if (sizeHigh != 0) RequireSize(kXmlLimit + 1);
    std::string bytes;
    DWORD step = size < kXmlLimit ? size + 1 : static_cast<DWORD>(kXmlLimit + 1);
    for (;;) {
        const std::size_t before = bytes.size();
        bytes.resize(before + step);
        DWORD read = 0;
        if (!ReadFile(file.get(), bytes.data() + before, step, &read, nullptr)) fail("the file cannot be read");
        bytes.resize(before + read);
        RequireSize(bytes.size());
        if (read == 0) return bytes;
        step = 64 * 1024;
    }
}

std::string DecodeXmlFile(std::string_view bytes) {
    switch (FindEncoding(bytes)) {
        case Encoding::Utf8:
            return std::string(bytes);
        case Encoding::Utf16LittleEndian:
            return RequireUtf8(WideFromBytes(bytes, true));
        case Encoding::Utf16BigEndian:
            return RequireUtf8(WideFromBytes(bytes, false));
        case Encoding::Latin1:
            return RequireUtf8(WideFromLatin1(bytes));
        case Encoding::Windows1252:
            break;
    }
    const std::optional<WideText> text = WidenExactly(kWindows1252, bytes);
    if (!text) throw Problem(kBadDocument, "the bytes are not windows-1252");
    return RequireUtf8(*text);
}

std::string DecodeXmlText(WideView text) {
    RequireSize(text.size() * sizeof(OLECHAR));
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(1);
    return RequireUtf8(text);
}

bool LooksLikeXml(WideView text) noexcept {
    const auto blank = [](OLECHAR c) {
        return c == kByteOrderMark || (c < 0x80 && kXmlSpace.find(static_cast<char>(c)) != std::string_view::npos);
    };
    const auto first = std::find_if_not(text.begin(), text.end(), blank);
    return first != text.end() && *first == OLECHAR('<');
}

}  // namespace wncom::components
