#include "agent/Wendrel.h"

#include "common/Guard.h"
#include "common/server/Object.h"
#include "wncom/Bstr.h"
#include "wncom/TraceScope.h"

namespace wncom {

CWendrel::CWendrel() {
    m_logging.Start("CWendrel");
    const TraceScope trace("CWendrel::CWendrel", "Wendrel");
}

CWendrel::~CWendrel() {
    const TraceScope trace("CWendrel::~CWendrel", "Wendrel");
    m_serviceDesc.Release();
    m_transportDesc.Release();
    m_logging.End();
}

void* CWendrel::FindInterface(REFIID iid) noexcept {
    if (iid == IID_IUnknown || iid == IID_IDispatch) return static_cast<IWendrel*>(this);
    return server::FindAmong<IWendrel, IWNInitByParent, IComBaseEvent, ISessionControl, IJobControl, IWNXDMAccess,
                             IWNEventAccess>(this, iid);
}

bool ValidateSD(IServiceDesc& sd) {
    Bstr text;
    if (FAILED(sd.GetID(text.put())) || text.empty()) {
        Log(1, "ValidateSD() ID failed\n");
        return false;
    }
    if (FAILED(sd.GetAddress(text.put())) || text.empty()) {
        Log(1, "ValidateSD() address failed\n");
        return false;
    }
    return true;
}

HRESULT CWendrel::InitByParent(IUnknown* pISD, IUnknown* pTD) {
    return Guarded([&] {
        const TraceScope trace("CWendrel::InitByParent", "Wendrel");
        return Initialise(pISD, pTD);
    });
}

HRESULT CWendrel::Initialise(IUnknown* serviceDescription, IUnknown* transportDescription) {
    if (!transportDescription) return E_FAIL;
    if (m_serviceDesc) return E_UNEXPECTED;

    // Nothing is kept before both are known to be good. The service description is asked first, so that a bad one is
    // logged whatever the other is.
    CPComPtr<IServiceDesc> service;
    if (serviceDescription) {
        const HRESULT status = CPComPtr<IUnknown>(serviceDescription).QueryInterface(service);
        if (FAILED(status)) Log(1, "Couldn't get SD interface - %08lx\n", status);
    }
    if (!service || !ValidateSD(*service.get())) return E_FAIL;
    CPComPtr<ITransportDesc> transport;
    if (FAILED(CPComPtr<IUnknown>(transportDescription).QueryInterface(transport)) || !transport) return E_FAIL;
    m_transportDesc = transport;
    m_serviceDesc = service;
    return Connect("failed SD->GetAddress()==%08lx\n").status;
}

CWendrel::Connection CWendrel::Connect(const char* failure) {
    Bstr address;
    const HRESULT status = m_serviceDesc->GetAddress(address.put());
    if (FAILED(status) || !address) {
        Log(1, failure, status);
        return {status, false};
    }
    Log(3, "ServiceURI=%S\n", address.get());
    m_bridge.SetServiceURI(address.get());
    return {status, true};
}

HRESULT CWendrel::StartSession() {
    return Guarded([&] { return StartSessionOfService(); });
}

HRESULT CWendrel::StartSessionOfService() {
    const TraceScope trace("CWendrel::StartSession", "Wendrel");
    if (!m_serviceDesc) return E_UNEXPECTED;
    const Connection connection = Connect("failed StartSession SD->GetAddress()==%08lx\n");
    if (!connection.made) return connection.status;
    const MallocText<WCHAR> context = m_bridge.StartSession();
    Log(3, "szWc is %Sn", context.get());
    if (context) {
        const Bstr text(context.get());
        // Null would clear the context.
        if (!text) return E_OUTOFMEMORY;
        m_transportDesc->SetSessionContext(text.get());
    }
    return connection.status;
}

HRESULT CWendrel::EndSession() {
    return Guarded([&] {
        const TraceScope trace("CWendrel::EndSession", "Wendrel");
        if (!m_serviceDesc) return E_UNEXPECTED;
        const Connection connection = Connect("failed SD->GetAddress()==%08lx\n");
        if (connection.made) m_bridge.EndSession();
        return connection.status;
    });
}

HRESULT CWendrel::RestartSession() {
    return Guarded([&] {
        const TraceScope trace("CWendrel::RestartSession", "Wendrel");
        if (m_transportDesc) m_transportDesc->SetSessionContext(nullptr);
        return StartSessionOfService();
    });
}

}  // namespace wncom
