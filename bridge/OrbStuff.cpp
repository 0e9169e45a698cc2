// The bridge's connection and its sessions.
#include "bridge/OrbStuff.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "bridge/RemoteCall.h"
#include "bridge/TextConversions.h"
#include "wncom/Logging.h"
#include "wncom/TraceScope.h"

namespace wncom {

OrbStuff::OrbStuff() noexcept { Log(3, "OrbStuff::TRACESIZE=%u\n", kTraceSize); }

OrbStuff::~OrbStuff() {
    const TraceScope trace("OrbStuff::~OrbStuff", ".\\OrbStuff");
    m_szServiceURI.reset();
    Disconnect();
    mFactory.reset();
}

void OrbStuff::SetServiceURI(const WCHAR* szServiceURI) noexcept {
    m_szServiceURI.reset();
    if (IsNullOrEmpty(szServiceURI)) return;
    m_szServiceURI = WCharToUtf8(szServiceURI);
    Log(3, "Entering SetServiceURIbrap\n");
    // The object of the former address must not outlive it, not even when memory runs out here.
    Disconnect();
    try {
        if (!m_szServiceURI) throw std::bad_alloc();
        const CString address(m_szServiceURI.get());
        if (!mFactory) {
            mFactory = std::make_unique<JobControlFactory>();
            mFactory->Initialize();
        }
        mJobControl = mFactory->Create(address);
        if (mJobControl) Log(3, "Create() call on factory succeeded\n");
        try {
            Remote().Initialize(address, nullptr);
        } catch (...) {
            Log(3, "%s in .\\OrbStuff @ line 77.\n", "(At RmtJobControl Initialize call) unexpected exception");
        }
    } catch (...) {
        Log(3, "Create() call on factory failed\n");
    }
}

MallocText<WCHAR> OrbStuff::StartSession() noexcept {
    const TraceScope trace("OrbStuff::StartSession", ".\\OrbStuff");
    CString sessionId;
    GuardedCall(1, "Got EXCEPTION calling RmtJobControl->StartSession\n",
                [&] { sessionId = Remote().StartSession(); });
    return CStringToWChar(sessionId);
}

void OrbStuff::EndSession() noexcept {
    const TraceScope trace("OrbStuff::EndSession", ".\\OrbStuff");
    GuardedCall(1, "ORBStuff::EndSession failed!", [&] { Remote().EndSession(); });
}

void OrbStuff::SetSessionID(const WCHAR* szSessionID) noexcept {
    const TraceScope trace("OrbStuff::SetSessionID", ".\\OrbStuff");
    Log(3, "OrbStuff::szSessionID: %S\n", szSessionID);
    GuardedCall(1, "ORBStuff::SetSessionID failed!", [&] { Remote().SetSessionID(CString(szSessionID)); });
}

// A missing object ends a guarded call as an exception of its own would.
RmtJobControl& OrbStuff::Remote() const {
    if (!mJobControl) throw std::logic_error("not connected");
    return *mJobControl;
}

void OrbStuff::Disconnect() noexcept {
    if (mJobControl) mFactory->Delete(std::exchange(mJobControl, nullptr));
}

}  // namespace wncom
