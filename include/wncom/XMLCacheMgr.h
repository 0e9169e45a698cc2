// The XML cache manager: keeps tickets under keys for a lifetime, for all processes of a machine.
#pragma once

#include <windows.h>

#include <ole2.h>

namespace wncom {

// The only flags that operations take: 1, kept when the process ends, and 64, shared by all processes of the machine.
// Others give E_INVALIDARG.
inline constexpr LONG kCacheFlags = 65;

// A key is any text up to its terminator; it need not be a BSTR, and its recorded length does not count if it is one.
// A null key gives E_INVALIDARG.
struct IXMLCacheMgr : IDispatch {
    static constexpr IID kIid = {0x5569aae9, 0x287c, 0x4e3d, {0xa7, 0x03, 0x80, 0xba, 0x1c, 0x03, 0xff, 0x81}};

    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved12() = 0;
    // Slot 13: stores the ticket under the key for so many seconds, in place of an earlier one. Null is an empty
    // ticket; zero characters in it count. E_INVALIDARG when the lifetime is 0 or less. A success status means
    // stored.
    virtual HRESULT STDMETHODCALLTYPE PutXML(LPCOLESTR key, BSTR ticket, LONG seconds, LONG flags) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved14() = 0;
    // Slot 15: a success status and a text, which the caller frees, mean found; S_FALSE and null that there is no
    // ticket, or none whose lifetime has not passed.
    virtual HRESULT STDMETHODCALLTYPE FetchXML(LPCOLESTR key, LONG flags, BSTR* ticket) = 0;
    // Slot 16: a success status means that the key has no ticket any more; S_FALSE that it had none.
    virtual HRESULT STDMETHODCALLTYPE RemoveXML(LPCOLESTR key) = 0;
};

inline constexpr CLSID CLSID_XMLCacheMgr = {
    0x599aae1c, 0x9214, 0x4dfe, {0x99, 0x59, 0xf2, 0x2b, 0x3f, 0x07, 0x71, 0x9d}};
inline constexpr const OLECHAR* kProgIdXMLCacheMgr = OLESTR("QBNORVEL.XMLCacheMgr.1");

}  // namespace wncom
