#include "libraries/http/HttpJobControl.h"

#include <stdexcept>
#include <utility>

#include "libraries/http/Connections.h"
#include "libraries/http/Operation.h"
#include "libraries/http/SessionHandover.h"
#include "libraries/http/WireText.h"

namespace wncom::http {
namespace {

constexpr const char* kXml = "application/xml";

void RefuseUnoffered(const char* operation) {
    Logged(operation, [] { throw std::runtime_error("this transport does not offer the operation"); });
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
        if (!sessionId.empty() && !IsPlainId(sessionId)) throw std::invalid_argument("invalid session id");
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
        if (!IsPlainId(id)) throw std::runtime_error("the device gave an invalid session id");
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

void HttpJobControl::Reserved2() { RefuseUnoffered("Reserved2"); }
void HttpJobControl::Reserved3() { RefuseUnoffered("Reserved3"); }
void HttpJobControl::Reserved4() { RefuseUnoffered("Reserved4"); }

const HttpClient& HttpJobControl::Client() const {
    if (!m_client) throw std::runtime_error("the object has no service address");
    return *m_client;
}

CString HttpJobControl::SendDocument(const char* path, const CString& document, std::string extraHeader) const {
    Call call = DocumentCall(path, ToWire(document), std::move(extraHeader));
    call.answerType = kXml;
    return CString(std::string_view(XmlFromWire(Client().Send(call))));
}

Call HttpJobControl::DocumentCall(std::string path, std::string document, std::string extraHeader) const {
    Call call("POST", std::move(path));
    call.headers = {"Content-Type: application/xml; charset=utf-8"};
    if (!m_session.empty()) call.headers.push_back(SessionHeader());
    if (!extraHeader.empty()) call.headers.push_back(std::move(extraHeader));
    call.body = std::move(document);
    return call;
}

std::string HttpJobControl::SessionHeader() const { return "Session-Id: " + m_session; }

}  // namespace wncom::http
