// The texts of a description, which are ASCII, as callers have and want them.
#pragma once

#include <string_view>

#include "oaidl.h"

namespace wnplatform::typelib {

// Stores a new BSTR, or null for an empty text. A null place is skipped. E_OUTOFMEMORY leaves null there.
HRESULT GiveText(std::string_view text, BSTR* place) noexcept;

// As GetDocumentation gives them: the name, the help text, no help file. Frees what it made when memory runs out.
HRESULT GiveDocumentation(std::string_view name, std::string_view help, BSTR* namePlace, BSTR* helpPlace,
                          DWORD* contextPlace, BSTR* filePlace) noexcept;

// Without regard to case.
bool SameName(const OLECHAR* a, std::string_view b) noexcept;

}  // namespace wnplatform::typelib
