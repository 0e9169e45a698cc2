// For script languages that can hold a plain IUnknown but call nothing on it.
#pragma once

#include <windows.h>

#include <ole2.h>

namespace wncom {

// Gives the late-bound side of an object. The agent answers a submission with an IUnknown; a script that cannot ask
// it for more passes it through here and calls what comes back.
struct IScriptAccess : IDispatch {
    static constexpr IID kIid = {0xab93d694, 0x52d8, 0x4c1c, {0x8d, 0xf6, 0xa7, 0x89, 0xb2, 0x4c, 0x71, 0x0f}};

    // Slot 7. The same object through its IDispatch, with a reference of the caller's; null for null. E_NOINTERFACE
    // when it has none, E_POINTER when there is no place for it.
    virtual HRESULT STDMETHODCALLTYPE AsObject(IUnknown* object, IDispatch** dispatch) = 0;
};

inline constexpr CLSID CLSID_ScriptAccess = {
    0x2b1a2c8d, 0x949f, 0x4490, {0x81, 0xc1, 0xb3, 0xae, 0x4f, 0x4c, 0x9f, 0xec}};
inline constexpr const OLECHAR* kProgIdScriptAccess = OLESTR("QBNORVEL.ScriptAccess.1");

}  // namespace wncom
