#include "platform/typelib/TypeLib.h"

#include <algorithm>
#include <new>

#include "platform/typelib/Texts.h"
#include "platform/typelib/TypeInfo.h"

const IID IID_ITypeLib{0x00020402, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

namespace wnplatform::typelib {
namespace {

// The name as the library spells it, when the type, a member or a parameter has it; empty otherwise. The member is
// that which bears the name, MEMBERID_NIL for the type itself and for a parameter.
std::string_view Spelling(const Tables& tables, const TypeRow& type, const OLECHAR* name, bool parametersToo,
                          MEMBERID& member) noexcept {
    const auto same = [&](TextPlace place) { return SameName(name, tables.Text(place)); };
    member = MEMBERID_NIL;
    if (same(type.name)) return tables.Text(type.name);
    for (std::uint32_t i = 0; type.isClass == 0 && i < type.count; ++i) {
        const MethodRow& method = tables.methods[type.first + i];
        if (same(method.name)) {
            member = method.id;
            return tables.Text(method.name);
        }
        for (std::uint32_t p = 0; parametersToo && p < method.parameterCount; ++p) {
            const TextPlace parameter = tables.ParametersOf(method)[p].name;
            if (same(parameter)) return tables.Text(parameter);
        }
    }
    return {};
}

}  // namespace

UINT TypeLib::GetTypeInfoCount() noexcept {
    const bool isLast = m_library + 1 == m_tables->libraries.size();
    const std::size_t end = isLast ? m_tables->types.size() : m_tables->libraries[m_library + 1].firstType;
    return static_cast<UINT>(end - Row().firstType);
}

std::uint32_t TypeLib::TypeAt(std::size_t index) noexcept {
    return index < GetTypeInfoCount() ? Row().firstType + static_cast<std::uint32_t>(index) : kNone;
}

HRESULT TypeLib::GetTypeInfo(UINT index, ITypeInfo** info) noexcept {
    return TypeInfo::Make(m_tables, TypeAt(index), TypeView::kDefault, info);
}

HRESULT TypeLib::GetTypeInfoType(UINT index, TYPEKIND* kind) noexcept {
    if (!kind) return E_INVALIDARG;
    const std::uint32_t type = TypeAt(index);
    if (type == kNone) return TYPE_E_ELEMENTNOTFOUND;
    *kind = KindOf(m_tables->types[type], TypeView::kDefault);
    return S_OK;
}

HRESULT TypeLib::GetTypeInfoOfGuid(REFGUID guid, ITypeInfo** info) noexcept {
    if (!info) return E_INVALIDARG;
    *info = nullptr;
    for (UINT i = 0; i < GetTypeInfoCount(); ++i) {
        if (m_tables->types[TypeAt(i)].guid == guid) return GetTypeInfo(i, info);
    }
    return TYPE_E_ELEMENTNOTFOUND;
}

HRESULT TypeLib::GetLibAttr(TLIBATTR** attributes) noexcept {
    if (!attributes) return E_INVALIDARG;
    *attributes = new (std::nothrow) TLIBATTR{};
    if (!*attributes) return E_OUTOFMEMORY;
    (*attributes)->guid = Row().guid;
    (*attributes)->lcid = Row().lcid;
    (*attributes)->syskind = SYS_WIN32;
    (*attributes)->wMajorVerNum = Row().majorVersion;
    (*attributes)->wMinorVerNum = Row().minorVersion;
    (*attributes)->wLibFlags = LIBFLAG_FHASDISKIMAGE;
    return S_OK;
}

void TypeLib::ReleaseTLibAttr(TLIBATTR* attributes) noexcept { delete attributes; }

// Nobody of ours compiles against a library at run time.
HRESULT TypeLib::GetTypeComp(ITypeComp** compiler) noexcept {
    if (!compiler) return E_INVALIDARG;
    *compiler = nullptr;
    return E_NOTIMPL;
}

HRESULT TypeLib::GetDocumentation(INT index, BSTR* name, BSTR* text, DWORD* context, BSTR* helpFile) noexcept {
    const std::uint32_t type = index < 0 ? kNone : TypeAt(static_cast<std::size_t>(index));
    if (index != -1 && type == kNone) return TYPE_E_ELEMENTNOTFOUND;
    const TextPlace namePlace = type == kNone ? Row().name : m_tables->types[type].name;
    const TextPlace helpPlace = type == kNone ? Row().help : m_tables->types[type].help;
    return GiveDocumentation(m_tables->Text(namePlace), m_tables->Text(helpPlace), name, text, context, helpFile);
}

HRESULT TypeLib::IsName(LPOLESTR name, ULONG, BOOL* found) noexcept {
    if (!name || !found) return E_INVALIDARG;
    *found = FALSE;
    for (UINT i = 0; i < GetTypeInfoCount() && !*found; ++i) {
        MEMBERID member = MEMBERID_NIL;
        const std::string_view spelling = Spelling(*m_tables, m_tables->types[TypeAt(i)], name, true, member);
        // The caller's text takes the library's case; its length is the same.
        std::copy(spelling.begin(), spelling.end(), name);
        *found = spelling.empty() ? FALSE : TRUE;
    }
    return S_OK;
}

HRESULT TypeLib::FindName(LPOLESTR name, ULONG, ITypeInfo** infos, MEMBERID* ids, USHORT* count) noexcept {
    if (!name || !infos || !ids || !count) return E_INVALIDARG;
    const USHORT capacity = *count;
    *count = 0;
    for (UINT i = 0; i < GetTypeInfoCount() && *count < capacity; ++i) {
        MEMBERID member = MEMBERID_NIL;
        if (Spelling(*m_tables, m_tables->types[TypeAt(i)], name, false, member).empty()) continue;
        const HRESULT hr = GetTypeInfo(i, &infos[*count]);
        if (FAILED(hr)) return hr;
        ids[(*count)++] = member;
    }
    return S_OK;
}

}  // namespace wnplatform::typelib
