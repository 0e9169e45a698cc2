#include "platform/typelib/TypeInfo.h"

#include <new>

#include "objbase.h"
#include "platform/core/Guarded.h"
#include "platform/typelib/FuncDesc.h"
#include "platform/typelib/Invoke.h"
#include "platform/typelib/Loaded.h"
#include "platform/typelib/Members.h"
#include "platform/typelib/Texts.h"
#include "platform/typelib/TypeLib.h"

const IID IID_ITypeInfo{0x00020401, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

namespace wnplatform::typelib {
namespace {

// References to types of the standard library, and the one from either view of a dual interface to the other.
constexpr HREFTYPE kStandardReference = 0x01000000;
constexpr HREFTYPE kPartnerReference = 0xFFFFFFFE;
constexpr UINT kPartnerIndex = 0xFFFFFFFF;
// What every late-bound object's table has.
constexpr WORD kDispatchSlots = 7;
constexpr UINT kStandardDispatch = 1;

constexpr WORD TableBytes(unsigned slots) noexcept { return static_cast<WORD>(slots * sizeof(void*)); }

}  // namespace

TYPEKIND KindOf(const Library::TypeEntry& entry, TypeView view) noexcept {
    if (entry.coclass) return TKIND_COCLASS;
    return entry.interface_->IsDual() && view == TypeView::kDefault ? TKIND_DISPATCH : TKIND_INTERFACE;
}

HREFTYPE ReferenceTo(const Interface& interface_) noexcept {
    return interface_.index | (interface_.imported ? kStandardReference : 0);
}

HRESULT TypeInfo::Make(const std::shared_ptr<const Library>& library, UINT index, TypeView view,
                       ITypeInfo** info) noexcept {
    if (!info) return E_INVALIDARG;
    *info = nullptr;
    if (index >= library->types.size()) return TYPE_E_ELEMENTNOTFOUND;
    *info = new (std::nothrow) TypeInfo(library, index, view);
    return *info ? S_OK : E_OUTOFMEMORY;
}

HRESULT TypeInfo::GetTypeAttr(TYPEATTR** attributes) noexcept {
    if (!attributes) return E_INVALIDARG;
    TYPEATTR* to = *attributes = new (std::nothrow) TYPEATTR{};
    if (!to) return E_OUTOFMEMORY;
    const Entry& entry = m_entry.Common();
    to->guid = entry.guid;
    to->lcid = m_library->lcid;
    to->memidConstructor = MEMBERID_NIL;
    to->memidDestructor = MEMBERID_NIL;
    to->cbSizeInstance = sizeof(void*);
    to->cbAlignment = sizeof(void*);
    to->typekind = KindOf(m_entry, m_view);
    to->wTypeFlags = entry.flags;
    to->wMajorVerNum = entry.majorVersion;
    to->wMinorVerNum = entry.minorVersion;
    switch (to->typekind) {
        case TKIND_COCLASS:
            to->cImplTypes = static_cast<WORD>(m_entry.coclass->interfaces.size());
            break;
        case TKIND_DISPATCH:
            // Late-bound callers see the inherited members too, and nothing of how they are marshalled.
            to->cFuncs = static_cast<WORD>(Own()->Slots());
            to->cImplTypes = 1;
            to->cbSizeVft = TableBytes(kDispatchSlots);
            to->wTypeFlags = static_cast<WORD>(entry.flags & ~TYPEFLAG_FOLEAUTOMATION);
            break;
        default:
            to->cFuncs = static_cast<WORD>(Own()->methods.size());
            to->cImplTypes = Own()->base ? 1 : 0;
            to->cbSizeVft = TableBytes(Own()->Slots());
            break;
    }
    return S_OK;
}

void TypeInfo::ReleaseTypeAttr(TYPEATTR* attributes) noexcept { delete attributes; }

HRESULT TypeInfo::GetFuncDesc(UINT index, FUNCDESC** description) noexcept {
    if (!description) return E_INVALIDARG;
    *description = nullptr;
    const Method* method = nullptr;
    if (Own() && IsDispatchView()) {
        method = MemberAtSlot(*Own(), index);
    } else if (Own() && index < Own()->methods.size()) {
        method = &Own()->methods[index];
    }
    if (!method) return TYPE_E_ELEMENTNOTFOUND;
    return Guarded(E_OUTOFMEMORY, [&] {
        *description = FuncDesc::Make(*method, IsDispatchView());
        return S_OK;
    });
}

void TypeInfo::ReleaseFuncDesc(FUNCDESC* description) noexcept { FuncDesc::Free(description); }

HRESULT TypeInfo::GetVarDesc(UINT, VARDESC** description) noexcept {
    if (!description) return E_INVALIDARG;
    *description = nullptr;
    return TYPE_E_ELEMENTNOTFOUND;
}

// There never is one to release.
void TypeInfo::ReleaseVarDesc(VARDESC*) noexcept {}

HRESULT TypeInfo::GetNames(MEMBERID member, BSTR* names, UINT capacity, UINT* count) noexcept {
    if (!names || !count) return E_INVALIDARG;
    *count = 0;
    const Method* method = Own() ? MemberWithId(*Own(), member) : nullptr;
    if (!method) return TYPE_E_ELEMENTNOTFOUND;
    for (UINT i = 0; i < capacity && i <= method->parameters.size(); ++i) {
        const HRESULT hr = GiveText(i == 0 ? method->name : method->parameters[i - 1].name, &names[i]);
        if (FAILED(hr)) return hr;
        *count = i + 1;
    }
    return S_OK;
}

HRESULT TypeInfo::GetRefTypeOfImplType(UINT index, HREFTYPE* type) noexcept {
    if (!type) return E_INVALIDARG;
    *type = 0;
    if (m_entry.coclass) {
        if (index >= m_entry.coclass->interfaces.size()) return TYPE_E_ELEMENTNOTFOUND;
        *type = ReferenceTo(*m_entry.coclass->interfaces[index].interface_);
        return S_OK;
    }
    if (index == kPartnerIndex) {
        if (!Own()->IsDual()) return TYPE_E_ELEMENTNOTFOUND;
        *type = kPartnerReference;
        return S_OK;
    }
    if (index != 0) return TYPE_E_ELEMENTNOTFOUND;
    if (IsDispatchView()) {
        // Whatever the table derives from, late-bound callers come in through IDispatch.
        *type = kStandardReference | kStandardDispatch;
        return S_OK;
    }
    if (!Own()->base) return TYPE_E_ELEMENTNOTFOUND;
    *type = ReferenceTo(*Own()->base);
    return S_OK;
}

HRESULT TypeInfo::GetImplTypeFlags(UINT index, INT* flags) noexcept {
    if (!flags) return E_INVALIDARG;
    *flags = 0;
    if (!m_entry.coclass) {
        // Deriving from something carries no flags.
        return index == 0 && Own()->base ? S_OK : TYPE_E_ELEMENTNOTFOUND;
    }
    if (index >= m_entry.coclass->interfaces.size()) return TYPE_E_ELEMENTNOTFOUND;
    *flags = m_entry.coclass->interfaces[index].flags;
    return S_OK;
}

HRESULT TypeInfo::GetRefTypeInfo(HREFTYPE type, ITypeInfo** info) noexcept {
    if (!info) return E_INVALIDARG;
    *info = nullptr;
    if (type == kPartnerReference) {
        if (!Own() || !Own()->IsDual()) return TYPE_E_ELEMENTNOTFOUND;
        return Make(m_library, m_entry.Common().index,
                    m_view == TypeView::kDefault ? TypeView::kTable : TypeView::kDefault, info);
    }
    if ((type & kStandardReference) != 0) {
        return Make(StandardLibrary(), type & ~kStandardReference, TypeView::kDefault, info);
    }
    return Make(m_library, type, TypeView::kDefault, info);
}

HRESULT TypeInfo::GetIDsOfNames(LPOLESTR* names, UINT count, MEMBERID* ids) noexcept {
    if (!names || !ids || count == 0) return E_INVALIDARG;
    for (UINT i = 0; i < count; ++i) {
        if (!names[i]) return E_INVALIDARG;
        ids[i] = MEMBERID_NIL;
    }
    const Method* method = Own() ? MemberNamed(*Own(), names[0]) : nullptr;
    if (!method) return DISP_E_UNKNOWNNAME;
    ids[0] = method->id;
    HRESULT hr = S_OK;
    for (UINT i = 1; i < count; ++i) {
        ids[i] = ParameterNamed(*method, names[i]);
        if (ids[i] == MEMBERID_NIL) hr = DISP_E_UNKNOWNNAME;
    }
    return hr;
}

HRESULT TypeInfo::Invoke(void* instance, MEMBERID member, WORD flags, DISPPARAMS* params, VARIANT* result,
                         EXCEPINFO* exception, UINT* argumentError) noexcept {
    if (!instance || !params) return E_INVALIDARG;
    const Method* method = Own() ? MemberToInvoke(*Own(), member, flags) : nullptr;
    if (!method) return DISP_E_MEMBERNOTFOUND;
    return InvokeMethod(*method, instance, *params, result, exception, argumentError);
}

HRESULT TypeInfo::GetDocumentation(MEMBERID member, BSTR* name, BSTR* text, DWORD* context, BSTR* helpFile) noexcept {
    if (member == MEMBERID_NIL) {
        const Entry& entry = m_entry.Common();
        return GiveDocumentation(entry.name, entry.help, name, text, context, helpFile);
    }
    const Method* method = Own() ? MemberWithId(*Own(), member) : nullptr;
    if (!method) return TYPE_E_ELEMENTNOTFOUND;
    return GiveDocumentation(method->name, method->help, name, text, context, helpFile);
}

HRESULT TypeInfo::GetContainingTypeLib(ITypeLib** library, UINT* index) noexcept {
    if (index) *index = m_entry.Common().index;
    if (!library) return index ? S_OK : E_INVALIDARG;
    *library = new (std::nothrow) TypeLib(m_library);
    return *library ? S_OK : E_OUTOFMEMORY;
}

HRESULT TypeInfo::CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept {
    if (!object) return E_INVALIDARG;
    *object = nullptr;
    if (!m_entry.coclass) return TYPE_E_BADMODULEKIND;
    return CoCreateInstance(m_entry.coclass->guid, outer, CLSCTX_INPROC_SERVER, iid, object);
}

// The rest tells of functions that a module exports by themselves, of which no library here has any, and of a
// compiler's and a marshaller's needs.
HRESULT TypeInfo::GetDllEntry(MEMBERID, INVOKEKIND, BSTR* dll, BSTR* name, WORD* ordinal) noexcept {
    if (dll) *dll = nullptr;
    if (name) *name = nullptr;
    if (ordinal) *ordinal = 0;
    return TYPE_E_BADMODULEKIND;
}

HRESULT TypeInfo::AddressOfMember(MEMBERID, INVOKEKIND, void** address) noexcept {
    if (!address) return E_INVALIDARG;
    *address = nullptr;
    return TYPE_E_BADMODULEKIND;
}

HRESULT TypeInfo::GetMops(MEMBERID, BSTR* mops) noexcept {
    if (!mops) return E_INVALIDARG;
    *mops = nullptr;
    return TYPE_E_ELEMENTNOTFOUND;
}

HRESULT TypeInfo::GetTypeComp(ITypeComp** compiler) noexcept {
    if (!compiler) return E_INVALIDARG;
    *compiler = nullptr;
    return E_NOTIMPL;
}

}  // namespace wnplatform::typelib
