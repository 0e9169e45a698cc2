// A type library as callers see it.
#pragma once

#include <memory>

#include "platform/typelib/Counted.h"
#include "platform/typelib/Tables.h"

namespace wnplatform::typelib {

class TypeLib final : public Counted<ITypeLib, IID_ITypeLib> {
public:
    // Of one of the libraries in the tables.
    TypeLib(std::shared_ptr<const Tables> tables, std::size_t library) noexcept
        : m_tables(std::move(tables)), m_library(library) {}

    UINT STDMETHODCALLTYPE GetTypeInfoCount() noexcept override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, ITypeInfo** info) noexcept override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoType(UINT index, TYPEKIND* kind) noexcept override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoOfGuid(REFGUID guid, ITypeInfo** info) noexcept override;
    HRESULT STDMETHODCALLTYPE GetLibAttr(TLIBATTR** attributes) noexcept override;
    HRESULT STDMETHODCALLTYPE GetTypeComp(ITypeComp** compiler) noexcept override;
    HRESULT STDMETHODCALLTYPE GetDocumentation(INT index, BSTR* name, BSTR* text, DWORD* context,
                                               BSTR* helpFile) noexcept override;
    HRESULT STDMETHODCALLTYPE IsName(LPOLESTR name, ULONG hash, BOOL* found) noexcept override;
    HRESULT STDMETHODCALLTYPE FindName(LPOLESTR name, ULONG hash, ITypeInfo** infos, MEMBERID* ids,
                                       USHORT* count) noexcept override;
    void STDMETHODCALLTYPE ReleaseTLibAttr(TLIBATTR* attributes) noexcept override;

private:
    ~TypeLib() = default;
    void Destroy() noexcept override { delete this; }

    const LibraryRow& Row() const noexcept { return m_tables->libraries[m_library]; }
    // The place of its type among those of the tables; kNone for one that it does not have.
    std::uint32_t TypeAt(std::size_t index) noexcept;

    std::shared_ptr<const Tables> m_tables;
    std::size_t m_library;
};

}  // namespace wnplatform::typelib
