#include "platform/typelib/Argument.h"

#include "oleauto.h"

namespace wnplatform::typelib {
namespace {

std::uintptr_t AsWord(const void* pointer) noexcept { return reinterpret_cast<std::uintptr_t>(pointer); }

// The variant type that holds what a parameter takes or points to.
VARTYPE HeldType(const Type& type) noexcept {
    if (type.target) return type.target->IsDispatch() ? VT_DISPATCH : VT_UNKNOWN;
    // A terminated text is what a BSTR is too.
    return type.vt == VT_LPWSTR ? static_cast<VARTYPE>(VT_BSTR) : type.vt;
}

// The pointers to a value beyond the one that an object of a library's interface has anyhow.
unsigned ReferenceDepth(const Type& type) noexcept { return type.pointers - (type.target ? 1 : 0); }

bool IsIn(const Parameter& parameter) noexcept { return (parameter.flags & PARAMFLAG_FIN) != 0; }

// A method writes texts as BSTRs, never as plain terminated ones that have no agreed owner.
bool CanPass(const Type& type) noexcept {
    return type.vt != VT_VOID && ReferenceDepth(type) <= (type.vt == VT_LPWSTR ? 0U : 1U);
}

}  // namespace

Argument::Argument() noexcept { VariantInit(&m_value); }

Argument::~Argument() { VariantClear(&m_value); }

HRESULT Argument::Prepare(const Parameter& parameter, VARIANT& given) noexcept {
    if (!CanPass(parameter.type)) return DISP_E_BADVARTYPE;
    const VARTYPE type = HeldType(parameter.type);
    if (ReferenceDepth(parameter.type) > 0) return PrepareByReference(parameter, type, given);
    const HRESULT hr = Convert(parameter.type, type, given);
    if (SUCCEEDED(hr)) PassValue();
    return hr;
}

HRESULT Argument::PrepareResult(const Parameter& parameter) noexcept {
    if (!CanPass(parameter.type)) return DISP_E_BADVARTYPE;
    PassPlace(HeldType(parameter.type));
    return S_OK;
}

HRESULT Argument::PrepareByReference(const Parameter& parameter, VARTYPE type, VARIANT& given) noexcept {
    if ((given.vt & VT_BYREF) != 0) {
        // The caller's own variable, whatever it holds. A script's variables are variants, and no others.
        if (given.vt != (type | VT_BYREF) || !given.byref) return DISP_E_TYPEMISMATCH;
        m_word = AsWord(given.byref);
        return S_OK;
    }
    if (IsIn(parameter)) {
        const HRESULT hr = Convert(parameter.type, type, given);
        if (FAILED(hr)) return hr;
    }
    // What a method writes for an argument that was given by value has no taker.
    PassPlace(type);
    return S_OK;
}

HRESULT Argument::Convert(const Type& type, VARTYPE wanted, const VARIANT& given) noexcept {
    if (wanted == VT_VARIANT) return VariantCopy(&m_value, &given);
    HRESULT hr = VariantChangeType(&m_value, &given, 0, wanted);
    if (FAILED(hr) || !type.target || !m_value.punkVal) return hr;
    // The table that the method calls through must be that of the interface it declares.
    void* object = nullptr;
    hr = m_value.punkVal->QueryInterface(type.target->guid, &object);
    if (FAILED(hr) || !object) return DISP_E_TYPEMISMATCH;
    m_value.punkVal->Release();
    m_value.punkVal = static_cast<IUnknown*>(object);
    return S_OK;
}

// A variant itself or the value in it: zero unless something was converted into it.
void Argument::PassPlace(VARTYPE type) noexcept {
    if (type == VT_VARIANT) {
        m_word = AsWord(&m_value);
    } else {
        m_value.vt = type;
        m_word = AsWord(&m_value.lVal);
    }
}

void Argument::PassValue() noexcept {
    switch (m_value.vt) {
        case VT_I2:
        case VT_BOOL:
            m_word = static_cast<std::uintptr_t>(static_cast<std::intptr_t>(m_value.iVal));
            break;
        case VT_UI2:
            m_word = m_value.uiVal;
            break;
        case VT_I4:
        case VT_INT:
            m_word = static_cast<std::uintptr_t>(static_cast<std::intptr_t>(m_value.lVal));
            break;
        case VT_UI4:
        case VT_UINT:
            m_word = m_value.ulVal;
            break;
        default:
            m_word = AsWord(m_value.byref);
            break;
    }
}

void Argument::MoveTo(VARIANT& destination) noexcept {
    VariantClear(&destination);
    destination = m_value;
    VariantInit(&m_value);
}

}  // namespace wnplatform::typelib
