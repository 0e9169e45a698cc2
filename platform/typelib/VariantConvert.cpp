// Variants: changing their type.
#include <cstring>
#include <optional>

#include "oleauto.h"
#include "platform/core/Guarded.h"
#include "platform/typelib/VariantTypes.h"
#include "winnls.h"

namespace wnplatform {
namespace {

template <class T>
T Referenced(const void* place) noexcept {
    T value;
    std::memcpy(&value, place, sizeof(value));
    return value;
}

// The value that a reference leads to, still the caller's.
HRESULT Dereference(const VARIANT& source, VARIANT& value) noexcept {
    value = source;
    if ((source.vt & VT_BYREF) == 0) return S_OK;
    if (!source.byref) return DISP_E_TYPEMISMATCH;
    value = VARIANT{};
    value.vt = static_cast<VARTYPE>(source.vt & ~VT_BYREF);
    switch (value.vt) {
        case VT_VARIANT:
            // One step leads to a value, or to a reference to one.
            if (!CanHold(source.pvarVal->vt)) return DISP_E_BADVARTYPE;
            if (source.pvarVal->vt == (VT_VARIANT | VT_BYREF)) return DISP_E_TYPEMISMATCH;
            return Dereference(VARIANT(*source.pvarVal), value);
        case VT_UI1:
            value.bVal = Referenced<BYTE>(source.byref);
            break;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            value.iVal = Referenced<SHORT>(source.byref);
            break;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_ERROR:
            value.lVal = Referenced<LONG>(source.byref);
            break;
        case VT_R8:
            value.dblVal = Referenced<double>(source.byref);
            break;
        default:
            value.byref = Referenced<void*>(source.byref);
            break;
    }
    return S_OK;
}

HRESULT ObjectTo(const VARIANT& value, VARTYPE type, VARIANT& to) noexcept {
    if (value.vt != VT_UNKNOWN && value.vt != VT_DISPATCH) return DISP_E_TYPEMISMATCH;
    to.vt = type;
    to.punkVal = nullptr;
    if (!value.punkVal) return S_OK;
    void* object = nullptr;
    const HRESULT hr = value.punkVal->QueryInterface(type == VT_DISPATCH ? IID_IDispatch : IID_IUnknown, &object);
    if (FAILED(hr)) return DISP_E_TYPEMISMATCH;
    to.punkVal = static_cast<IUnknown*>(object);
    return S_OK;
}

HRESULT TextTo(const VARIANT& value, VARTYPE type, VARIANT& to) {
    // Numbers are read from terminated texts: what follows a zero does not count.
    const auto units = static_cast<UINT>(value.bstrVal ? wcslen(value.bstrVal) : 0);
    if (type == VT_BOOL) {
        const std::optional<bool> truth = ParseTruth(value.bstrVal, units);
        if (truth) return StoreNumber(*truth ? 1 : 0, type, to);
    } else if (const std::optional<double> number = ParseNumber(value.bstrVal, units)) {
        // Too large a number to be one at all.
        if (*number - *number != 0) return DISP_E_OVERFLOW;
        return StoreNumber(*number, type, to);
    }
    return DISP_E_TYPEMISMATCH;
}

HRESULT ToText(const VARIANT& value, VARIANT& to) {
    const std::optional<double> number = NumberOf(value);
    if (!number) return DISP_E_TYPEMISMATCH;
    to.vt = VT_BSTR;
    to.bstrVal = value.vt == VT_EMPTY ? SysAllocStringLen(nullptr, 0) : NumberText(*number);
    return to.bstrVal ? S_OK : E_OUTOFMEMORY;
}

// Makes a new value of another type; the destination is empty before and holds it only on success.
HRESULT Convert(const VARIANT& value, VARTYPE type, VARIANT& to) {
    if (value.vt == type) return VariantCopy(&to, &value);
    switch (type) {
        case VT_UNKNOWN:
        case VT_DISPATCH:
            return ObjectTo(value, type, to);
        case VT_BSTR:
            return ToText(value, to);
        default:
            break;
    }
    if (value.vt == VT_BSTR) return TextTo(value, type, to);
    const std::optional<double> number = NumberOf(value);
    return number ? StoreNumber(*number, type, to) : DISP_E_TYPEMISMATCH;
}

}  // namespace
}  // namespace wnplatform

HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT, VARTYPE type) {
    using namespace wnplatform;
    if (!destination || !source) return E_INVALIDARG;
    if (!CanHold(source->vt) || !CanHold(type)) return DISP_E_BADVARTYPE;
    if ((type & VT_BYREF) != 0) return DISP_E_TYPEMISMATCH;
    VARIANT value{};
    VARIANT changed{};
    HRESULT hr = Dereference(*source, value);
    if (SUCCEEDED(hr)) hr = Guarded(E_OUTOFMEMORY, [&] { return Convert(value, type, changed); });
    if (FAILED(hr)) return hr;
    // The destination may be the source, so it goes only now.
    hr = VariantClear(destination);
    if (FAILED(hr)) {
        VariantClear(&changed);
        return hr;
    }
    *destination = changed;
    return S_OK;
}
