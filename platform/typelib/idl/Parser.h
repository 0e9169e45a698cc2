// Reads a description into tables and refuses what does not fit together.
#pragma once

#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/typelib/idl/Description.h"
#include "platform/typelib/idl/Lexer.h"

namespace wnplatform::typelib {

// What stands in square brackets before something.
struct Attributes {
    std::map<std::string, Position> names;
    GUID guid{};
    std::string help;
    std::uint32_t number = 0;  // of id or lcid
    WORD majorVersion = 0;
    WORD minorVersion = 0;

    bool Has(const char* name) const { return names.count(name) != 0; }
    // The bits of those names that are present.
    WORD Flags(std::initializer_list<std::pair<const char*, int>> bits) const;
};

class Parser {
public:
    // Adds to the tables, whose first library is the standard one.
    Parser(std::string_view text, Tables& tables)
        : m_lexer(text), m_tables(tables), m_isStandard(tables.libraries.empty()) {}

    void Parse();

private:
    using Names = std::initializer_list<std::string_view>;

    void ParseImport();
    void ParseForward();
    void ParseStatement();
    void ParseInterface(const Attributes& attributes);
    void ParseBase(const Token& name, TypeRow& type);
    void ParseClass(const Attributes& attributes);
    void ParseMethod(TypeRow& owner);
    void ParseParameter(const MethodRow& method);
    void ParseType(ParameterRow& parameter);
    void ResolveTargets();

    // The owner stands in the sentence that refuses an attribute which it cannot have.
    Attributes ParseAttributes(const char* owner, Names allowed);
    void ParseValue(const std::string& name, Attributes& attributes);
    static void Refuse(const char* owner, const std::string& name, Position where);

    // That the name and the identifier are new.
    void CheckIdentity(const Token& name, const Attributes& attributes) const;
    void CheckParameter(const Token& name, const MethodRow& method, const ParameterRow& parameter) const;
    void CheckAccessor(const Token& name, const Attributes& attributes, const MethodRow& method) const;
    void CheckUnique(const Token& name, const TypeRow& owner, const MethodRow& method) const;
    // kNone when no type of that name has been defined yet.
    std::uint32_t TypeNamed(std::string_view name) const;

    bool At(const char* text) const;
    bool Accept(const char* text);
    void Expect(const char* text);
    Token ExpectName(const char* what);
    std::string ExpectText();
    void Advance() { m_token = m_lexer.Next(); }
    [[noreturn]] void Fail(const std::string& sentence) const { throw DescriptionError(m_token.where, sentence); }

    Lexer m_lexer;
    Tables& m_tables;
    const bool m_isStandard;
    Token m_token;
    std::set<std::string> m_known;  // interfaces that may be named by now, whether defined or declared
    std::vector<std::pair<std::size_t, Token>> m_targets;  // parameters whose interface may be defined later
};

bool SameName(std::string_view a, std::string_view b) noexcept;  // without regard to case

}  // namespace wnplatform::typelib
