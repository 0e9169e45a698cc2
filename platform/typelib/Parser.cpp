#include "platform/typelib/Parser.h"

namespace wnplatform::typelib {
namespace {

struct BaseType {
    const char* name;
    VARTYPE vt;
};

constexpr BaseType kBaseTypes[] = {
    {"BSTR", VT_BSTR},       {"long", VT_I4},           {"short", VT_I2},          {"int", VT_INT},
    {"VARIANT", VT_VARIANT}, {"VARIANT_BOOL", VT_BOOL}, {"LPWSTR", VT_LPWSTR},     {"HRESULT", VT_HRESULT},
    {"void", VT_VOID},       {"unsigned long", VT_UI4}, {"unsigned int", VT_UINT}, {"unsigned short", VT_UI2},
};

// Words that have a meaning of their own and so name nothing.
constexpr const char* kReserved[] = {"interface", "coclass", "library",      "import", "importlib",
                                     "unsigned",  "typedef", "struct",       "enum",   "union",
                                     "const",     "module",  "dispinterface"};

}  // namespace

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
    if (m_token.kind != TokenKind::kName)
        Fail(std::string("Expected ") + what + " and found " + Quoted(m_token) + ".");
    for (const char* word : kReserved) {
        if (m_token.text == word) Fail(std::string("Expected ") + what + " and found the word '" + word + "'.");
    }
    for (const BaseType& type : kBaseTypes) {
        if (m_token.text == type.name) Fail("'" + m_token.text + "' is a type and names nothing else.");
    }
    Token token = m_token;
    Advance();
    return token;
}

std::unique_ptr<Library> Parser::Parse() {
    Advance();
    auto library = std::make_unique<Library>();
    for (;;) {
        if (Accept("import")) {
            // What it would bring in is known here already.
            do {
                if (m_token.kind != TokenKind::kText) Fail("Expected a file name in quotes.");
                Advance();
            } while (Accept(","));
            Expect(";");
        } else if (At("interface")) {
            ParseForward();
        } else {
            break;
        }
    }
    Attributes("a library", [&](const std::string& name) {
        if (name == "uuid") {
            GuidInBrackets(library->guid);
            library->hasGuid = true;
        } else if (name == "version") {
            VersionInBrackets(library->majorVersion, library->minorVersion);
        } else if (name == "lcid") {
            library->lcid = NumberInBrackets();
        } else if (name == "helpstring") {
            library->help = TextInBrackets();
        } else {
            return false;
        }
        return true;
    });
    Expect("library");
    library->where = m_token.where;
    library->name = ExpectName("the library's name").text;
    ParseLibraryBody(*library);
    if (m_token.kind != TokenKind::kEnd)
        Fail("Nothing stands behind the library, but found " + Quoted(m_token) + ".");
    return library;
}

void Parser::ParseForward() {
    Expect("interface");
    m_interfaces.insert(ExpectName("an interface's name").text);
    Expect(";");
}

void Parser::ParseLibraryBody(Library& library) {
    Expect("{");
    while (!At("}")) {
        if (At("importlib")) {
            const Position where = m_token.where;
            Advance();
            const std::string file = TextInBrackets();
            if (file != "stdole2.tlb") {
                throw DescriptionError(where, "The library \"" + file + "\" is not known; stdole2.tlb is.");
            }
            Expect(";");
            library.importsStandard = true;
            m_interfaces.insert({"IUnknown", "IDispatch"});
            continue;
        }
        if (At("interface")) {
            ParseForward();
            continue;
        }
        if (!At("[")) Fail("Expected an interface, a coclass or importlib and found " + Quoted(m_token) + ".");
        ParseEntry(library);
    }
    Expect("}");
    Accept(";");
}

// What the attributes belong to stands behind them only.
void Parser::ParseEntry(Library& library) {
    auto read = std::make_unique<Interface>();
    std::string interfaceOnly;
    std::string classOnly;
    const Position where = m_token.where;
    Attributes("an interface or a coclass", [&](const std::string& name) {
        if (EntryAttribute(name, *read)) return true;
        const bool ofClass = name == "noncreatable";
        (ofClass ? classOnly : interfaceOnly) = name;
        return ofClass || InterfaceAttribute(name, *read);
    });
    const bool isClass = At("coclass");
    const std::string& wrong = isClass ? interfaceOnly : classOnly;
    if (!wrong.empty()) {
        const char* owner = isClass ? "a coclass" : "an interface";
        throw DescriptionError(where, "The attribute '" + wrong + "' is not understood on " + owner + ".");
    }
    if (!isClass) {
        Expect("interface");
        ParseInterface(library, std::move(read));
        return;
    }
    Advance();
    auto coclass = std::make_unique<CoClass>();
    static_cast<Entry&>(*coclass) = *read;
    if (classOnly.empty()) coclass->flags |= TYPEFLAG_FCANCREATE;
    ParseCoClass(library, std::move(coclass));
}

void Parser::ParseInterface(Library& library, std::unique_ptr<Interface> to) {
    to->where = m_token.where;
    to->name = ExpectName("an interface's name").text;
    m_interfaces.insert(to->name);
    if (Accept(":")) {
        to->baseWhere = m_token.where;
        to->baseName = ExpectName("the base interface's name").text;
    }
    Expect("{");
    while (!At("}")) to->methods.push_back(ParseMethod());
    Advance();
    Accept(";");
    library.types.push_back({std::move(to), nullptr});
}

Method Parser::ParseMethod() {
    Method method;
    Attributes("a method", [&](const std::string& name) { return MethodAttribute(name, method); });
    method.result = ParseType();
    method.where = m_token.where;
    method.name = ExpectName("a method's name").text;
    Expect("(");
    if (!At(")")) {
        do {
            method.parameters.push_back(ParseParameter());
        } while (Accept(","));
    }
    Expect(")");
    Expect(";");
    return method;
}

Parameter Parser::ParseParameter() {
    Parameter parameter;
    Attributes("a parameter", [&](const std::string& name) {
        const USHORT flag = name == "in"       ? PARAMFLAG_FIN
                            : name == "out"    ? PARAMFLAG_FOUT
                            : name == "retval" ? PARAMFLAG_FRETVAL
                                               : PARAMFLAG_NONE;
        parameter.flags |= flag;
        return flag != PARAMFLAG_NONE;
    });
    parameter.type = ParseType();
    parameter.where = m_token.where;
    parameter.name = ExpectName("a parameter's name").text;
    return parameter;
}

std::string Parser::UnsignedType() {
    for (const char* name : {"long", "int", "short"}) {
        if (Accept(name)) return std::string("unsigned ") + name;
    }
    Fail("Expected long, int or short after unsigned and found " + Quoted(m_token) + ".");
}

Type Parser::ParseType() {
    Type type;
    type.where = m_token.where;
    if (m_token.kind != TokenKind::kName) Fail("Expected a type and found " + Quoted(m_token) + ".");
    if (Accept("unsigned")) {
        type.name = UnsignedType();
    } else {
        type.name = m_token.text;
        Advance();
    }
    for (const BaseType& base : kBaseTypes) {
        if (type.name == base.name) type.vt = base.vt;
    }
    if (type.vt == VT_EMPTY) {
        if (m_interfaces.count(type.name) == 0) {
            throw DescriptionError(type.where, "The type '" + type.name + "' is not known here.");
        }
        type.vt = VT_USERDEFINED;
    }
    while (Accept("*")) ++type.pointers;
    return type;
}

void Parser::ParseCoClass(Library& library, std::unique_ptr<CoClass> to) {
    to->where = m_token.where;
    to->name = ExpectName("a coclass's name").text;
    Expect("{");
    while (!At("}")) to->interfaces.push_back(ParseImplemented());
    Advance();
    Accept(";");
    library.types.push_back({nullptr, std::move(to)});
}

Implemented Parser::ParseImplemented() {
    Implemented implemented;
    Attributes("a coclass's interface", [&](const std::string& name) {
        const INT flag = name == "default"      ? IMPLTYPEFLAG_FDEFAULT
                         : name == "source"     ? IMPLTYPEFLAG_FSOURCE
                         : name == "restricted" ? IMPLTYPEFLAG_FRESTRICTED
                                                : 0;
        implemented.flags |= flag;
        return flag != 0;
    });
    Expect("interface");
    implemented.where = m_token.where;
    implemented.name = ExpectName("an interface's name").text;
    Expect(";");
    return implemented;
}

}  // namespace wnplatform::typelib
