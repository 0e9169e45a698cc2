// How the bridge's texts become the client's.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace wncom {

// Stores a new BSTR copy of the text, which the client then owns. E_OUTOFMEMORY, with null stored, when there is no
// memory for it.
inline HRESULT CopyOut(const WCHAR* text, BSTR* out) noexcept {
    *out = SysAllocString(text);
    return *out ? S_OK : E_OUTOFMEMORY;
}

}  // namespace wncom
