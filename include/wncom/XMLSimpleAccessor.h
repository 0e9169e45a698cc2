// The XML simple accessor: loads one XML document and answers path queries with text.
#pragma once

#include <windows.h>

#include <ole2.h>

namespace wncom {

struct IXMLSimpleAccessor : IDispatch {
    static constexpr IID kIid = {0x8b90e6e1, 0xea33, 0x47c4, {0x86, 0x98, 0xc6, 0x9c, 0x0a, 0x01, 0x96, 0x93}};

    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    // Slot 8: the text put between the texts of several matches; ";" until it is set, nothing when null.
    virtual HRESULT STDMETHODCALLTYPE SetDelimiter(BSTR delimiter) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    // Slot 12: loads the document, given as the path of a file or as the XML text itself (its first character after
    // white space and a byte order mark is '<'). At most 64 MB. On a failure nothing is loaded, and the debugger
    // output tells why and where.
    virtual HRESULT STDMETHODCALLTYPE LoadXML(BSTR document) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved13() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved14() = 0;
    // Slot 15: what an XPath query finds from the top element on: the matches' texts in document order, joined by the
    // delimiter, or a number, truth value or text as XPath writes it. An element's text is all text below it. A
    // prefix is part of a name as it is written. The flag 4 asks for the first match only, 0 for all of them. S_FALSE
    // and null when there is no match, E_INVALIDARG for a query that is not understood, E_UNEXPECTED while nothing is
    // loaded. Whatever *text holds before the call is overwritten, not freed.
    virtual HRESULT STDMETHODCALLTYPE GetXML(BSTR query, LONG flag, BSTR* text) = 0;
};

inline constexpr CLSID CLSID_XMLSimpleAccessor = {
    0xe701adbd, 0xd242, 0x4cca, {0xac, 0x60, 0xb9, 0xa6, 0x0f, 0x15, 0x4a, 0xe4}};
inline constexpr const OLECHAR* kProgIdXMLSimpleAccessor = OLESTR("QBNORVEL.XMLSimpleAccessor.1");

}  // namespace wncom
