#include "platform/typelib/Argument.h"

namespace wnplatform::typelib {
namespace {

std::uintptr_t AsWord(const void* pointer) noexcept { return reinterpret_cast<std::uintptr_t>(pointer); }

// The variant type that holds what a parameter takes or points to; VT_EMPTY for one that no variant can be passed to.
VARTYPE HeldType(const Tables& tables, const ParameterRow& parameter) noexcept {
    if (parameter.Depth() > 1) return VT_EMPTY;
    switch (parameter.vt) {
        case VT_USERDEFINED:
            return tables.types[parameter.target].IsDispatch() ? VT_DISPATCH : VT_UNKNOWN;
        case VT_BSTR:
        case VT_I4:
        case VT_UNKNOWN:
        case VT_DISPATCH:
            return parameter.vt;
        default:
            return VT_EMPTY;
    }
}

}  // namespace

HRESULT Argument::Prepare(const Tables& tables, const ParameterRow& parameter, const VARIANT& given) noexcept {
    const VARTYPE type = HeldType(tables, parameter);
    const bool byReference = parameter.Depth() > 0;
    if (type == VT_EMPTY) return DISP_E_BADVARTYPE;
    if (byReference && (given.vt & VT_BYREF) != 0) {
        // The caller's own variable, whatever it holds. A script's variables are variants, and no others.
        if (given.vt != (type | VT_BYREF) || !given.byref) return DISP_E_TYPEMISMATCH;
        m_word = AsWord(given.byref);
        return S_OK;
    }
    if (!byReference || (parameter.flags & PARAMFLAG_FIN) != 0) {
        const HRESULT hr = Convert(tables, parameter, type, given);
        if (FAILED(hr)) return hr;
    }
    if (byReference) {
        // What a method writes for an argument that was given by value has no taker.
        PassPlace(type);
    } else if (type == VT_I4) {
        m_word = static_cast<std::uintptr_t>(static_cast<std::intptr_t>(m_value.lVal));
    } else {
        m_word = AsWord(m_value.byref);
    }
    return S_OK;
}

HRESULT Argument::PrepareResult(const Tables& tables, const ParameterRow& parameter) noexcept {
    const VARTYPE type = HeldType(tables, parameter);
    if (type == VT_EMPTY) return DISP_E_BADVARTYPE;
    PassPlace(type);
    return S_OK;
}

HRESULT Argument::Convert(const Tables& tables, const ParameterRow& parameter, VARTYPE type,
                          const VARIANT& given) noexcept {
    HRESULT hr = VariantChangeType(&m_value, &given, 0, type);
    if (FAILED(hr) || parameter.vt != VT_USERDEFINED || !m_value.punkVal) return hr;
    // The table that the method calls through must be that of the interface it declares.
    void* object = nullptr;
    hr = m_value.punkVal->QueryInterface(tables.types[parameter.target].guid, &object);
    if (FAILED(hr) || !object) return DISP_E_TYPEMISMATCH;
    m_value.punkVal->Release();
    m_value.punkVal = static_cast<IUnknown*>(object);
    return S_OK;
}

// The place of the value in the variant: zero unless something was converted into it.
void Argument::PassPlace(VARTYPE type) noexcept {
    m_value.vt = type;
    m_word = AsWord(&m_value.lVal);
}

void Argument::MoveTo(VARIANT& destination) noexcept {
    destination = m_value;
    VariantInit(&m_value);
}

}  // namespace wnplatform::typelib
