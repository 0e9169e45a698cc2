// Cuts a description into words, numbers, texts and signs.
#pragma once

#include <string>
#include <string_view>

#include "platform/typelib/idl/Description.h"

namespace wnplatform::typelib {

enum class TokenKind { kName, kNumber, kText, kSign, kEnd };

struct Token {
    TokenKind kind = TokenKind::kEnd;
    std::string text;         // a text without its quotes
    std::uint32_t value = 0;  // of a number
    Position where;
};

// How a token reads in an error's sentence.
std::string Quoted(const Token& token);

// Throws DescriptionError for what is no token. The text outlives the lexer.
class Lexer {
public:
    explicit Lexer(std::string_view text) : m_text(text) {}

    Token Next();
    // An identifier in its 8-4-4-4-12 form, which no token fits.
    GUID NextGuid();
    // "major.minor" or "major".
    void NextVersion(WORD& major, WORD& minor);

private:
    char Peek(std::size_t ahead = 0) const noexcept;
    void Step() noexcept;
    void SkipSpace();
    void SkipComment();
    Token ReadText();
    Token ReadNumber();
    WORD ReadVersionPart();

    std::string_view m_text;
    std::size_t m_at = 0;
    Position m_where;
};

}  // namespace wnplatform::typelib
