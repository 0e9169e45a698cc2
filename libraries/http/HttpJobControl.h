// The remote job-control object that speaks HTTP to its device service.
#pragma once

#include <optional>
#include <string>

#include "libraries/http/HttpClient.h"
#include "wncom/Logging.h"
#include "wncom/RmtJobControl.h"

namespace wncom::http {

// One service, by the protocol of docs/device-protocol.md. Every operation either succeeds or logs why not and
// throws: std::invalid_argument for what the caller handed over, std::runtime_error for what the device or the
// network did. Operations with a slot for a text put there what went wrong; what the device refuses does not throw
// from them but gives an empty text, or false. XML answers come as XmlFromWire says.
class HttpJobControl final : public RmtJobControl {
public:
    HttpJobControl();
    HttpJobControl(const HttpJobControl&) = delete;
    HttpJobControl& operator=(const HttpJobControl&) = delete;
    ~HttpJobControl();

    CString GetWorkflowCapabilities(CString request, int flag) override;
    CString SubmitJob(CString intentTicket, int flag) override;
    void Reserved2() override;
    void Reserved3() override;
    void Reserved4() override;
    // An empty id leaves the session without ending it.
    void SetSessionID(CString sessionId) override;
    // The new session replaces the one that this object has.
    CString StartSession() override;
    void EndSession() override;
    // The operations on events that have no slot need no session.
    CString Subscribe(CString subscriptionInfo, CString filterProperties, CString consumerInterface) override;
    void Unsubscribe(CString subscriptionId) override;
    RemoteArray* GetSupportedEvents() override;
    RemoteArray* GetEventProperties(CString eventName) override;
    // Sends nothing. A session that the previous object of this thread had with the service goes on.
    void Initialize(CString serviceUri, CPComPtr<IUnknown> none) override;
    CString GetData(CString xdmPath, CString xdmPrefixes, BSTR* exceptionSlot, int flag) override;
    bool SetData(CString xdmSetDocument, bool failureDetails, WCHAR** textSlot, int flag) override;
    CString GetEventCapabilities(BSTR* exceptionSlot) override;
    CString SubscribeForEvents(CString subscriptionTicket, BSTR* exceptionSlot) override;
    bool Resubscribe(CString subscriptionId, CString duration, BSTR* exceptionSlot) override;
    bool UnsubscribeForEvents(CString subscriptionId, BSTR* exceptionSlot) override;

private:
    const HttpClient& Client() const;
    // A document in UTF-8 for the device, inside the session if there is one.
    Call DocumentCall(std::string path, std::string document, std::string extraHeader = {}) const;
    // Sends a document inside the session and gives the XML that comes back.
    CString SendDocument(const char* path, const CString& document, std::string extraHeader = {}) const;
    std::string SessionHeader() const;

    LogReference m_logging;
    std::optional<HttpClient> m_client;  // empty until Initialize succeeds
    std::string m_session;               // empty while there is none
};

}  // namespace wncom::http
