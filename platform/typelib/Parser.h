// Reads a description's structure: who has which members, attributes and types, as written.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "platform/typelib/Description.h"
#include "platform/typelib/Lexer.h"

namespace wnplatform::typelib {

// Reads one description, once. What only makes sense in the light of the rest is left to Check.
class Parser {
public:
    explicit Parser(std::string_view text) : m_lexer(text) {}

    std::unique_ptr<Library> Parse();

private:
    // The owner stands in the sentence that refuses an attribute which the handler does not know.
    using Handler = std::function<bool(const std::string& name)>;
    void Attributes(const char* owner, const Handler& handle);
    bool EntryAttribute(const std::string& name, Entry& entry);
    bool InterfaceAttribute(const std::string& name, Interface& to);
    bool MethodAttribute(const std::string& name, Method& to);

    void ParseLibraryBody(Library& library);
    void ParseForward();
    void ParseEntry(Library& library);
    void ParseInterface(Library& library, std::unique_ptr<Interface> to);
    void ParseCoClass(Library& library, std::unique_ptr<CoClass> to);
    Implemented ParseImplemented();
    Method ParseMethod();
    Parameter ParseParameter();
    Type ParseType();
    std::string UnsignedType();

    bool At(const char* text) const;
    bool Accept(const char* text);
    void Expect(const char* text);
    Token ExpectName(const char* what);
    std::string TextInBrackets();
    std::uint32_t NumberInBrackets();
    void GuidInBrackets(GUID& guid);
    void VersionInBrackets(WORD& major, WORD& minor);
    void Advance() { m_token = m_lexer.Next(); }
    [[noreturn]] void Fail(const std::string& sentence) const { throw DescriptionError(m_token.where, sentence); }

    Lexer m_lexer;
    Token m_token;
    std::set<std::string, std::less<>> m_interfaces;  // those that may be named by now
};

}  // namespace wnplatform::typelib
