// The slots of a port-map record that nothing stands behind.
#pragma once

#include "wncom/PortMap.h"

namespace wncom::components {

// Base implements the rest of IPortMapContent, or leaves it to a class derived from this one.
template <class Base>
class ReservedRecordSlots : public Base {
public:
    HRESULT STDMETHODCALLTYPE Reserved13() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved15() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved16() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved17() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved18() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved19() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved20() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved21() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved22() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved23() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved24() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved25() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved26() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved27() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved28() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved29() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved30() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved31() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved32() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved33() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved34() override { return E_NOTIMPL; }
};

}  // namespace wncom::components
