#include "platform/typelib/idl/Lexer.h"

#include <charconv>
#include <optional>

#include "platform/com/GuidText.h"

namespace wnplatform::typelib {
namespace {

// The language knows ASCII only, whatever the locale says.
bool IsDigit(char c) noexcept { return c >= '0' && c <= '9'; }
bool IsNameStart(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool IsNamePart(char c) noexcept { return IsNameStart(c) || IsDigit(c); }
bool IsSpace(char c) noexcept { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

std::string Quoted(const Token& token) {
    if (token.kind == TokenKind::kEnd) return "the end of the description";
    if (token.kind == TokenKind::kText) return "the text \"" + token.text + "\"";
    return "'" + token.text + "'";
}

char Lexer::Peek(std::size_t ahead) const noexcept {
    return ahead < m_text.size() - m_at ? m_text[m_at + ahead] : '\0';
}

void Lexer::Step() noexcept {
    if (m_text[m_at++] == '\n') {
        ++m_where.line;
        m_where.column = 1;
    } else {
        ++m_where.column;
    }
}

void Lexer::SkipComment() {
    const Position start = m_where;
    if (Peek(1) == '/') {
        while (m_at < m_text.size() && Peek() != '\n') Step();
        return;
    }
    Step();
    Step();
    while (Peek() != '*' || Peek(1) != '/') {
        if (m_at >= m_text.size()) throw DescriptionError(start, "The comment has no end.");
        Step();
    }
    Step();
    Step();
}

void Lexer::SkipSpace() {
    while (m_at < m_text.size()) {
        if (IsSpace(Peek())) {
            Step();
        } else if (Peek() == '/' && (Peek(1) == '/' || Peek(1) == '*')) {
            SkipComment();
        } else {
            return;
        }
    }
}

Token Lexer::ReadText() {
    Token token{TokenKind::kText, {}, 0, m_where};
    Step();
    for (;; Step()) {
        if (m_at >= m_text.size() || Peek() == '\n') throw DescriptionError(token.where, "The text has no end.");
        if (Peek() == '"') break;
        if (Peek() == '\\') {
            if (Peek(1) != '"' && Peek(1) != '\\') {
                throw DescriptionError(m_where, "A backslash in a text stands before a quote or a backslash only.");
            }
            Step();
        }
        if (Peek() < ' ' || Peek() > '~') {
            throw DescriptionError(m_where, "A text holds printable ASCII characters only.");
        }
        token.text += Peek();
    }
    Step();
    return token;
}

Token Lexer::ReadNumber() {
    Token token{TokenKind::kNumber, {}, 0, m_where};
    while (IsNamePart(Peek())) {
        token.text += Peek();
        Step();
    }
    const bool hex = token.text.size() > 2 && token.text[0] == '0' && (token.text[1] == 'x' || token.text[1] == 'X');
    const char* first = token.text.data() + (hex ? 2 : 0);
    const char* last = token.text.data() + token.text.size();
    const auto [end, error] = std::from_chars(first, last, token.value, hex ? 16 : 10);
    if (error == std::errc::result_out_of_range) {
        throw DescriptionError(token.where, "The number " + token.text + " has more than 32 bits.");
    }
    // A leading zero would mean an octal number elsewhere.
    if (error != std::errc() || end != last || (!hex && token.text.size() > 1 && token.text[0] == '0')) {
        throw DescriptionError(token.where, "'" + token.text + "' is no decimal or hexadecimal number.");
    }
    return token;
}

Token Lexer::Next() {
    SkipSpace();
    if (m_at >= m_text.size()) return {TokenKind::kEnd, {}, 0, m_where};
    if (Peek() == '"') return ReadText();
    if (IsDigit(Peek())) return ReadNumber();
    Token token{TokenKind::kSign, {}, 0, m_where};
    if (IsNameStart(Peek())) {
        token.kind = TokenKind::kName;
        while (IsNamePart(Peek())) {
            token.text += Peek();
            Step();
        }
        return token;
    }
    if (std::string_view("[](){},;:*").find(Peek()) == std::string_view::npos) {
        const bool printable = Peek() > ' ' && Peek() <= '~';
        throw DescriptionError(m_where, printable ? std::string("The character '") + Peek() + "' means nothing here."
                                                  : "A character that is not printable ASCII means nothing here.");
    }
    token.text = Peek();
    Step();
    return token;
}

GUID Lexer::NextGuid() {
    SkipSpace();
    const std::string_view text = m_text.substr(m_at, kGuidTextLength - 2);
    const std::optional<GUID> guid = GuidOfText("{" + std::string(text) + "}");
    if (!guid) throw DescriptionError(m_where, "An identifier has the form 01234567-89AB-CDEF-0123-456789ABCDEF.");
    for (std::size_t i = 0; i < text.size(); ++i) Step();
    return *guid;
}

WORD Lexer::ReadVersionPart() {
    const Position start = m_where;
    std::uint32_t value = 0;
    bool any = false;
    while (IsDigit(Peek()) && value <= 0xFFFF) {
        value = value * 10 + static_cast<std::uint32_t>(Peek() - '0');
        any = true;
        Step();
    }
    if (!any || value > 0xFFFF) throw DescriptionError(start, "A version has the form 1.0, each part at most 65535.");
    return static_cast<WORD>(value);
}

void Lexer::NextVersion(WORD& major, WORD& minor) {
    SkipSpace();
    major = ReadVersionPart();
    minor = 0;
    if (Peek() != '.') return;
    Step();
    minor = ReadVersionPart();
}

}  // namespace wnplatform::typelib
