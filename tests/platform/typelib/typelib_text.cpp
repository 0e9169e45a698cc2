#include "typelib_text.h"

#include <cstdio>

#include "include/wncom/Bstr.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

std::string Hex(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof(text), "0x%X", value);
    return text;
}

std::string TypeText(ITypeInfo& owner, const TYPEDESC& type) {
    switch (type.vt) {
        case VT_PTR:
            return TypeText(owner, *type.lptdesc) + "*";
        case VT_USERDEFINED: {
            ITypeInfo* info = nullptr;
            if (FAILED(owner.GetRefTypeInfo(type.hreftype, &info))) return "?";
            return NameOf(*Held<ITypeInfo>(info));
        }
        case VT_BSTR:
            return "BSTR";
        case VT_I4:
            return "long";
        case VT_UNKNOWN:
            return "IUnknown*";
        case VT_HRESULT:
            return "HRESULT";
        default:
            return "type " + std::to_string(type.vt);
    }
}

std::string DirectionText(USHORT flags) {
    std::string text;
    if (flags & PARAMFLAG_FIN) text += "in ";
    if (flags & PARAMFLAG_FOUT) text += "out ";
    if (flags & PARAMFLAG_FRETVAL) text += "retval ";
    return text;
}

std::string Quoted(ITypeInfo& type, MEMBERID member) {
    Bstr help;
    type.GetDocumentation(member, nullptr, help.put(), nullptr, nullptr);
    return " \"" + Narrow(help.get()) + "\"\n";
}

std::string MemberText(ITypeInfo& type, const FUNCDESC& function) {
    BSTR names[16] = {};
    UINT count = 0;
    type.GetNames(function.memid, names, 16, &count);
    std::string text = std::to_string(static_cast<unsigned>(function.oVft) / sizeof(void*)) + " " +
                       Hex(static_cast<unsigned>(function.memid)) + " " + Narrow(names[0]) + "(";
    for (int i = 0; i < function.cParams; ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        if (i > 0) text += ", ";
        text += DirectionText(parameter.paramdesc.wParamFlags) + TypeText(type, parameter.tdesc) + " " +
                Narrow(names[i + 1]);
    }
    for (UINT i = 0; i < count; ++i) SysFreeString(names[i]);
    const bool usual = function.funckind == FUNC_PUREVIRTUAL && function.callconv == CC_STDCALL &&
                       function.invkind == INVOKE_FUNC && function.elemdescFunc.tdesc.vt == VT_HRESULT;
    return text + (usual ? ")" : ") unusual") + Quoted(type, function.memid);
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

std::string NameOf(ITypeInfo& type, MEMBERID member) {
    Bstr name;
    type.GetDocumentation(member, name.put(), nullptr, nullptr, nullptr);
    return Narrow(name.get());
}

std::string InterfaceText(ITypeInfo& type) {
    TYPEATTR* attributes = nullptr;
    if (FAILED(type.GetTypeAttr(&attributes))) return "no attributes";
    std::string text = NameOf(type) + " flags=" + Hex(static_cast<unsigned>(attributes->wTypeFlags)) + " : ";
    const Held<ITypeInfo> base = Referenced(type, 0);
    text += (base ? NameOf(*base) : "nothing") + Quoted(type, MEMBERID_NIL);
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        if (FAILED(type.GetFuncDesc(i, &function))) return text + "no function";
        text += MemberText(type, *function);
        type.ReleaseFuncDesc(function);
    }
    type.ReleaseTypeAttr(attributes);
    return text;
}

std::string ClassText(ITypeInfo& type) {
    TYPEATTR* attributes = nullptr;
    if (FAILED(type.GetTypeAttr(&attributes))) return "no attributes";
    std::string text =
        NameOf(type) + " flags=" + Hex(static_cast<unsigned>(attributes->wTypeFlags)) + Quoted(type, MEMBERID_NIL);
    for (UINT i = 0; i < attributes->cImplTypes; ++i) {
        INT flags = -1;
        type.GetImplTypeFlags(i, &flags);
        const Held<ITypeInfo> implemented = Referenced(type, i);
        text += Hex(static_cast<unsigned>(flags)) + " " + (implemented ? NameOf(*implemented) : "?") + "\n";
    }
    type.ReleaseTypeAttr(attributes);
    return text;
}

std::string LibraryText(ITypeLib& library) {
    std::string text;
    for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
        ITypeInfo* info = nullptr;
        TYPEKIND kind = TKIND_ALIAS;
        if (FAILED(library.GetTypeInfo(i, &info)) || FAILED(library.GetTypeInfoType(i, &kind)))
            return text + "no type";
        const Held<ITypeInfo> type(info);
        text += kind == TKIND_COCLASS ? ClassText(*type) : InterfaceText(*TableView(*type));
    }
    return text;
}

}  // namespace wncom::test
