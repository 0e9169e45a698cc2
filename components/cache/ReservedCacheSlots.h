// The slots of the cache manager that nothing stands behind.
#pragma once

#include "wncom/XMLCacheMgr.h"

namespace wncom::components {

// Base implements the rest of IXMLCacheMgr, or leaves it to a class derived from this one.
template <class Base>
class ReservedCacheSlots : public Base {
public:
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
};

}  // namespace wncom::components
