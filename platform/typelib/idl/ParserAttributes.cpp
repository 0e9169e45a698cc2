// What stands in square brackets.
#include <algorithm>

#include "platform/typelib/idl/Parser.h"

namespace wnplatform::typelib {

WORD Attributes::Flags(std::initializer_list<std::pair<const char*, int>> bits) const {
    int flags = 0;
    for (const auto& [name, bit] : bits) {
        if (Has(name)) flags |= bit;
    }
    return static_cast<WORD>(flags);
}

void Parser::Refuse(const char* owner, const std::string& name, Position where) {
    throw DescriptionError(where, "The attribute '" + name + "' is not understood on " + owner + ".");
}

Attributes Parser::ParseAttributes(const char* owner, Names allowed) {
    Attributes attributes;
    if (!Accept("[")) return attributes;
    do {
        const Token name = ExpectName("an attribute");
        if (std::find(allowed.begin(), allowed.end(), name.text) == allowed.end()) {
            Refuse(owner, name.text, name.where);
        }
        if (!attributes.names.emplace(name.text, name.where).second) {
            throw DescriptionError(name.where, "The attribute '" + name.text + "' stands twice.");
        }
        ParseValue(name.text, attributes);
    } while (Accept(","));
    Expect("]");
    return attributes;
}

void Parser::ParseValue(const std::string& name, Attributes& attributes) {
    const bool isVersion = name == "version";
    const bool isText = name == "helpstring";
    const bool isNumber = name == "id" || name == "lcid";
    if (!isVersion && !isText && !isNumber && name != "uuid" && name != "pointer_default") return;
    // Identifiers and versions are no tokens: they are read before the lexer goes on behind the bracket.
    if (!At("(")) Expect("(");
    if (name == "uuid") attributes.guid = m_lexer.NextGuid();
    if (isVersion) m_lexer.NextVersion(attributes.majorVersion, attributes.minorVersion);
    Advance();
    if (isText) attributes.help = ExpectText();
    if (isNumber) {
        if (m_token.kind != TokenKind::kNumber) Fail("Expected a number and found " + Quoted(m_token) + ".");
        attributes.number = m_token.value;
        Advance();
    }
    if (name == "pointer_default") Expect("unique");
    Expect(")");
}

}  // namespace wnplatform::typelib
