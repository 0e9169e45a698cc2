// Variants of the types that interfaces here have: numbers of 32 bits, texts and objects.
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string>

#include "oleauto.h"
#include "platform/core/Guarded.h"
#include "winnls.h"

namespace {

bool IsObject(VARTYPE type) noexcept { return type == VT_UNKNOWN || type == VT_DISPATCH; }
bool HasValue(VARTYPE type) noexcept { return type == VT_I4 || type == VT_BSTR || IsObject(type); }

bool CanHold(VARTYPE type) noexcept {
    const auto value = static_cast<VARTYPE>(type & ~VT_BYREF);
    if (value != type) return HasValue(value) || value == VT_VARIANT;
    return HasValue(value) || value == VT_EMPTY || value == VT_NULL || value == VT_ERROR;
}

// The value that a reference leads to, still the caller's.
HRESULT Dereference(const VARIANT& source, VARIANT& value) noexcept {
    value = source;
    if ((source.vt & VT_BYREF) == 0) return S_OK;
    if (!source.byref) return DISP_E_TYPEMISMATCH;
    if (source.vt == (VT_VARIANT | VT_BYREF)) {
        // One step leads to a value, or to a reference to one.
        const VARIANT inner = *source.pvarVal;
        if (!CanHold(inner.vt)) return DISP_E_BADVARTYPE;
        return inner.vt == source.vt ? DISP_E_TYPEMISMATCH : Dereference(inner, value);
    }
    value = VARIANT{};
    value.vt = static_cast<VARTYPE>(source.vt & ~VT_BYREF);
    if (value.vt == VT_I4) {
        value.lVal = *source.plVal;
    } else {
        value.byref = *static_cast<void**>(source.byref);
    }
    return S_OK;
}

HRESULT ToObject(const VARIANT& value, VARIANT& to) noexcept {
    if (!IsObject(value.vt)) return DISP_E_TYPEMISMATCH;
    to.punkVal = value.punkVal;
    if (!value.punkVal) return S_OK;
    if (value.vt == to.vt) {
        value.punkVal->AddRef();
        return S_OK;
    }
    void* object = nullptr;
    const HRESULT hr = value.punkVal->QueryInterface(to.vt == VT_DISPATCH ? IID_IDispatch : IID_IUnknown, &object);
    if (FAILED(hr)) return DISP_E_TYPEMISMATCH;
    to.punkVal = static_cast<IUnknown*>(object);
    return S_OK;
}

// A number's text ends with its first zero; blanks may surround it and a sign may lead it.
HRESULT ToNumber(const VARIANT& value, VARIANT& to) {
    if (value.vt == VT_EMPTY) return S_OK;
    if (value.vt != VT_BSTR || !value.bstrVal) return DISP_E_TYPEMISMATCH;
    std::string text;
    for (const OLECHAR* at = value.bstrVal; *at != 0; ++at) text += *at < 0x80 ? static_cast<char>(*at) : '?';
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    text.erase(0, text.find_first_not_of(" \t\r\n"));
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.erase(0, 1);
    const char* last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, to.lVal);
    if (end != last || error == std::errc::invalid_argument) return DISP_E_TYPEMISMATCH;
    return error == std::errc() ? S_OK : DISP_E_OVERFLOW;
}

HRESULT ToText(const VARIANT& value, VARIANT& to) {
    if (value.vt != VT_I4 && value.vt != VT_EMPTY) return DISP_E_TYPEMISMATCH;
    const std::string text = value.vt == VT_I4 ? std::to_string(value.lVal) : std::string();
    to.bstrVal = SysAllocString(std::basic_string<OLECHAR>(text.begin(), text.end()).c_str());
    return to.bstrVal ? S_OK : E_OUTOFMEMORY;
}

HRESULT CopyText(const VARIANT& value, VARIANT& to) noexcept {
    if (!value.bstrVal) return S_OK;
    const UINT bytes = SysStringByteLen(value.bstrVal);
    to.bstrVal = SysAllocStringByteLen(nullptr, bytes);
    if (!to.bstrVal) return E_OUTOFMEMORY;
    std::memcpy(to.bstrVal, value.bstrVal, bytes);
    return S_OK;
}

HRESULT Convert(const VARIANT& value, VARIANT& to) {
    switch (to.vt) {
        case VT_I4:
            if (value.vt == VT_I4) to.lVal = value.lVal;
            return value.vt == VT_I4 ? S_OK : ToNumber(value, to);
        case VT_BSTR:
            return value.vt == VT_BSTR ? CopyText(value, to) : ToText(value, to);
        default:
            return ToObject(value, to);
    }
}

}  // namespace

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
    if (IsObject(old.vt) && old.punkVal) old.punkVal->Release();
    return S_OK;
}

HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT, VARTYPE type) {
    if (!destination || !source) return E_INVALIDARG;
    if (!CanHold(source->vt) || !CanHold(type) || !CanHold(destination->vt)) return DISP_E_BADVARTYPE;
    if (!HasValue(type)) return DISP_E_TYPEMISMATCH;
    VARIANT value{};
    VARIANT changed{};
    changed.vt = type;
    HRESULT hr = Dereference(*source, value);
    if (SUCCEEDED(hr)) hr = wnplatform::Guarded(E_OUTOFMEMORY, [&] { return Convert(value, changed); });
    if (FAILED(hr)) return hr;
    // The destination may be the source, so it goes only now.
    VariantClear(destination);
    *destination = changed;
    return S_OK;
}
