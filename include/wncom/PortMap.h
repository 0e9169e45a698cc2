// The port map: which devices there are, which services each offers, and which transport each service is reached by.
//
// Device and service records share one interface; which of its texts mean something depends on the record. A
// property that was never set reads as null with S_OK.
#pragma once

#include <windows.h>

#include <ole2.h>

namespace wncom {

struct IPortMapList;

// A device record or a service record, used as a template of a search and as its result.
struct IPortMapContent : IDispatch {
    static constexpr IID kIid = {0x203834e8, 0x6501, 0x43ea, {0x94, 0x64, 0x97, 0xb9, 0x0a, 0x5c, 0xbb, 0xf7}};

    virtual HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Name(BSTR name) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ServiceAddress(BSTR* address) = 0;  // slot 9
    virtual HRESULT STDMETHODCALLTYPE put_ServiceAddress(BSTR address) = 0;   // slot 10
    virtual HRESULT STDMETHODCALLTYPE get_TransportInfo(BSTR* entry) = 0;     // slot 11
    virtual HRESULT STDMETHODCALLTYPE put_TransportInfo(BSTR entry) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved13() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved14() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved15() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved16() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved17() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved18() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved19() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved20() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved21() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved22() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved23() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved24() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved25() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved26() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved27() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved28() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved29() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved30() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved31() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved32() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved33() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved34() = 0;
    // Slot 35: the device's services; the object answers IPortMapList. S_FALSE and null when there are none.
    virtual HRESULT STDMETHODCALLTYPE get_ServiceList(IUnknown** list) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ServiceList(IPortMapList* list) = 0;  // slot 36
};

// A list of records with a place in it.
struct IPortMapList : IDispatch {
    static constexpr IID kIid = {0x3ba195d4, 0x5072, 0x4311, {0xb8, 0x2a, 0x18, 0x02, 0x02, 0x7f, 0x7a, 0x61}};

    // Slot 7: the next record, one reference for the caller; S_FALSE and null at the end.
    virtual HRESULT STDMETHODCALLTYPE Next(IPortMapContent** record) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Count(LONG* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE Add(IPortMapContent* record) = 0;  // slot 9
    // Slot 10: back to the first record; S_FALSE and null in an empty list.
    virtual HRESULT STDMETHODCALLTYPE First(IPortMapContent** record) = 0;
};

struct IPortMap : IDispatch {
    static constexpr IID kIid = {0x7978ee79, 0x6992, 0x49e2, {0x9e, 0xf2, 0x28, 0xb4, 0x99, 0x4f, 0x6b, 0x60}};

    // All devices, for people and tools; an empty list when there is none.
    virtual HRESULT STDMETHODCALLTYPE GetDevices(IPortMapList** devices) = 0;
    // Slot 8: the devices that have a service whose address holds the address of the template's first service.
    // S_FALSE and null when there is none, E_INVALIDARG for a template that names no address. Case counts.
    virtual HRESULT STDMETHODCALLTYPE GetMatchingDevices(IPortMapContent* device, IPortMapList** devices) = 0;
};

inline constexpr CLSID CLSID_PortMap = {0x1779c95c, 0x322e, 0x4eb0, {0xba, 0xb4, 0xa6, 0x05, 0xf8, 0x41, 0xb1, 0xc6}};
inline constexpr CLSID CLSID_DeviceContent = {
    0x9fcb7741, 0x2c4b, 0x4b1f, {0xb7, 0xf7, 0x34, 0x21, 0x3e, 0x02, 0xe8, 0xe4}};
inline constexpr CLSID CLSID_ServiceContent = {
    0x6e179b57, 0x7219, 0x46ed, {0x83, 0xf8, 0x45, 0x1e, 0x5a, 0xac, 0x75, 0x12}};
inline constexpr CLSID CLSID_ServiceList = {
    0xba44e0dd, 0xdd6c, 0x437e, {0xb8, 0x6a, 0xd6, 0xe7, 0x8d, 0x06, 0x1a, 0xa0}};
inline constexpr const OLECHAR* kProgIdPortMap = OLESTR("QBNORVEL.PortMap");
inline constexpr const OLECHAR* kProgIdDeviceContent = OLESTR("QBNORVEL.DeviceContent.1");
inline constexpr const OLECHAR* kProgIdServiceContent = OLESTR("QBNORVEL.ServiceContent.1");
inline constexpr const OLECHAR* kProgIdServiceList = OLESTR("QBNORVEL.ServiceList.1");

}  // namespace wncom
