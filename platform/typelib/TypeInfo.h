// One type of a library as callers see it.
#pragma once

#include <memory>

#include "platform/typelib/Counted.h"
#include "platform/typelib/Description.h"

namespace wnplatform::typelib {

// A dual interface is seen as what it offers to late-bound callers unless its table of functions is asked for.
enum class TypeView { kDefault, kTable };

TYPEKIND KindOf(const Library::TypeEntry& entry, TypeView view) noexcept;

// How a type refers to an interface.
HREFTYPE ReferenceTo(const Interface& interface_) noexcept;

class TypeInfo final : public Counted<ITypeInfo, IID_ITypeInfo> {
public:
    // TYPE_E_ELEMENTNOTFOUND for an index that the library does not have.
    static HRESULT Make(const std::shared_ptr<const Library>& library, UINT index, TypeView view,
                        ITypeInfo** info) noexcept;

    HRESULT STDMETHODCALLTYPE GetTypeAttr(TYPEATTR** attributes) noexcept override;
    HRESULT STDMETHODCALLTYPE GetTypeComp(ITypeComp** compiler) noexcept override;
    HRESULT STDMETHODCALLTYPE GetFuncDesc(UINT index, FUNCDESC** description) noexcept override;
    HRESULT STDMETHODCALLTYPE GetVarDesc(UINT index, VARDESC** description) noexcept override;
    HRESULT STDMETHODCALLTYPE GetNames(MEMBERID member, BSTR* names, UINT capacity, UINT* count) noexcept override;
    HRESULT STDMETHODCALLTYPE GetRefTypeOfImplType(UINT index, HREFTYPE* type) noexcept override;
    HRESULT STDMETHODCALLTYPE GetImplTypeFlags(UINT index, INT* flags) noexcept override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(LPOLESTR* names, UINT count, MEMBERID* ids) noexcept override;
    HRESULT STDMETHODCALLTYPE Invoke(void* instance, MEMBERID member, WORD flags, DISPPARAMS* params, VARIANT* result,
                                     EXCEPINFO* exception, UINT* argumentError) noexcept override;
    HRESULT STDMETHODCALLTYPE GetDocumentation(MEMBERID member, BSTR* name, BSTR* text, DWORD* context,
                                               BSTR* helpFile) noexcept override;
    HRESULT STDMETHODCALLTYPE GetDllEntry(MEMBERID member, INVOKEKIND kind, BSTR* dll, BSTR* name,
                                          WORD* ordinal) noexcept override;
    HRESULT STDMETHODCALLTYPE GetRefTypeInfo(HREFTYPE type, ITypeInfo** info) noexcept override;
    HRESULT STDMETHODCALLTYPE AddressOfMember(MEMBERID member, INVOKEKIND kind, void** address) noexcept override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override;
    HRESULT STDMETHODCALLTYPE GetMops(MEMBERID member, BSTR* mops) noexcept override;
    HRESULT STDMETHODCALLTYPE GetContainingTypeLib(ITypeLib** library, UINT* index) noexcept override;
    void STDMETHODCALLTYPE ReleaseTypeAttr(TYPEATTR* attributes) noexcept override;
    void STDMETHODCALLTYPE ReleaseFuncDesc(FUNCDESC* description) noexcept override;
    void STDMETHODCALLTYPE ReleaseVarDesc(VARDESC* description) noexcept override;

private:
    TypeInfo(std::shared_ptr<const Library> library, UINT index, TypeView view) noexcept
        : m_library(std::move(library)), m_entry(m_library->types[index]), m_view(view) {}
    ~TypeInfo() = default;
    void Destroy() noexcept override { delete this; }

    const Interface* Own() const noexcept { return m_entry.interface_.get(); }
    bool IsDispatchView() const noexcept { return KindOf(m_entry, m_view) == TKIND_DISPATCH; }

    std::shared_ptr<const Library> m_library;
    const Library::TypeEntry& m_entry;
    TypeView m_view;
};

}  // namespace wnplatform::typelib
