// A text that clients set and read back.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include "wncom/Bstr.h"

namespace wncom::components {

// Keeps null and empty apart and every unit of the text, zeros included.
class TextProperty {
public:
    // The copy is the caller's; null while nothing is set. E_POINTER without a place for it.
    HRESULT Get(BSTR* text) const noexcept { return text ? Copy(m_text.get(), *text) : E_POINTER; }

    // Null clears the text. On a failure the old text stays.
    HRESULT Put(BSTR text) noexcept {
        BSTR copy = nullptr;
        const HRESULT status = Copy(text, copy);
        if (SUCCEEDED(status)) m_text.attach(copy);
        return status;
    }

private:
    static HRESULT Copy(BSTR text, BSTR& copy) noexcept {
        copy = text ? SysAllocStringLen(text, SysStringLen(text)) : nullptr;
        return text && !copy ? E_OUTOFMEMORY : S_OK;
    }

    Bstr m_text;
};

}  // namespace wncom::components
