// Methods and their parameters.
#include "platform/typelib/idl/Parser.h"

namespace wnplatform::typelib {
namespace {

struct BaseType {
    const char* name;
    VARTYPE vt;
    WORD fewestPointers;
    WORD mostPointers;
    bool standardOnly;
};

// An interface that stands in none of these rows is one of the library's.
constexpr BaseType kBaseTypes[] = {
    {"BSTR", VT_BSTR, 0, 1, false},        {"long", VT_I4, 0, 1, false},
    {"IUnknown", VT_UNKNOWN, 1, 2, false}, {"IDispatch", VT_DISPATCH, 1, 2, false},
    {"ULONG", VT_UI4, 0, 0, true},         {"UINT", VT_UINT, 0, 1, true},
    {"USHORT", VT_UI2, 0, 0, true},        {"VARIANT", VT_VARIANT, 1, 1, true},
    {"void", VT_VOID, 1, 2, true},
};

constexpr MEMBERID kFirstAssignedId = 0x60000000;

[[noreturn]] void FailAt(const Token& token, const std::string& sentence) {
    throw DescriptionError(token.where, sentence);
}

}  // namespace

void Parser::ParseMethod(TypeRow& owner) {
    const Attributes attributes =
        ParseAttributes("a method", {"id", "helpstring", "hidden", "restricted", "propget", "propput", "propputref"});
    MethodRow method{};
    method.flags = attributes.Flags({{"hidden", FUNCFLAG_FHIDDEN}, {"restricted", FUNCFLAG_FRESTRICTED}});
    method.kind = attributes.Flags(
        {{"propget", INVOKE_PROPERTYGET}, {"propput", INVOKE_PROPERTYPUT}, {"propputref", INVOKE_PROPERTYPUTREF}});
    if (method.kind == 0) method.kind = INVOKE_FUNC;
    const bool returnsCount = m_isStandard && At("ULONG");
    if (!returnsCount && !At("HRESULT")) Fail("A method returns HRESULT, but found " + Quoted(m_token) + ".");
    method.result = returnsCount ? VT_UI4 : VT_HRESULT;
    Advance();
    const Token name = ExpectName("a method's name");
    method.name = m_tables.Add(name.text);
    method.help = m_tables.Add(attributes.help);
    method.slot = owner.slots;
    if (++owner.slots > kMostSlots) FailAt(name, "The interface has too many methods.");
    unsigned level = 0;
    for (std::uint32_t base = owner.base; base != kNone; base = m_tables.types[base].base) ++level;
    const MEMBERID assigned = kFirstAssignedId | static_cast<MEMBERID>((level & 0xFFF) << 16 | owner.count);
    method.id = attributes.Has("id") ? static_cast<MEMBERID>(attributes.number) : assigned;
    method.firstParameter = static_cast<std::uint32_t>(m_tables.parameters.size());
    Expect("(");
    if (!At(")")) {
        do {
            ParseParameter(method);
            if (++method.parameterCount > kMostParameters) {
                FailAt(name, "The method '" + name.text + "' has more than nine parameters.");
            }
        } while (Accept(","));
    }
    Expect(")");
    Expect(";");
    CheckAccessor(name, attributes, method);
    CheckUnique(name, owner, method);
    m_tables.methods.push_back(method);
    ++owner.count;
}

void Parser::ParseParameter(const MethodRow& method) {
    ParameterRow parameter{};
    parameter.flags = ParseAttributes("a parameter", {"in", "out", "retval"})
                          .Flags({{"in", PARAMFLAG_FIN}, {"out", PARAMFLAG_FOUT}, {"retval", PARAMFLAG_FRETVAL}});
    ParseType(parameter);
    const Token name = ExpectName("a parameter's name");
    CheckParameter(name, method, parameter);
    parameter.name = m_tables.Add(name.text);
    m_tables.parameters.push_back(parameter);
}

void Parser::ParseType(ParameterRow& parameter) {
    const Token type = m_token;
    if (type.kind != TokenKind::kName) Fail("Expected a type and found " + Quoted(type) + ".");
    Advance();
    std::string written = type.text;
    while (Accept("*")) {
        written += '*';
        ++parameter.pointers;
    }
    BaseType base{nullptr, VT_USERDEFINED, 1, 2, false};
    for (const BaseType& row : kBaseTypes) {
        if (type.text == row.name && (m_isStandard || !row.standardOnly)) base = row;
    }
    const bool isObject = base.vt == VT_USERDEFINED || base.vt == VT_UNKNOWN || base.vt == VT_DISPATCH;
    if (isObject && m_known.count(type.text) == 0) FailAt(type, "The type '" + type.text + "' is not known here.");
    if (parameter.pointers < base.fewestPointers || parameter.pointers > base.mostPointers) {
        FailAt(type, "No parameter can have the type '" + written + "'.");
    }
    parameter.vt = base.vt;
    parameter.target = kNone;
    if (base.vt == VT_UNKNOWN || base.vt == VT_DISPATCH) --parameter.pointers;
    if (base.vt == VT_USERDEFINED) m_targets.emplace_back(m_tables.parameters.size(), type);
}

void Parser::ResolveTargets() {
    for (const auto& [parameter, type] : m_targets) {
        const std::uint32_t target = TypeNamed(type.text);
        if (target == kNone || m_tables.types[target].isClass != 0) {
            FailAt(type, "The interface '" + type.text + "' is declared and never defined.");
        }
        m_tables.parameters[parameter].target = target;
    }
}

void Parser::CheckParameter(const Token& name, const MethodRow& method, const ParameterRow& parameter) const {
    for (std::uint32_t i = 0; i < method.parameterCount; ++i) {
        const ParameterRow& earlier = m_tables.ParametersOf(method)[i];
        if (SameName(m_tables.Text(earlier.name), name.text)) {
            FailAt(name, "The parameter name '" + name.text + "' is taken.");
        }
        if (earlier.IsResult()) FailAt(name, "Nothing follows the [retval] parameter.");
    }
    if ((parameter.flags & PARAMFLAG_FOUT) != 0 && parameter.Depth() == 0) {
        FailAt(name, "The [out] parameter '" + name.text + "' has no pointer to write through.");
    }
    if (parameter.IsResult() && parameter.flags != (PARAMFLAG_FOUT | PARAMFLAG_FRETVAL)) {
        FailAt(name, "The [retval] parameter '" + name.text + "' is not [out] alone.");
    }
}

void Parser::CheckAccessor(const Token& name, const Attributes& attributes, const MethodRow& method) const {
    const bool returns = m_tables.HasResult(method);
    switch (method.kind) {
        case INVOKE_FUNC:
            return;
        case INVOKE_PROPERTYGET:
            if (!returns) FailAt(name, "The propget method '" + name.text + "' has no [retval] parameter.");
            break;
        case INVOKE_PROPERTYPUT:
        case INVOKE_PROPERTYPUTREF:
            if (method.parameterCount > 0 && !returns) break;
            FailAt(name, "The method '" + name.text + "' has no last parameter that takes the property's value.");
        default:
            FailAt(name, "The method '" + name.text + "' is more than one of propget, propput and propputref.");
    }
    if (!attributes.Has("id")) FailAt(name, "The property '" + name.text + "' has no id for its methods to share.");
}

void Parser::CheckUnique(const Token& name, const TypeRow& owner, const MethodRow& method) const {
    for (const TypeRow* type = &owner;; type = &m_tables.types[type->base]) {
        for (std::uint32_t i = type->first; i < type->first + type->count; ++i) {
            const MethodRow& earlier = m_tables.methods[i];
            const bool sameName = SameName(m_tables.Text(earlier.name), name.text);
            const bool sameId = earlier.id == method.id;
            // The methods of one property share both.
            const bool property = type == &owner && sameName && sameId && earlier.kind != INVOKE_FUNC &&
                                  method.kind != INVOKE_FUNC && earlier.kind != method.kind;
            if (property) continue;
            if (sameName) FailAt(name, "The method name '" + name.text + "' is taken.");
            if (sameId) FailAt(name, "The method '" + name.text + "' has the id of another one.");
        }
        if (type->base == kNone) return;
    }
}

}  // namespace wnplatform::typelib
