// Variants: making, clearing and copying.
#include <cstring>

#include "oleauto.h"
#include "platform/typelib/VariantTypes.h"

using wnplatform::CanHold;

void VariantInit(VARIANT* variant) {
    if (variant) *variant = VARIANT{};
}

HRESULT VariantClear(VARIANT* variant) {
    if (!variant) return E_INVALIDARG;
    if (!CanHold(variant->vt)) return DISP_E_BADVARTYPE;
    // Emptied first: a last reference that goes may look at the variant it was in.
    const VARIANT old = *variant;
    *variant = VARIANT{};
    if (old.vt == VT_BSTR) SysFreeString(old.bstrVal);
    if ((old.vt == VT_UNKNOWN || old.vt == VT_DISPATCH) && old.punkVal) old.punkVal->Release();
    return S_OK;
}

HRESULT VariantCopy(VARIANT* destination, const VARIANT* source) {
    if (!destination || !source) return E_INVALIDARG;
    if (destination == source) return S_OK;
    if (!CanHold(source->vt)) return DISP_E_BADVARTYPE;
    VARIANT copy = *source;
    if (copy.vt == VT_BSTR && copy.bstrVal) {
        copy.bstrVal = SysAllocStringByteLen(nullptr, SysStringByteLen(source->bstrVal));
        if (!copy.bstrVal) return E_OUTOFMEMORY;
        std::memcpy(copy.bstrVal, source->bstrVal, SysStringByteLen(source->bstrVal));
    }
    if ((copy.vt == VT_UNKNOWN || copy.vt == VT_DISPATCH) && copy.punkVal) copy.punkVal->AddRef();
    const HRESULT hr = VariantClear(destination);
    if (FAILED(hr)) {
        VariantClear(&copy);
        return hr;
    }
    *destination = copy;
    return S_OK;
}
