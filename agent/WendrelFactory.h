// The agent parent: makes agents.
#pragma once

#include <windows.h>

#include <ole2.h>

#include "common/server/Dispatch.h"
#include "wncom/Logging.h"
#include "wncom/wnCOM.h"

namespace wncom {

// Keeps nothing between calls. It does not initialise COM: all creation runs in the caller's apartment.
class CWendrelParent : public server::Dispatch<IInternalWendrelParent> {
public:
    CWendrelParent();
    ~CWendrelParent();
    CWendrelParent(const CWendrelParent&) = delete;
    CWendrelParent& operator=(const CWendrelParent&) = delete;

    void* FindInterface(REFIID iid) noexcept;

    // Makes an agent and its transport description and initialises the agent. On success the client holds the only
    // reference to the agent; on a failure after the checks of the arguments, ppIWendrel holds null.
    HRESULT STDMETHODCALLTYPE CreateWendrel(IUnknown* pIServiceDesc, IWendrel** ppIWendrel) override;

    // Creates one COM object, in process or in a process of its own; null on failure.
    virtual HRESULT CreateIFace(REFCLSID clsid, REFIID iid, void** object);

private:
    HRESULT MakeAgent(IUnknown* serviceDescription, IWendrel** agent);

    LogReference m_logging;
};

}  // namespace wncom
