#include "typelib_text.h"

#include <cstdio>
#include <iterator>

#include "include/wncom/Bstr.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::string HexNumber(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%X", value);
    return text;
}

// The name and the help text of a type or a member.
std::pair<std::string, std::string> Documentation(ITypeInfo& type, MEMBERID member) {
    Bstr name;
    Bstr help;
    if (FAILED(type.GetDocumentation(member, name.put(), help.put(), nullptr, nullptr))) return {"?", "?"};
    return {Narrow(name.get()), " \"" + Narrow(help.get()) + "\"\n"};
}

std::string NameOf(const Held<ITypeInfo>& type) {
    return type ? Documentation(*type, MEMBERID_NIL).first : "nothing";
}

std::string TypeName(ITypeInfo& owner, const TYPEDESC& type) {
    if (type.vt == VT_PTR) return TypeName(owner, *type.lptdesc) + "*";
    if (type.vt == VT_USERDEFINED) {
        ITypeInfo* info = nullptr;
        return SUCCEEDED(owner.GetRefTypeInfo(type.hreftype, &info)) ? NameOf(Held<ITypeInfo>(info)) : "?";
    }
    const std::pair<int, const char*> names[] = {
        {VT_BSTR, "BSTR"},       {VT_I4, "long"},   {VT_UNKNOWN, "IUnknown*"}, {VT_DISPATCH, "IDispatch*"},
        {VT_HRESULT, "HRESULT"}, {VT_VOID, "void"}, {VT_VARIANT, "VARIANT"}};
    for (const auto& [vt, name] : names) {
        if (type.vt == vt) return name;
    }
    return "type " + std::to_string(type.vt);
}

std::string MemberText(ITypeInfo& type, const FUNCDESC& function) {
    BSTR names[16] = {};
    UINT count = 0;
    type.GetNames(function.memid, names, 16, &count);
    std::string text = std::to_string(static_cast<unsigned>(function.oVft) / sizeof(void*)) + " " +
                       HexNumber(static_cast<unsigned>(function.memid)) + " " + Narrow(names[0]) + "(";
    for (int i = 0; i < function.cParams; ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        const USHORT flags = parameter.paramdesc.wParamFlags;
        text += std::string(i > 0 ? ", " : "") + (flags & PARAMFLAG_FIN ? "in " : "") +
                (flags & PARAMFLAG_FOUT ? "out " : "") + (flags & PARAMFLAG_FRETVAL ? "retval " : "") +
                TypeName(type, parameter.tdesc) + " " + Narrow(names[i + 1]);
    }
    for (UINT i = 0; i < count; ++i) SysFreeString(names[i]);
    text += ")";
    if (function.elemdescFunc.tdesc.vt != VT_HRESULT) text += " " + TypeName(type, function.elemdescFunc.tdesc);
    if (function.funckind != FUNC_PUREVIRTUAL) text += " late-bound";
    if (function.invkind != INVOKE_FUNC) text += " kind=" + std::to_string(function.invkind);
    if (function.wFuncFlags != 0) text += " flags=" + HexNumber(function.wFuncFlags);
    return text + (function.callconv == CC_STDCALL ? "" : " unusual") + Documentation(type, function.memid).second;
}

}  // namespace

Held<ITypeLib> LoadLibraryOf(const std::string& file) {
    const bool whole = file.find('/') != std::string::npos;
    ITypeLib* library = nullptr;
    LoadTypeLib(Wide(whole ? file : ProgramFolder() + "/" + file).c_str(), &library);
    return Held<ITypeLib>(library);
}

Held<ITypeInfo> Referenced(ITypeInfo& type, UINT implementedIndex) {
    HREFTYPE reference = 0;
    ITypeInfo* info = nullptr;
    if (SUCCEEDED(type.GetRefTypeOfImplType(implementedIndex, &reference))) type.GetRefTypeInfo(reference, &info);
    return Held<ITypeInfo>(info);
}

Held<ITypeInfo> TableView(ITypeInfo& type) {
    Held<ITypeInfo> partner = Referenced(type, static_cast<UINT>(-1));
    if (partner) return partner;
    type.AddRef();
    return Held<ITypeInfo>(&type);
}

std::string TypeText(ITypeInfo& type) {
    TYPEATTR* attributes = nullptr;
    if (FAILED(type.GetTypeAttr(&attributes))) return "no attributes";
    const TYPEATTR copy = *attributes;
    type.ReleaseTypeAttr(attributes);
    const auto [name, help] = Documentation(type, MEMBERID_NIL);
    const bool isClass = copy.typekind == TKIND_COCLASS;
    std::string text = name +
                       (isClass                           ? " class"
                        : copy.typekind == TKIND_DISPATCH ? " dispatch"
                                                          : " interface") +
                       " flags=" + HexNumber(copy.wTypeFlags) + (isClass ? "" : " : " + NameOf(Referenced(type, 0))) +
                       help;
    for (UINT i = 0; isClass && i < copy.cImplTypes; ++i) {
        INT flags = -1;
        type.GetImplTypeFlags(i, &flags);
        text += HexNumber(static_cast<unsigned>(flags)) + " " + NameOf(Referenced(type, i)) + "\n";
    }
    for (UINT i = 0; i < copy.cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        if (FAILED(type.GetFuncDesc(i, &function))) return text + "no function";
        text += MemberText(type, *function);
        type.ReleaseFuncDesc(function);
    }
    return text;
}

std::string LibraryText(ITypeLib& library) {
    std::string text;
    for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
        ITypeInfo* info = nullptr;
        if (FAILED(library.GetTypeInfo(i, &info))) return text + "no type";
        text += TypeText(*TableView(*Held<ITypeInfo>(info)));
    }
    return text;
}

}  // namespace wncom::test
