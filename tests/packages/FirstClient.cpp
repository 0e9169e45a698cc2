// The first lines that a client's developer writes: a component by its ProgID, and the SDK's logger. Built by the
// package tests against what is installed.
#include "wncom/CPComPtr.h"
#include "wncom/Logging.h"
#include "wncom/TraceScope.h"
#include "wncom/XMLCacheMgr.h"

int main() {
    if (FAILED(CoInitialize(nullptr))) return 1;
    int status = 2;
    {
        const wncom::TraceScope trace("main", "FirstClient");
        wncom::CPComPtr<wncom::IXMLCacheMgr> cache;
        if (SUCCEEDED(cache.CreateInstance(wncom::kProgIdXMLCacheMgr))) status = 0;
        wncom::Log(1, "status %d", status);
    }
    CoUninitialize();
    return status;
}
