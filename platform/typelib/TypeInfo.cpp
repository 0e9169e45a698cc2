#include "platform/typelib/TypeInfo.h"

#include <new>

#include "objbase.h"
#include "platform/typelib/FuncDesc.h"
#include "platform/typelib/Invoke.h"
#include "platform/typelib/Members.h"
#include "platform/typelib/Texts.h"
#include "platform/typelib/TypeLib.h"

const IID IID_ITypeInfo{0x00020401, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

namespace wnplatform::typelib {
namespace {

// Types refer to each other by their places in the tables, and either view of a dual interface to the other so.
constexpr HREFTYPE kPartnerReference = 0xFFFFFFFE;
constexpr UINT kPartnerIndex = 0xFFFFFFFF;
// What every late-bound object's table has, and the place of its interface.
constexpr WORD kDispatchSlots = 7;
constexpr HREFTYPE kDispatchReference = 1;

constexpr WORD TableBytes(unsigned slots) noexcept { return static_cast<WORD>(slots * sizeof(void*)); }

}  // namespace

TYPEKIND KindOf(const TypeRow& type, TypeView view) noexcept {
    if (type.isClass != 0) return TKIND_COCLASS;
    return type.IsDual() && view == TypeView::kDefault ? TKIND_DISPATCH : TKIND_INTERFACE;
}

HRESULT TypeInfo::Make(const std::shared_ptr<const Tables>& tables, std::uint32_t type, TypeView view,
                       ITypeInfo** info) noexcept {
    if (!info) return E_INVALIDARG;
    *info = nullptr;
    if (type >= tables->types.size()) return TYPE_E_ELEMENTNOTFOUND;
    *info = new (std::nothrow) TypeInfo(tables, type, view);
    return *info ? S_OK : E_OUTOFMEMORY;
}

std::size_t TypeInfo::Owner() const noexcept {
    std::size_t owner = m_tables->libraries.size() - 1;
    while (m_tables->libraries[owner].firstType > Place()) --owner;
    return owner;
}

HRESULT TypeInfo::GetTypeAttr(TYPEATTR** attributes) noexcept {
    if (!attributes) return E_INVALIDARG;
    TYPEATTR* to = *attributes = new (std::nothrow) TYPEATTR{};
    if (!to) return E_OUTOFMEMORY;
    to->guid = m_type.guid;
    to->lcid = m_tables->libraries[Owner()].lcid;
    to->memidConstructor = MEMBERID_NIL;
    to->memidDestructor = MEMBERID_NIL;
    to->cbSizeInstance = sizeof(void*);
    to->cbAlignment = sizeof(void*);
    to->typekind = KindOf(m_type, m_view);
    to->wTypeFlags = m_type.flags;
    switch (to->typekind) {
        case TKIND_COCLASS:
            to->cImplTypes = static_cast<WORD>(m_type.count);
            break;
        case TKIND_DISPATCH:
            // Late-bound callers see the inherited members too, and nothing of how they are marshalled.
            to->cFuncs = m_type.slots;
            to->cImplTypes = 1;
            to->cbSizeVft = TableBytes(kDispatchSlots);
            to->wTypeFlags = static_cast<WORD>(m_type.flags & ~TYPEFLAG_FOLEAUTOMATION);
            break;
        default:
            to->cFuncs = static_cast<WORD>(m_type.count);
            to->cImplTypes = m_type.base == kNone ? 0 : 1;
            to->cbSizeVft = TableBytes(m_type.slots);
            break;
    }
    return S_OK;
}

void TypeInfo::ReleaseTypeAttr(TYPEATTR* attributes) noexcept { delete attributes; }

HRESULT TypeInfo::GetFuncDesc(UINT index, FUNCDESC** description) noexcept {
    if (!description) return E_INVALIDARG;
    *description = nullptr;
    if (index >= kMostSlots) return TYPE_E_ELEMENTNOTFOUND;
    // The table's view begins behind what is inherited.
    const UINT slot = IsDispatchView() ? index : index + m_type.slots - m_type.count;
    const MethodRow* method = MemberAtSlot(*m_tables, m_type, slot);
    if (!method) return TYPE_E_ELEMENTNOTFOUND;
    *description = new (std::nothrow) FuncDesc(*m_tables, *method, IsDispatchView());
    return *description ? S_OK : E_OUTOFMEMORY;
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
    const MethodRow* method = MemberWithId(*m_tables, m_type, member);
    if (!method) return TYPE_E_ELEMENTNOTFOUND;
    for (UINT i = 0; i < capacity && i <= method->parameterCount; ++i) {
        const TextPlace name = i == 0 ? method->name : m_tables->ParametersOf(*method)[i - 1].name;
        const HRESULT hr = GiveText(m_tables->Text(name), &names[i]);
        if (FAILED(hr)) return hr;
        *count = i + 1;
    }
    return S_OK;
}

HRESULT TypeInfo::GetRefTypeOfImplType(UINT index, HREFTYPE* type) noexcept {
    if (!type) return E_INVALIDARG;
    *type = 0;
    if (m_type.isClass != 0) {
        if (index >= m_type.count) return TYPE_E_ELEMENTNOTFOUND;
        *type = m_tables->implemented[m_type.first + index].type;
        return S_OK;
    }
    if (index == kPartnerIndex && m_type.IsDual()) {
        *type = kPartnerReference;
        return S_OK;
    }
    if (index != 0 || m_type.base == kNone) return TYPE_E_ELEMENTNOTFOUND;
    // Whatever the table derives from, late-bound callers come in through IDispatch.
    *type = IsDispatchView() ? kDispatchReference : m_type.base;
    return S_OK;
}

HRESULT TypeInfo::GetImplTypeFlags(UINT index, INT* flags) noexcept {
    if (!flags) return E_INVALIDARG;
    *flags = 0;
    // Deriving from something carries no flags.
    if (m_type.isClass == 0) return index == 0 && m_type.base != kNone ? S_OK : TYPE_E_ELEMENTNOTFOUND;
    if (index >= m_type.count) return TYPE_E_ELEMENTNOTFOUND;
    *flags = m_tables->implemented[m_type.first + index].flags;
    return S_OK;
}

HRESULT TypeInfo::GetRefTypeInfo(HREFTYPE type, ITypeInfo** info) noexcept {
    if (type != kPartnerReference || !m_type.IsDual()) return Make(m_tables, type, TypeView::kDefault, info);
    return Make(m_tables, Place(), m_view == TypeView::kDefault ? TypeView::kTable : TypeView::kDefault, info);
}

HRESULT TypeInfo::GetIDsOfNames(LPOLESTR* names, UINT count, MEMBERID* ids) noexcept {
    if (!names || !ids || count == 0) return E_INVALIDARG;
    for (UINT i = 0; i < count; ++i) {
        if (!names[i]) return E_INVALIDARG;
        ids[i] = MEMBERID_NIL;
    }
    const MethodRow* method = MemberNamed(*m_tables, m_type, names[0]);
    if (!method) return DISP_E_UNKNOWNNAME;
    ids[0] = method->id;
    HRESULT hr = S_OK;
    for (UINT i = 1; i < count; ++i) {
        ids[i] = ParameterNamed(*m_tables, *method, names[i]);
        if (ids[i] == MEMBERID_NIL) hr = DISP_E_UNKNOWNNAME;
    }
    return hr;
}

HRESULT TypeInfo::Invoke(void* instance, MEMBERID member, WORD flags, DISPPARAMS* params, VARIANT* result,
                         EXCEPINFO* exception, UINT* argumentError) noexcept {
    if (!instance || !params) return E_INVALIDARG;
    const MethodRow* method = MemberToInvoke(*m_tables, m_type, member, flags);
    if (!method) return DISP_E_MEMBERNOTFOUND;
    return InvokeMethod(*m_tables, *method, instance, *params, result, exception, argumentError);
}

HRESULT TypeInfo::GetDocumentation(MEMBERID member, BSTR* name, BSTR* text, DWORD* context, BSTR* helpFile) noexcept {
    const MethodRow* method = MemberWithId(*m_tables, m_type, member);
    if (!method && member != MEMBERID_NIL) return TYPE_E_ELEMENTNOTFOUND;
    const TextPlace namePlace = method ? method->name : m_type.name;
    const TextPlace helpPlace = method ? method->help : m_type.help;
    return GiveDocumentation(m_tables->Text(namePlace), m_tables->Text(helpPlace), name, text, context, helpFile);
}

HRESULT TypeInfo::GetContainingTypeLib(ITypeLib** library, UINT* index) noexcept {
    if (!library && !index) return E_INVALIDARG;
    if (index) *index = Place() - m_tables->libraries[Owner()].firstType;
    if (!library) return S_OK;
    *library = new (std::nothrow) TypeLib(m_tables, Owner());
    return *library ? S_OK : E_OUTOFMEMORY;
}

HRESULT TypeInfo::CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept {
    if (!object) return E_INVALIDARG;
    *object = nullptr;
    if (m_type.isClass == 0) return TYPE_E_BADMODULEKIND;
    return CoCreateInstance(m_type.guid, outer, CLSCTX_INPROC_SERVER, iid, object);
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
