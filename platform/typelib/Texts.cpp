#include "platform/typelib/Texts.h"

#include <algorithm>

#include "oleauto.h"

namespace wnplatform::typelib {

HRESULT GiveText(std::string_view text, BSTR* place) noexcept {
    if (!place) return S_OK;
    *place = nullptr;
    if (text.empty()) return S_OK;
    *place = SysAllocStringLen(nullptr, static_cast<UINT>(text.size()));
    if (!*place) return E_OUTOFMEMORY;
    std::copy(text.begin(), text.end(), *place);
    return S_OK;
}

HRESULT GiveDocumentation(std::string_view name, std::string_view help, BSTR* namePlace, BSTR* helpPlace,
                          DWORD* contextPlace, BSTR* filePlace) noexcept {
    if (contextPlace) *contextPlace = 0;
    if (filePlace) *filePlace = nullptr;
    if (helpPlace) *helpPlace = nullptr;
    HRESULT hr = GiveText(name, namePlace);
    if (FAILED(hr)) return hr;
    hr = GiveText(help, helpPlace);
    if (FAILED(hr) && namePlace) {
        SysFreeString(*namePlace);
        *namePlace = nullptr;
    }
    return hr;
}

bool SameName(const OLECHAR* a, std::string_view b) noexcept {
    const auto lower = [](OLECHAR c) { return c >= 'A' && c <= 'Z' ? static_cast<OLECHAR>(c - 'A' + 'a') : c; };
    for (const char c : b) {
        // The shorter text ends in a zero, which no name holds.
        if (lower(*a) != lower(static_cast<OLECHAR>(c))) return false;
        ++a;
    }
    return *a == 0;
}

}  // namespace wnplatform::typelib
