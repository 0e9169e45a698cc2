#include "transports/http/HttpJobControl.h"

#include <objbase.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "transports/http/Connections.h"
#include "transports/http/SessionHandover.h"
#include "transports/http/WireText.h"

namespace wncom::http {
namespace {

constexpr std::size_t kLongestSessionId = 128;
constexpr const char* kXml = "application/xml";

// Runs an operation's body; its failure is logged here, because the caller catches it unexamined.
template <class Body>
auto Logged(const char* operation, Body body) {
    try {
        return body();
    } catch (const std::exception& failure) {
        Log(1, "HttpJobControl::%s failed: %s", operation, failure.what());
        throw;
    }
}

[[noreturn]] void NotOffered(const char* operation) {
    Log(2, "HttpJobControl::%s is not offered by this transport", operation);
    throw std::runtime_error(std::string(operation) + " is not offered by this transport");
}

// Session ids stand in headers and paths: nothing in them may need quoting there.
bool IsSessionId(std::string_view id) {
    return !id.empty() && id.size() <= kLongestSessionId && std::all_of(id.begin(), id.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' || c == '_';
    });
}

// A new one for each submission: when the connection breaks after the device took a ticket, libcurl may send it once
// more, and the device must know it again.
std::string RequestIdHeader() {
    GUID guid;
    if (FAILED(CoCreateGuid(&guid))) throw std::runtime_error("no request id is to be had");
    std::string header = "Request-Id: ";
    const auto* const bytes = reinterpret_cast<const unsigned char*>(&guid);
    for (std::size_t i = 0; i < sizeof(guid); ++i) {
        header += "0123456789abcdef"[bytes[i] >> 4];
        header += "0123456789abcdef"[bytes[i] & 0x0F];
    }
    return header;
}

}  // namespace

HttpJobControl::HttpJobControl() {
    SharedConnections().Enter();
    m_logging.Start("wnHttpTransport");
}

HttpJobControl::~HttpJobControl() {
    if (m_client) SharedHandover().Leave(m_client->Address().base, m_session);
    SharedConnections().Leave();
}

void HttpJobControl::Initialize(CString serviceUri, CPComPtr<IUnknown>) {
    Logged("Initialize", [&] {
        m_client.emplace(ParseServiceAddress(serviceUri), ReadSettings());
        m_session = SharedHandover().Take(m_client->Address().base);
    });
}

CString HttpJobControl::GetWorkflowCapabilities(CString request, int) {
    return Logged("GetWorkflowCapabilities", [&] { return SendDocument("/capabilities", request); });
}

CString HttpJobControl::SubmitJob(CString intentTicket, int) {
    return Logged("SubmitJob", [&] { return SendDocument("/jobs", intentTicket, RequestIdHeader()); });
}

void HttpJobControl::SetSessionID(CString sessionId) {
    Logged("SetSessionID", [&] {
        if (!sessionId.empty() && !IsSessionId(sessionId)) throw std::invalid_argument("the text is no session id");
        m_session = sessionId.c_str();
    });
}

CString HttpJobControl::StartSession() {
    return Logged("StartSession", [&] {
        Call call("POST", "/sessions");
        call.headers = {"Content-Type:"};
        if (!m_session.empty()) call.headers.push_back(SessionHeader());
        call.answerType = "text/plain";
        const std::string id = Client().Send(call);
        if (!IsSessionId(id)) throw std::runtime_error("the device gave no session id");
        m_session = id;
        return CString(std::string_view(id));
    });
}

void HttpJobControl::EndSession() {
    Logged("EndSession", [&] {
        if (m_session.empty()) throw std::runtime_error("there is no session");
        Client().Send({"DELETE", "/sessions/" + m_session});
        m_session.clear();
    });
}

void HttpJobControl::Reserved2() { NotOffered("Reserved2"); }
void HttpJobControl::Reserved3() { NotOffered("Reserved3"); }
void HttpJobControl::Reserved4() { NotOffered("Reserved4"); }
CString HttpJobControl::Subscribe(CString, CString, CString) { NotOffered("Subscribe"); }
void HttpJobControl::Unsubscribe(CString) { NotOffered("Unsubscribe"); }
RemoteArray* HttpJobControl::GetSupportedEvents() { NotOffered("GetSupportedEvents"); }
RemoteArray* HttpJobControl::GetEventProperties(CString) { NotOffered("GetEventProperties"); }
CString HttpJobControl::GetData(CString, CString, BSTR*, int) { NotOffered("GetData"); }
bool HttpJobControl::SetData(CString, bool, WCHAR**, int) { NotOffered("SetData"); }
CString HttpJobControl::GetEventCapabilities(BSTR*) { NotOffered("GetEventCapabilities"); }
CString HttpJobControl::SubscribeForEvents(CString, BSTR*) { NotOffered("SubscribeForEvents"); }
bool HttpJobControl::Resubscribe(CString, CString, BSTR*) { NotOffered("Resubscribe"); }
bool HttpJobControl::UnsubscribeForEvents(CString, BSTR*) { NotOffered("UnsubscribeForEvents"); }

const HttpClient& HttpJobControl::Client() const {
    if (!m_client) throw std::runtime_error("the object has no service address");
    return *m_client;
}

CString HttpJobControl::SendDocument(const char* path, const CString& document, std::string extraHeader) const {
    Call call("POST", path);
    call.headers = {"Content-Type: application/xml; charset=utf-8"};
    if (!m_session.empty()) call.headers.push_back(SessionHeader());
    if (!extraHeader.empty()) call.headers.push_back(std::move(extraHeader));
    call.body = ToWire(document);
    call.answerType = kXml;
    return CString(std::string_view(XmlFromWire(Client().Send(call))));
}

std::string HttpJobControl::SessionHeader() const { return "Session-Id: " + m_session; }

}  // namespace wncom::http
