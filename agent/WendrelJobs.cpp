// The agent's job traffic.
#include <wchar.h>

#include "agent/CopyOut.h"
#include "agent/SubmitResponse.h"
#include "agent/Wendrel.h"
#include "common/Guard.h"
#include "wncom/Bstr.h"
#include "wncom/TraceScope.h"

namespace wncom {

HRESULT CWendrel::SendIntentTicket(BSTR Ticket, IUnknown** ppITransportDesc) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::SendIntentTicket", "Wendrel");
        if (!ppITransportDesc) {
            Log(3, "CWendrel::SendIntentTicket Parameter \"ppITransportDesc\" is NULL!");
            return E_FAIL;
        }
        const HRESULT status = SubmitJob(Ticket, nullptr);
        if (FAILED(status)) {
            Log(1, "failed SubmitJob()==%08lx\n", status);
            return status;
        }
        *ppITransportDesc = CPComPtr<ITransportDesc>(m_transportDesc).detach();
        return status;
    });
}

HRESULT CWendrel::SubmitJob(BSTR intentTicket, BSTR* ResponseTicket) {
    return Guarded([&] {
        const TraceScope trace("CWendrel::SubmitJob", "Wendrel");
        if (ResponseTicket) *ResponseTicket = nullptr;
        return Submit(intentTicket, ResponseTicket);
    });
}

HRESULT CWendrel::Submit(BSTR intentTicket, BSTR* responseTicket) {
    if (const HRESULT status = StartSession(); FAILED(status)) return status;

    MallocText<WCHAR> response;
    const LONG length = m_bridge.SubmitJob(intentTicket, &response);
    if (length < 0 || !response) {
        Log(1, "Orb.SubmitJob failed with %d length ticket\n", length);
        return E_FAIL;
    }
    if (responseTicket) {
        if (const HRESULT status = CopyOut(response.get(), responseTicket); FAILED(status)) return status;
    }

    const WideView answer(response.get(), wcslen(response.get()));
    const DataAddress data = ParseSubmitResponse4URI(answer);
    const HRESULT status =
        m_transportDesc->SetTargetURI(data.address.get(), 0, data.addressType, data.deliveryMethod);
    if (FAILED(status)) return status;
    return m_transportDesc->SetJobURI(ParseSubmitResponse4JobURI(answer).get());
}

HRESULT CWendrel::CancelJobWithMessage(BSTR, BSTR) {
    const TraceScope trace("CWendrel::CancelJobWithMessage", "Wendrel");
    return E_FAIL;
}

HRESULT CWendrel::CancelJob(BSTR) {
    const TraceScope trace("CWendrel::CancelJob", "Wendrel");
    return E_FAIL;
}

HRESULT CWendrel::QueryJobStatus(BSTR, BSTR* intentTicket) {
    const TraceScope trace("CWendrel::QueryJobStatus", "Wendrel");
    if (intentTicket) *intentTicket = nullptr;
    return E_FAIL;
}

}  // namespace wncom
