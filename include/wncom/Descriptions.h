// The two descriptions that accompany an agent: which service it is for, and where a job's data is to go.
//
// Both are components outside the agent. Slots count from 0 in the table of functions; IUnknown and IDispatch take
// the first seven. The agent calls only the slots marked below; the others belong to the components that ship here.
#pragma once

#include <windows.h>

#include <ole2.h>

namespace wncom {

// Describes one device service. The client fills it in and hands it to the agent parent.
struct IServiceDesc : IDispatch {
    static constexpr IID kIid = {0x42abace3, 0x738d, 0x491c, {0xb2, 0x0d, 0xa7, 0x2c, 0xdc, 0x27, 0xde, 0xfb}};

    virtual HRESULT STDMETHODCALLTYPE GetID(BSTR* id) = 0;  // slot 7, called by the agent
    virtual HRESULT STDMETHODCALLTYPE SetID(BSTR id) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAddress(BSTR* address) = 0;  // slot 9, called by the agent
    virtual HRESULT STDMETHODCALLTYPE SetAddress(BSTR address) = 0;
};

// What became of the last submission of one agent. The agent parent creates it, the agent fills it in and hands it
// to the client. Texts that were never set, or set to null, read as null with S_OK.
struct ITransportDesc : IDispatch {
    static constexpr IID kIid = {0xf8441d12, 0x1ebb, 0x45f4, {0x89, 0x57, 0xcc, 0x15, 0xcf, 0xfd, 0xa5, 0x6e}};

    // Slot 7, called by the agent: where to deliver the job's data. The address type is 0 for an address and -1 for
    // none; the delivery method 1 (the client posts the data to the address), 3 (the address is a sink) or -1.
    virtual HRESULT STDMETHODCALLTYPE SetTargetURI(BSTR address, LONG reserved, LONG addressType,
                                                   LONG deliveryMethod) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetTargetURI(BSTR* address) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAddressType(LONG* addressType) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDeliveryMethod(LONG* deliveryMethod) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved12() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved13() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSessionContext(BSTR* context) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetSessionContext(BSTR context) = 0;  // slot 15, called by the agent
    virtual HRESULT STDMETHODCALLTYPE GetJobURI(BSTR* address) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetJobURI(BSTR address) = 0;  // slot 17, called by the agent
};

inline constexpr CLSID CLSID_ServiceDesc = {
    0xc4767ef3, 0xe8f2, 0x43ea, {0xbd, 0xad, 0x44, 0x8e, 0x94, 0x45, 0xcc, 0x38}};
inline constexpr CLSID CLSID_TransportDesc = {
    0xee22f34f, 0x47a8, 0x44a4, {0x85, 0xb2, 0xad, 0x8a, 0x22, 0xcb, 0x4e, 0x9f}};
inline constexpr const OLECHAR* kProgIdServiceDesc = OLESTR("QBNORVEL.ServiceDesc.1");
inline constexpr const OLECHAR* kProgIdTransportDesc = OLESTR("QBNORVEL.TransportDesc.1");

}  // namespace wncom
