#include "platform/typelib/VariantTypes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <string>

#include "oleauto.h"
#include "winnls.h"

namespace wnplatform {
namespace {

template <class T>
bool Fits(double whole) noexcept {
    return whole >= static_cast<double>(std::numeric_limits<T>::min()) &&
           whole <= static_cast<double>(std::numeric_limits<T>::max());
}

template <class T>
HRESULT StoreWhole(double number, T& to) noexcept {
    const double whole = std::nearbyint(number);
    // Neither is an infinity or what is no number.
    if (!Fits<T>(whole)) return DISP_E_OVERFLOW;
    to = static_cast<T>(whole);
    return S_OK;
}

// Without white space around it; what is no ASCII stands for no number either way.
std::string Trimmed(const OLECHAR* text, UINT units) {
    std::string narrow;
    for (UINT i = 0; i < units; ++i) narrow += text[i] < 0x80 ? static_cast<char>(text[i]) : '?';
    const auto first = narrow.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return {};
    return narrow.substr(first, narrow.find_last_not_of(" \t\r\n") - first + 1);
}

}  // namespace

bool CanHold(VARTYPE type) noexcept {
    switch (type & ~VT_BYREF) {
        case VT_EMPTY:
        case VT_NULL:
            return (type & VT_BYREF) == 0;
        case VT_VARIANT:
            return (type & VT_BYREF) != 0;
        case VT_I2:
        case VT_I4:
        case VT_R8:
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_ERROR:
        case VT_BOOL:
        case VT_UNKNOWN:
        case VT_UI1:
        case VT_UI2:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
            return true;
        default:
            return false;
    }
}

std::optional<double> NumberOf(const VARIANT& value) noexcept {
    switch (value.vt) {
        case VT_EMPTY:
            return 0;
        case VT_I2:
        case VT_BOOL:
            return value.iVal;
        case VT_I4:
        case VT_INT:
            return value.lVal;
        case VT_R8:
            return value.dblVal;
        case VT_UI1:
            return value.bVal;
        case VT_UI2:
            return value.uiVal;
        case VT_UI4:
        case VT_UINT:
            return value.ulVal;
        default:
            return std::nullopt;
    }
}

HRESULT StoreNumber(double number, VARTYPE type, VARIANT& to) noexcept {
    to.vt = type;
    switch (type) {
        case VT_I2:
            return StoreWhole(number, to.iVal);
        case VT_I4:
        case VT_INT:
            return StoreWhole(number, to.lVal);
        case VT_UI1:
            return StoreWhole(number, to.bVal);
        case VT_UI2:
            return StoreWhole(number, to.uiVal);
        case VT_UI4:
        case VT_UINT:
            return StoreWhole(number, to.ulVal);
        case VT_R8:
            to.dblVal = number;
            return S_OK;
        case VT_BOOL:
            to.boolVal = number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        default:
            return DISP_E_TYPEMISMATCH;
    }
}

std::optional<double> ParseNumber(const OLECHAR* text, UINT units) {
    std::string narrow = Trimmed(text, units);
    // The conversion below knows no plus sign, and names of infinities that are no numbers here.
    if (narrow.size() > 1 && narrow[0] == '+' && narrow[1] != '-') narrow.erase(0, 1);
    if (narrow.find_first_not_of("0123456789.eE+-") != std::string::npos) return std::nullopt;
    double number = 0;
    const char* last = narrow.data() + narrow.size();
    const auto [end, error] = std::from_chars(narrow.data(), last, number);
    if (error == std::errc::result_out_of_range && end == last) {
        // Which end of the range it is beyond only the exponent's sign tells.
        const bool tooSmall = narrow.find("e-") != std::string::npos || narrow.find("E-") != std::string::npos;
        return tooSmall ? 0 : std::numeric_limits<double>::infinity();
    }
    if (error != std::errc() || end != last) return std::nullopt;
    return number;
}

std::optional<bool> ParseTruth(const OLECHAR* text, UINT units) {
    const std::string narrow = Trimmed(text, units);
    if (_stricmp(narrow.c_str(), "True") == 0) return true;
    if (_stricmp(narrow.c_str(), "False") == 0) return false;
    const std::optional<double> number = ParseNumber(text, units);
    if (!number) return std::nullopt;
    return *number != 0;
}

BSTR NumberText(double number) {
    char digits[32];
    // Zero has no sign in a text, and an exponent a capital letter.
    const auto [end, error] =
        std::to_chars(std::begin(digits), std::end(digits), number == 0 ? 0 : number, std::chars_format::general, 15);
    std::replace(std::begin(digits), end, 'e', 'E');
    BSTR text = SysAllocStringLen(nullptr, static_cast<UINT>(end - digits));
    if (text) std::copy(static_cast<const char*>(digits), static_cast<const char*>(end), text);
    return text;
}

}  // namespace wnplatform
