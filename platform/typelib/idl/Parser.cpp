// Libraries, interfaces and classes.
#include "platform/typelib/idl/Parser.h"

#include <algorithm>

namespace wnplatform::typelib {
namespace {

// Words that have a meaning of their own and so name nothing.
constexpr std::string_view kReserved[] = {
    "BSTR",      "HRESULT", "VARIANT", "coclass", "const", "dispinterface", "enum",    "import", "importlib", "int",
    "interface", "library", "long",    "module",  "short", "struct",        "typedef", "union",  "unsigned",  "void"};

}  // namespace

bool SameName(std::string_view a, std::string_view b) noexcept {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

bool Parser::At(const char* text) const {
    return (m_token.kind == TokenKind::kName || m_token.kind == TokenKind::kSign) && m_token.text == text;
}

bool Parser::Accept(const char* text) {
    if (!At(text)) return false;
    Advance();
    return true;
}

void Parser::Expect(const char* text) {
    if (!Accept(text)) Fail(std::string("Expected '") + text + "' and found " + Quoted(m_token) + ".");
}

Token Parser::ExpectName(const char* what) {
    const bool reserved = std::find(std::begin(kReserved), std::end(kReserved), m_token.text) != std::end(kReserved);
    if (m_token.kind != TokenKind::kName || reserved) {
        Fail(std::string("Expected ") + what + " and found " + Quoted(m_token) + ".");
    }
    Token token = m_token;
    Advance();
    return token;
}

std::string Parser::ExpectText() {
    if (m_token.kind != TokenKind::kText) Fail("Expected a text in quotes and found " + Quoted(m_token) + ".");
    std::string text = m_token.text;
    Advance();
    return text;
}

void Parser::Parse() {
    Advance();
    while (At("import") || At("interface")) At("import") ? ParseImport() : ParseForward();
    const Attributes attributes = ParseAttributes("a library", {"uuid", "version", "lcid", "helpstring"});
    Expect("library");
    const Token name = ExpectName("the library's name");
    CheckIdentity(name, attributes);
    m_tables.libraries.push_back({attributes.guid, attributes.number, attributes.majorVersion,
                                  attributes.minorVersion, m_tables.Add(name.text), m_tables.Add(attributes.help),
                                  static_cast<std::uint32_t>(m_tables.types.size())});
    Expect("{");
    while (!Accept("}")) ParseStatement();
    Accept(";");
    if (m_token.kind != TokenKind::kEnd)
        Fail("Expected the end of the description and found " + Quoted(m_token) + ".");
    ResolveTargets();
}

// What it would bring in is known here already.
void Parser::ParseImport() {
    Expect("import");
    ExpectText();
    Expect(";");
}

void Parser::ParseForward() {
    Expect("interface");
    m_known.insert(ExpectName("an interface's name").text);
    Expect(";");
}

void Parser::ParseStatement() {
    if (At("interface")) return ParseForward();
    if (Accept("importlib")) {
        Expect("(");
        const Position where = m_token.where;
        const std::string file = ExpectText();
        if (file != "stdole2.tlb") {
            throw DescriptionError(where, "The library \"" + file + "\" is not known. Only stdole2.tlb is.");
        }
        Expect(")");
        Expect(";");
        m_known.insert({"IUnknown", "IDispatch"});
        return;
    }
    if (!At("[")) Fail("Expected an interface, a coclass or importlib and found " + Quoted(m_token) + ".");
    // What the attributes belong to stands behind them.
    const Attributes attributes =
        ParseAttributes("an interface or a coclass", {"uuid", "helpstring", "hidden", "restricted", "object", "dual",
                                                      "oleautomation", "nonextensible", "pointer_default"});
    if (!Accept("coclass")) {
        Expect("interface");
        return ParseInterface(attributes);
    }
    for (const char* name : {"object", "dual", "oleautomation", "nonextensible", "pointer_default"}) {
        if (attributes.Has(name)) Refuse("a coclass", name, attributes.names.at(name));
    }
    ParseClass(attributes);
}

void Parser::CheckIdentity(const Token& name, const Attributes& attributes) const {
    if (!attributes.Has("uuid")) throw DescriptionError(name.where, "'" + name.text + "' has no uuid.");
    const auto compare = [&](const auto& row) {
        if (SameName(m_tables.Text(row.name), name.text)) {
            throw DescriptionError(name.where, "The name '" + name.text + "' is taken.");
        }
        if (row.guid == attributes.guid) {
            throw DescriptionError(name.where, "The uuid of '" + name.text + "' is taken.");
        }
    };
    for (const LibraryRow& row : m_tables.libraries) compare(row);
    for (const TypeRow& row : m_tables.types) compare(row);
}

std::uint32_t Parser::TypeNamed(std::string_view name) const {
    for (std::uint32_t i = 0; i < m_tables.types.size(); ++i) {
        if (m_tables.Text(m_tables.types[i].name) == name) return i;
    }
    return kNone;
}

void Parser::ParseInterface(const Attributes& attributes) {
    const Token name = ExpectName("an interface's name");
    CheckIdentity(name, attributes);
    TypeRow type{};
    type.guid = attributes.guid;
    type.name = m_tables.Add(name.text);
    type.help = m_tables.Add(attributes.help);
    type.first = static_cast<std::uint32_t>(m_tables.methods.size());
    type.flags = attributes.Flags({{"hidden", TYPEFLAG_FHIDDEN},
                                   {"restricted", TYPEFLAG_FRESTRICTED},
                                   {"nonextensible", TYPEFLAG_FNONEXTENSIBLE},
                                   {"oleautomation", TYPEFLAG_FOLEAUTOMATION},
                                   {"dual", TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION}});
    ParseBase(name, type);
    m_known.insert(name.text);
    m_tables.types.push_back(type);
    Expect("{");
    while (!Accept("}")) ParseMethod(m_tables.types.back());
    Accept(";");
}

void Parser::ParseBase(const Token& name, TypeRow& type) {
    type.base = kNone;
    if (!Accept(":")) {
        // Every table begins with the same three methods; only they themselves stand on nothing.
        if (m_isStandard) return;
        throw DescriptionError(name.where, "'" + name.text + "' has no base interface.");
    }
    const Token base = ExpectName("the base interface's name");
    type.base = TypeNamed(base.text);
    const bool known = m_known.count(base.text) != 0 && type.base != kNone && m_tables.types[type.base].isClass == 0;
    if (!known) throw DescriptionError(base.where, "The base interface '" + base.text + "' is not defined yet.");
    const TypeRow& row = m_tables.types[type.base];
    type.slots = row.slots;
    if (base.text == "IDispatch" || row.IsDispatch()) type.flags |= TYPEFLAG_FDISPATCHABLE;
}

void Parser::ParseClass(const Attributes& attributes) {
    const Token name = ExpectName("a coclass's name");
    CheckIdentity(name, attributes);
    TypeRow type{};
    type.guid = attributes.guid;
    type.name = m_tables.Add(name.text);
    type.help = m_tables.Add(attributes.help);
    type.isClass = 1;
    type.base = kNone;
    type.first = static_cast<std::uint32_t>(m_tables.implemented.size());
    type.flags = static_cast<WORD>(
        TYPEFLAG_FCANCREATE | attributes.Flags({{"hidden", TYPEFLAG_FHIDDEN}, {"restricted", TYPEFLAG_FRESTRICTED}}));
    Expect("{");
    bool hasDefault = false;
    while (!Accept("}")) {
        const bool isDefault = ParseAttributes("a coclass's interface", {"default"}).Has("default");
        Expect("interface");
        const Token implemented = ExpectName("an interface's name");
        Expect(";");
        const std::uint32_t row = TypeNamed(implemented.text);
        if (m_known.count(implemented.text) == 0 || row == kNone) {
            throw DescriptionError(implemented.where, "The interface '" + implemented.text + "' is not defined yet.");
        }
        for (std::uint32_t i = type.first; i < m_tables.implemented.size(); ++i) {
            if (m_tables.implemented[i].type != row) continue;
            throw DescriptionError(implemented.where, "The coclass has '" + implemented.text + "' twice.");
        }
        if (isDefault && hasDefault) throw DescriptionError(implemented.where, "The coclass has two defaults.");
        hasDefault = hasDefault || isDefault;
        m_tables.implemented.push_back({row, isDefault ? IMPLTYPEFLAG_FDEFAULT : 0});
        ++type.count;
    }
    Accept(";");
    if (!hasDefault) throw DescriptionError(name.where, "The coclass '" + name.text + "' has no default interface.");
    m_tables.types.push_back(type);
}

}  // namespace wnplatform::typelib
