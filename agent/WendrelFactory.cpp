#include "agent/WendrelFactory.h"

#include "common/Guard.h"
#include "common/server/Object.h"
#include "wncom/CPComPtr.h"
#include "wncom/Descriptions.h"
#include "wncom/TraceScope.h"

namespace wncom {

CWendrelParent::CWendrelParent() {
    m_logging.Start("CWendrelParent");
    const TraceScope trace("CWendrelParent::CWendrelParent", "WendrelFactory");
}

CWendrelParent::~CWendrelParent() {
    const TraceScope trace("CWendrelParent::~CWendrelParent", "WendrelFactory");
    m_logging.End();
}

void* CWendrelParent::FindInterface(REFIID iid) noexcept {
    if (iid == IID_IUnknown || iid == IID_IDispatch) return static_cast<IInternalWendrelParent*>(this);
    return server::FindAmong<IInternalWendrelParent>(this, iid);
}

HRESULT CWendrelParent::CreateWendrel(IUnknown* pIServiceDesc, IWendrel** ppIWendrel) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrelParent::CreateWendrel", "WendrelFactory");
        if (!pIServiceDesc) {
            Log(3, "CWendrelParent::CreateWendrel Parameter \"pIServiceDesc\" is NULL!");
            return E_FAIL;
        }
        if (!ppIWendrel) {
            Log(3, "CWendrelParent::CreateWendrel Parameter \"ppIWendrel\" is NULL!");
            return E_FAIL;
        }
        *ppIWendrel = nullptr;
        return MakeAgent(pIServiceDesc, ppIWendrel);
    });
}

HRESULT CWendrelParent::MakeAgent(IUnknown* serviceDescription, IWendrel** agent) {
    CPComPtr<IWendrel> wendrel;
    HRESULT status = CreateIFace(CLSID_Wendrel, IWendrel::kIid, wendrel.put_void());
    if (FAILED(status) || !wendrel) return status;
    Log(3, "Got Wendrel\n");

    CPComPtr<IWNInitByParent> init;
    status = wendrel.QueryInterface(init);
    if (FAILED(status) || !init) return status;
    Log(3, "Got WendrelInit\n");

    CPComPtr<ITransportDesc> transport;
    status = CreateIFace(CLSID_TransportDesc, ITransportDesc::kIid, transport.put_void());
    if (FAILED(status) || !transport) return status;
    Log(3, "Got TransportDesc\n");

    status = init->InitByParent(serviceDescription, transport.get());
    if (SUCCEEDED(status)) {
        Log(3, "Init OK\n");
        *agent = wendrel.detach();
    }
    return status;
}

HRESULT CWendrelParent::CreateIFace(REFCLSID clsid, REFIID iid, void** object) {
    const TraceScope trace("CWendrelParent::CreateIFace", "WendrelFactory");
    CPComPtr<IUnknown> created;
    const HRESULT status = CoCreateInstance(
        clsid, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER, iid, created.put_void());
    if (FAILED(status) || !created) {
        Log(1, "CreateIFace ERROR: CoCreateInstance Failed: 0x%X\n", status);
        created.Release();
    }
    *object = created.detach();
    return status;
}

}  // namespace wncom
