// A type library as callers see it.
#pragma once

#include <memory>

#include "platform/typelib/Counted.h"
#include "platform/typelib/Description.h"

namespace wnplatform::typelib {

class TypeLib final : public Counted<ITypeLib, IID_ITypeLib> {
public:
    explicit TypeLib(std::shared_ptr<const Library> library) noexcept : m_library(std::move(library)) {}

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

    std::shared_ptr<const Library> m_library;
};

}  // namespace wnplatform::typelib
