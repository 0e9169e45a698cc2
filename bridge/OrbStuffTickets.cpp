// The bridge's tickets and device data.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bridge/OrbStuff.h"
#include "bridge/RemoteCall.h"
#include "bridge/TextConversions.h"
#include "wncom/Logging.h"
#include "wncom/TraceScope.h"

namespace wncom {
namespace {

constexpr LONG kNoTicket = -12;
constexpr LONG kNoResponseSlot = -13;
constexpr LONG kNoPath = -17;

constexpr const char* kCapabilitiesRequest =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?><capabilitiesRequest><workflowId>%s</workflowId></capabilitiesRequest>";
constexpr std::size_t kCapabilitiesRequestRoom = 110;  // beside the workflow id

}  // namespace

LONG OrbStuff::GetCapTicket(const WCHAR* szWorkflowID, MallocText<WCHAR>* pszResp) noexcept {
    const TraceScope trace("OrbStuff::GetCapTicket", ".\\OrbStuff");
    if (!pszResp) {
        Log(3, "OrbStuff::GetCap Parameter \"pszResp\" is NULL!");
        return 0;
    }
    pszResp->reset();
    Log(3, "OrbStuff::Establishing GetCap connection to %s.\n", m_szServiceURI.get());

    MallocText<char> encoded;
    const char* workflowId = nullptr;
    if (IsNullOrEmpty(szWorkflowID)) {
        workflowId = std::getenv("WF_DESTINATION");
        if (!workflowId) workflowId = "";
    } else {
        encoded = WCharToUtf8(szWorkflowID);
        workflowId = encoded.get();
        // Another workflow's ticket must not be asked for where memory is too short for this one's id.
        if (!workflowId) {
            Log(1, "ticket alloc failed, result: NULL!\n\n");
            return 0;
        }
    }
    Log(3, "WF Destination: '%s'\n", workflowId);

    const std::size_t room = std::strlen(workflowId) + kCapabilitiesRequestRoom;
    MallocText<char> request(static_cast<char*>(std::malloc(room)));
    if (!request) {
        Log(1, "ticket alloc failed, result: NULL!\n\n");
        return 0;
    }
    std::snprintf(request.get(), room, kCapabilitiesRequest, workflowId);
    encoded.reset();

    CString result;
    GuardedCall(3, "Exception thrown when attempting to call GetWorkflowCapabilities().\n", [&] {
        const CString sent = CharToCString(request.get());
        request.reset();
        Log(3, "calling wf.GetWorkflowCapabilities\n");
        result = Remote().GetWorkflowCapabilities(sent, 1);
    });
    return HandOut(result, pszResp);
}

LONG OrbStuff::SubmitJob(const WCHAR* szTicket, MallocText<WCHAR>* pszResp) noexcept {
    const TraceScope trace("OrbStuff::SubmitJob", ".\\OrbStuff");
    if (!szTicket) {
        Log(3, "OrbStuff::SubmitJob Parameter \"szTicket\" is NULL!");
        return kNoTicket;
    }
    if (!pszResp) {
        Log(3, "OrbStuff::SubmitJob Parameter \"pszResp\" is NULL!");
        return kNoResponseSlot;
    }
    Log(3, "OrbStuff::Establishing SubmitJob connection to %s\n", m_szServiceURI.get());
    CString result;
    GuardedCall(3, "Exception thrown calling SubmitJob().\n", [&] {
        const CString ticket = OutgoingText(szTicket);
        Log(3, "calling SubmitJob on mJobControl\n");
        result = Remote().SubmitJob(ticket, 1);
    });
    return HandOutLogged(result, pszResp);
}

LONG OrbStuff::GetData(const WCHAR* szXDMPath, const WCHAR* szXDMPrefixes, BSTR* pException,
                       MallocText<WCHAR>* pszResp) noexcept {
    const TraceScope trace("OrbStuff::GetData", ".\\OrbStuff");
    if (!szXDMPath) {
        Log(3, "OrbStuff::GetData Parameter \"szXDMPath\" is NULL!");
        return kNoPath;
    }
    Log(3, "OrbStuff::Establishing GetData connection to %s\n", m_szServiceURI.get());
    CString result;
    GuardedCall(3, "Exception thrown attempting the GetData() call.\n", [&] {
        const CString path = OutgoingText(szXDMPath);
        const CString prefixes = OutgoingText(szXDMPrefixes);
        Log(3, "calling GetData on mJobControl\n");
        result = Remote().GetData(path, prefixes, pException, 1);
    });
    return HandOutLogged(result, pszResp);
}

bool OrbStuff::SetData(const WCHAR* szXDMSetDocument, bool failureDetails, WCHAR** pszText) noexcept {
    const TraceScope trace("OrbStuff::SetData", ".\\OrbStuff");
    if (!szXDMSetDocument) {
        Log(3, "OrbStuff::SetData Parameter \"szXDMSetDocument\" is NULL!");
        return false;
    }
    Log(3, "OrbStuff::Establishing SetData connection to %s\n", m_szServiceURI.get());
    bool done = false;
    GuardedCall(3, "Exception thrown while attempting to call SetData().\n", [&] {
        const CString document = OutgoingText(szXDMSetDocument);
        Log(3, "calling SetData on mJobControl\n");
        done = Remote().SetData(document, failureDetails, pszText, 1);
    });
    if (done) {
        Log(2, "result: true!\n\n");
    } else {
        Log(2, "result: false!\n\n");
    }
    return done;
}

}  // namespace wncom
