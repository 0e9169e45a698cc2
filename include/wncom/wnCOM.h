// The agent's contract: the two classes of wnCOM and their eight interfaces, as the type library describes them.
//
// Every method answers an HRESULT and may be called from the apartment thread of the object only. An [in] text
// belongs to the caller and may be null unless a method says otherwise; an [out] text is a new BSTR that the caller
// frees with SysFreeString. Tables of functions hold the methods in the order written here and nothing else.
#pragma once

#include <windows.h>

#include <ole2.h>

namespace wncom {

inline constexpr GUID LIBID_WNCOMLib = {0x8b2e860f, 0x324b, 0x4f38, {0xb0, 0xbe, 0x9d, 0x64, 0x23, 0x17, 0xc2, 0x4b}};
inline constexpr CLSID CLSID_Wendrel = {0xeef389d4, 0x439b, 0x431e, {0xaa, 0x87, 0x95, 0xb8, 0xc7, 0x34, 0x23, 0x0e}};
inline constexpr CLSID CLSID_WendrelParent = {
    0xfcc9ae80, 0x8b9d, 0x4f30, {0xb9, 0xdd, 0x6a, 0xfd, 0x04, 0x41, 0x59, 0x98}};

inline constexpr const OLECHAR* kProgIdWendrel = OLESTR("QBNORVEL.Wendrel.1");
inline constexpr const OLECHAR* kProgIdWendrelParent = OLESTR("QBNORVEL.WendrelParent.1");

// The agent of one device service.
struct IWendrel : IDispatch {
    static constexpr IID kIid = {0xd22de9f2, 0x7f78, 0x467a, {0xb0, 0x57, 0x46, 0x97, 0xbf, 0x31, 0x2d, 0xed}};

    // The service's capabilities ticket, from the cache or from the service. E_FAIL when there is none, or for a
    // null pointer; nothing is stored then.
    virtual HRESULT STDMETHODCALLTYPE GetCapabilitiesTicket(BSTR* pTicket) = 0;
    // Submits a job and hands back the agent's transport description, one reference added, which answers
    // ITransportDesc and holds the job's addresses. Nothing is stored on failure.
    virtual HRESULT STDMETHODCALLTYPE SendIntentTicket(BSTR Ticket, IUnknown** ppITransportDesc) = 0;
};

// General event service. SessionInfo is accepted and not used.
struct IComBaseEvent : IUnknown {
    static constexpr IID kIid = {0x314b093c, 0x5246, 0x4568, {0x9e, 0x8d, 0xbe, 0xfb, 0x44, 0x71, 0x8f, 0x99}};

    virtual HRESULT STDMETHODCALLTYPE Subscribe(BSTR SubscriptionInfo, BSTR FilterProperties, BSTR ConsumerInterface,
                                                BSTR SessionInfo, BSTR* ExceptionInfo, BSTR* SubscriptionID) = 0;
    virtual HRESULT STDMETHODCALLTYPE Unsubscribe(BSTR SubscriptionID, BSTR SessionInfo, BSTR* ExceptionInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSupportedEvents(BSTR SessionInfo, BSTR* ExceptionInfo, BSTR* EventList) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSubscriptionIDList(BSTR SessionInfo, BSTR* ExceptionInfo,
                                                            BSTR* SubscriptionIDList) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSubscriptionDetails(BSTR SubscriptionID, BSTR SessionInfo,
                                                             BSTR* ExceptionInfo, BSTR* SubscriptionDetails) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetEventProperties(BSTR EventName, BSTR SessionInfo, BSTR* ExceptionInfo,
                                                         BSTR* EventPropertyList) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetEventSystemCapabilities(BSTR SessionInfo, BSTR* ExceptionInfo,
                                                                 BSTR* EventCapabilities) = 0;
};

// Sessions with the service. Each start and end reads the service's address anew and connects afresh.
struct ISessionControl : IUnknown {
    static constexpr IID kIid = {0xb2b10826, 0xa94f, 0x4c0e, {0xb8, 0x0d, 0x47, 0x6e, 0x51, 0xf3, 0x94, 0x62}};

    virtual HRESULT STDMETHODCALLTYPE StartSession() = 0;
    virtual HRESULT STDMETHODCALLTYPE EndSession() = 0;
    virtual HRESULT STDMETHODCALLTYPE RestartSession() = 0;
};

// How the parent hands an agent its service description (pISD, asked for IServiceDesc) and its transport
// description (pTD, an ITransportDesc). The agent keeps one reference to each; on E_FAIL it holds nothing.
struct IWNInitByParent : IUnknown {
    static constexpr IID kIid = {0x7883fe6b, 0x11c8, 0x4e6e, {0xab, 0xe6, 0xdf, 0xd6, 0x49, 0x8e, 0x8b, 0xe0}};

    virtual HRESULT STDMETHODCALLTYPE InitByParent(IUnknown* pISD, IUnknown* pTD) = 0;
};

// Jobs. Cancelling and querying are not provided and answer E_FAIL.
struct IJobControl : IUnknown {
    static constexpr IID kIid = {0x8d5055c1, 0x4d14, 0x4c4d, {0xa0, 0xa5, 0xe4, 0xa8, 0xc0, 0xcd, 0xc5, 0x50}};

    virtual HRESULT STDMETHODCALLTYPE CancelJobWithMessage(BSTR jobURI, BSTR cancelMessage) = 0;
    virtual HRESULT STDMETHODCALLTYPE CancelJob(BSTR jobURI) = 0;
    virtual HRESULT STDMETHODCALLTYPE QueryJobStatus(BSTR jobURI, BSTR* intentTicket) = 0;
    // ResponseTicket may be null: the response is then only read for its addresses.
    virtual HRESULT STDMETHODCALLTYPE SubmitJob(BSTR intentTicket, BSTR* ResponseTicket) = 0;
};

// Device data documents.
struct IWNXDMAccess : IUnknown {
    static constexpr IID kIid = {0x5782452c, 0x4778, 0x409c, {0xb2, 0x27, 0x94, 0x36, 0xde, 0xe6, 0x1f, 0x23}};

    virtual HRESULT STDMETHODCALLTYPE GetData(BSTR xdmPath, BSTR xdmPrefixes, BSTR* ExceptionInfo,
                                              BSTR* xdmDocument) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetData(BSTR xdmSetDocument, LONG FailureDetails, BSTR* ExceptionInfo) = 0;
};

// Events by tickets.
struct IWNEventAccess : IUnknown {
    static constexpr IID kIid = {0xab459f87, 0x65ac, 0x4c25, {0x9d, 0x94, 0xc1, 0x4d, 0x59, 0xc2, 0x9d, 0x3f}};

    virtual HRESULT STDMETHODCALLTYPE GetEventCapabilities(BSTR* ExceptionInfo, BSTR* eventCapabilitiesTicket) = 0;
    virtual HRESULT STDMETHODCALLTYPE SubscribeForEvents(BSTR eventSubscription, BSTR* ExceptionInfo,
                                                         BSTR* subscriptionResultTicket) = 0;
    virtual HRESULT STDMETHODCALLTYPE Resubscribe(BSTR SubscriptionID, BSTR duration, BSTR* ExceptionInfo) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnsubscribeForEvents(BSTR SubscriptionID, BSTR* ExceptionInfo) = 0;
};

// The agent parent: each call makes a fresh agent, with a transport description of its own.
struct IInternalWendrelParent : IDispatch {
    static constexpr IID kIid = {0x83d6e50d, 0x66c8, 0x4210, {0x81, 0xc3, 0x0e, 0x1b, 0x63, 0x60, 0x8b, 0xfb}};

    virtual HRESULT STDMETHODCALLTYPE CreateWendrel(IUnknown* pIServiceDesc, IWendrel** ppIWendrel) = 0;
};

}  // namespace wncom
