// IDispatch of a dual interface, served from the registered type library of the module.
#pragma once

#include <windows.h>

#include <ole2.h>

#include "common/Guard.h"
#include "common/server/Server.h"
#include "wncom/CPComPtr.h"

namespace wncom::server {

// A base for implementation classes: Interface with its four IDispatch methods filled in. The type information is
// looked up at the first call and kept for the object's life.
template <class Interface>
class Dispatch : public Interface {
public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (!count) return E_POINTER;
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        if (!info) return E_POINTER;
        *info = nullptr;
        if (index != 0) return DISP_E_BADINDEX;
        const HRESULT status = FindTypeInfo();
        if (SUCCEEDED(status)) m_typeInfo.copy_to(info);
        return status;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID,
                                            DISPID* ids) override {
        if (!names || !ids) return E_POINTER;
        if (reserved != GUID_NULL) return DISP_E_UNKNOWNINTERFACE;
        const HRESULT status = FindTypeInfo();
        return FAILED(status) ? status : m_typeInfo->GetIDsOfNames(names, count, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID, WORD flags, DISPPARAMS* params,
                                     VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override {
        if (!params) return E_POINTER;
        if (reserved != GUID_NULL) return DISP_E_UNKNOWNINTERFACE;
        const HRESULT status = FindTypeInfo();
        if (FAILED(status)) return status;
        Interface* self = this;
        return m_typeInfo->Invoke(self, member, flags, params, result, exception, argumentError);
    }

private:
    HRESULT FindTypeInfo() noexcept {
        if (m_typeInfo) return S_OK;
        return Guarded([this]() -> HRESULT {
            CPComPtr<ITypeLib> library;
            const HRESULT status = LoadRegTypeLib(kServer.libraryId, kServer.libraryMajor, kServer.libraryMinor,
                                                  kLibraryLocale, library.put());
            return FAILED(status) ? status : library->GetTypeInfoOfGuid(Interface::kIid, m_typeInfo.put());
        });
    }

    CPComPtr<ITypeInfo> m_typeInfo;
};

}  // namespace wncom::server
