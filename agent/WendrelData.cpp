// The agent's device-data traffic.
#include <utility>

#include "agent/CopyOut.h"
#include "agent/Wendrel.h"
#include "common/Guard.h"
#include "wncom/Bstr.h"
#include "wncom/TraceScope.h"

namespace wncom {

HRESULT CWendrel::GetData(BSTR xdmPath, BSTR xdmPrefixes, BSTR* ExceptionInfo, BSTR* xdmDocument) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::GetData", "Wendrel");
        if (xdmDocument) *xdmDocument = nullptr;
        if (ExceptionInfo) *ExceptionInfo = nullptr;
        if (const HRESULT status = StartSession(); FAILED(status)) return status;

        MallocText<WCHAR> document;
        const LONG length = m_bridge.GetData(xdmPath, xdmPrefixes, ExceptionInfo, &document);
        if (length < 0 || !document) {
            Log(1, "Orb.GetData failed with %d length ticket\n", length);
            return E_FAIL;
        }
        // A text that the remote object left beside its document is not for the client.
        if (ExceptionInfo) Bstr().attach(std::exchange(*ExceptionInfo, nullptr));
        return xdmDocument ? CopyOut(document.get(), xdmDocument) : S_OK;
    });
}

HRESULT CWendrel::SetData(BSTR xdmSetDocument, LONG FailureDetails, BSTR* ExceptionInfo) {
    return Guarded([&]() -> HRESULT {
        const TraceScope trace("CWendrel::SetData", "Wendrel");
        if (const HRESULT status = StartSession(); FAILED(status)) return status;

        WCHAR* slot = nullptr;
        const bool done = m_bridge.SetData(xdmSetDocument, FailureDetails != 0, &slot);
        const MallocText<WCHAR> text(slot);
        if (!done) {
            Log(1, "Orb.SetData returned false\n");
            return E_FAIL;
        }
        if (!ExceptionInfo) return S_OK;
        *ExceptionInfo = nullptr;
        return text ? CopyOut(text.get(), ExceptionInfo) : S_OK;
    });
}

}  // namespace wncom
