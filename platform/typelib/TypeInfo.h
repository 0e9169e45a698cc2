// One type of a library as callers see it.
#pragma once

#include <memory>

#include "platform/typelib/Counted.h"
#include "platform/typelib/Tables.h"

namespace wnplatform::typelib {

// A dual interface is seen as what it offers to late-bound callers unless its table of functions is asked for.
enum class TypeView { kDefault, kTable };

TYPEKIND KindOf(const TypeRow& type, TypeView view) noexcept;

class TypeInfo final : public Counted<ITypeInfo, IID_ITypeInfo> {
public:
    // The place of the type among those of the tables; TYPE_E_ELEMENTNOTFOUND for one that they do not have.
    static HRESULT Make(const std::shared_ptr<const Tables>& tables, std::uint32_t type, TypeView view,
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
    TypeInfo(std::shared_ptr<const Tables> tables, std::uint32_t type, TypeView view) noexcept
        : m_tables(std::move(tables)), m_type(m_tables->types[type]), m_view(view) {}
    ~TypeInfo() = default;
    void Destroy() noexcept override { delete this; }

    bool IsDispatchView() const noexcept { return KindOf(m_type, m_view) == TKIND_DISPATCH; }
    std::uint32_t Place() const noexcept { return static_cast<std::uint32_t>(&m_type - m_tables->types.data()); }
    // The library among those of the tables.
    std::size_t Owner() const noexcept;

    std::shared_ptr<const Tables> m_tables;
    const TypeRow& m_type;
    TypeView m_view;
};

}  // namespace wnplatform::typelib
