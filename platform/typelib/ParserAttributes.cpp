#include "platform/typelib/Parser.h"

namespace wnplatform::typelib {

std::string Parser::TextInBrackets() {
    Expect("(");
    if (m_token.kind != TokenKind::kText) Fail("Expected a text in quotes and found " + Quoted(m_token) + ".");
    std::string text = m_token.text;
    Advance();
    Expect(")");
    return text;
}

std::uint32_t Parser::NumberInBrackets() {
    Expect("(");
    if (m_token.kind != TokenKind::kNumber) Fail("Expected a number and found " + Quoted(m_token) + ".");
    const std::uint32_t value = m_token.value;
    Advance();
    Expect(")");
    return value;
}

// Identifiers and versions are no tokens: they are read before the lexer goes on behind the bracket.
void Parser::GuidInBrackets(GUID& guid) {
    if (!At("(")) Expect("(");
    guid = m_lexer.NextGuid();
    Advance();
    Expect(")");
}

void Parser::VersionInBrackets(WORD& major, WORD& minor) {
    if (!At("(")) Expect("(");
    m_lexer.NextVersion(major, minor);
    Advance();
    Expect(")");
}

void Parser::Attributes(const char* owner, const Handler& handle) {
    if (!Accept("[")) return;
    std::set<std::string> seen;
    do {
        const Token name = m_token;
        if (name.kind != TokenKind::kName) Fail("Expected an attribute and found " + Quoted(name) + ".");
        Advance();
        if (!seen.insert(name.text).second) {
            throw DescriptionError(name.where, "The attribute '" + name.text + "' stands twice.");
        }
        if (!handle(name.text)) {
            throw DescriptionError(name.where,
                                   "The attribute '" + name.text + "' is not understood on " + owner + ".");
        }
    } while (Accept(","));
    Expect("]");
}

bool Parser::EntryAttribute(const std::string& name, Entry& entry) {
    if (name == "uuid") {
        GuidInBrackets(entry.guid);
        entry.hasGuid = true;
    } else if (name == "version") {
        VersionInBrackets(entry.majorVersion, entry.minorVersion);
    } else if (name == "helpstring") {
        entry.help = TextInBrackets();
    } else if (name == "hidden") {
        entry.flags |= TYPEFLAG_FHIDDEN;
    } else if (name == "restricted") {
        entry.flags |= TYPEFLAG_FRESTRICTED;
    } else {
        return false;
    }
    return true;
}

bool Parser::InterfaceAttribute(const std::string& name, Interface& to) {
    if (name == "object") {
        to.object = true;
    } else if (name == "dual") {
        to.flags |= TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION;
    } else if (name == "oleautomation") {
        to.automation = true;
        to.flags |= TYPEFLAG_FOLEAUTOMATION;
    } else if (name == "nonextensible") {
        to.flags |= TYPEFLAG_FNONEXTENSIBLE;
    } else if (name == "pointer_default") {
        Expect("(");
        if (At("unique")) {
            to.pointerDefault = PointerDefault::kUnique;
        } else if (At("ref")) {
            to.pointerDefault = PointerDefault::kRef;
        } else if (At("ptr")) {
            to.pointerDefault = PointerDefault::kPtr;
        } else {
            Fail("Expected unique, ref or ptr and found " + Quoted(m_token) + ".");
        }
        Advance();
        Expect(")");
    } else {
        return false;
    }
    return true;
}

bool Parser::MethodAttribute(const std::string& name, Method& to) {
    const auto accessor = [&](INVOKEKIND kind) {
        if (to.kind != INVOKE_FUNC) Fail("A method is one of propget, propput and propputref.");
        to.kind = kind;
    };
    if (name == "id") {
        to.id = static_cast<MEMBERID>(NumberInBrackets());
        to.hasId = true;
    } else if (name == "helpstring") {
        to.help = TextInBrackets();
    } else if (name == "hidden") {
        to.flags |= FUNCFLAG_FHIDDEN;
    } else if (name == "restricted") {
        to.flags |= FUNCFLAG_FRESTRICTED;
    } else if (name == "propget") {
        accessor(INVOKE_PROPERTYGET);
    } else if (name == "propput") {
        accessor(INVOKE_PROPERTYPUT);
    } else if (name == "propputref") {
        accessor(INVOKE_PROPERTYPUTREF);
    } else {
        return false;
    }
    return true;
}

}  // namespace wnplatform::typelib
