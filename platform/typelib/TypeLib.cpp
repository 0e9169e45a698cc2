#include "platform/typelib/TypeLib.h"

#include <algorithm>
#include <new>

#include "platform/typelib/Texts.h"
#include "platform/typelib/TypeInfo.h"

const IID IID_ITypeLib{0x00020402, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

namespace wnplatform::typelib {
namespace {

// The name as the library spells it, when a type, a member or a parameter has it; null otherwise.
const std::string* Spelling(const Library& library, const OLECHAR* name) {
    for (const Library::TypeEntry& entry : library.types) {
        if (SameName(name, entry.Common().name)) return &entry.Common().name;
        if (!entry.interface_) continue;
        for (const Method& method : entry.interface_->methods) {
            if (SameName(name, method.name)) return &method.name;
            for (const Parameter& parameter : method.parameters) {
                if (SameName(name, parameter.name)) return &parameter.name;
            }
        }
    }
    return nullptr;
}

// The member of a type that bears the name; MEMBERID_NIL when it is the type itself that does.
bool FindIn(const Library::TypeEntry& entry, const OLECHAR* name, MEMBERID& member) {
    member = MEMBERID_NIL;
    if (SameName(name, entry.Common().name)) return true;
    if (!entry.interface_) return false;
    for (const Method& method : entry.interface_->methods) {
        if (!SameName(name, method.name)) continue;
        member = method.id;
        return true;
    }
    return false;
}

}  // namespace

UINT TypeLib::GetTypeInfoCount() noexcept { return static_cast<UINT>(m_library->types.size()); }

HRESULT TypeLib::GetTypeInfo(UINT index, ITypeInfo** info) noexcept {
    return TypeInfo::Make(m_library, index, TypeView::kDefault, info);
}

HRESULT TypeLib::GetTypeInfoType(UINT index, TYPEKIND* kind) noexcept {
    if (!kind) return E_INVALIDARG;
    if (index >= m_library->types.size()) return TYPE_E_ELEMENTNOTFOUND;
    *kind = KindOf(m_library->types[index], TypeView::kDefault);
    return S_OK;
}

HRESULT TypeLib::GetTypeInfoOfGuid(REFGUID guid, ITypeInfo** info) noexcept {
    if (!info) return E_INVALIDARG;
    *info = nullptr;
    for (const Library::TypeEntry& entry : m_library->types) {
        if (entry.Common().guid == guid) return GetTypeInfo(entry.Common().index, info);
    }
    return TYPE_E_ELEMENTNOTFOUND;
}

HRESULT TypeLib::GetLibAttr(TLIBATTR** attributes) noexcept {
    if (!attributes) return E_INVALIDARG;
    *attributes = new (std::nothrow) TLIBATTR{};
    if (!*attributes) return E_OUTOFMEMORY;
    (*attributes)->guid = m_library->guid;
    (*attributes)->lcid = m_library->lcid;
    (*attributes)->syskind = SYS_WIN32;
    (*attributes)->wMajorVerNum = m_library->majorVersion;
    (*attributes)->wMinorVerNum = m_library->minorVersion;
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
    if (index == -1) return GiveDocumentation(m_library->name, m_library->help, name, text, context, helpFile);
    if (index < 0 || static_cast<std::size_t>(index) >= m_library->types.size()) return TYPE_E_ELEMENTNOTFOUND;
    const Entry& entry = m_library->types[static_cast<std::size_t>(index)].Common();
    return GiveDocumentation(entry.name, entry.help, name, text, context, helpFile);
}

HRESULT TypeLib::IsName(LPOLESTR name, ULONG, BOOL* found) noexcept {
    if (!name || !found) return E_INVALIDARG;
    const std::string* spelling = Spelling(*m_library, name);
    *found = spelling ? TRUE : FALSE;
    // The caller's text takes the library's case; its length is the same.
    if (spelling) std::copy(spelling->begin(), spelling->end(), name);
    return S_OK;
}

HRESULT TypeLib::FindName(LPOLESTR name, ULONG, ITypeInfo** infos, MEMBERID* ids, USHORT* count) noexcept {
    if (!name || !infos || !ids || !count) return E_INVALIDARG;
    const USHORT capacity = *count;
    *count = 0;
    for (const Library::TypeEntry& entry : m_library->types) {
        MEMBERID member = MEMBERID_NIL;
        if (*count >= capacity) break;
        if (!FindIn(entry, name, member)) continue;
        const HRESULT hr = GetTypeInfo(entry.Common().index, &infos[*count]);
        if (FAILED(hr)) return hr;
        ids[(*count)++] = member;
    }
    return S_OK;
}

}  // namespace wnplatform::typelib
