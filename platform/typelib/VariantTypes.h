// The types that a variant may have.
#pragma once

#include <optional>

#include "oaidl.h"

namespace wnplatform {

// Whether a variant may be of this type: a value, or with VT_BYREF a reference to one of the caller's.
bool CanHold(VARTYPE type) noexcept;

// A whole number or a fraction of any numeric type, VT_BOOL (-1 or 0) and VT_EMPTY (0); none for other types. Every
// one of them is exact.
std::optional<double> NumberOf(const VARIANT& value) noexcept;

// Stores a number, rounded to the nearest whole one (a half to the even one), in a numeric type: DISP_E_OVERFLOW when
// it has no room there, DISP_E_TYPEMISMATCH for a type that is not numeric.
HRESULT StoreNumber(double number, VARTYPE type, VARIANT& to) noexcept;

// The number or the truth value ("True", "False" or a number) that a text stands for; none for other texts.
std::optional<double> ParseNumber(const OLECHAR* text, UINT units);
std::optional<bool> ParseTruth(const OLECHAR* text, UINT units);

// As it reads in a text: -1 and 0 for a truth value, 15 digits at most for a fraction. Null without memory.
BSTR NumberText(double number);

}  // namespace wnplatform
