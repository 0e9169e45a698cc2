// An agent whose service has a capabilities ticket, and its cache.
#pragma once

#include <string>

#include "tests/agent/AgentFixture.h"
#include "wncom/XMLCacheMgr.h"

namespace wncom::test {

inline constexpr const char* kTicketOfService = "FakeTransport.GetWorkflowCapabilities";
inline constexpr const char* kCachedTicket = "XMLCacheMgr.FetchXML device-7-capTicket";

class CapabilitiesTest : public AgentFixture {
protected:
    CapabilitiesTest() : m_agent(Agent()) { Begin(); }

    void Begin() {
        Prepare();
        Script().Answer(kTicketOfService, "<caps/>");
    }
    // The ticket, or the status in hex; on a failure nothing may have been stored.
    std::string Ask() {
        OutText ticket;
        const HRESULT status = m_agent->GetCapabilitiesTicket(ticket.put());
        if (status == S_OK) return ticket.Shown();
        EXPECT_EQ(ticket.Shown(), "(untouched)");
        return Hex(status);
    }
    static void SetLifetime(const char* text) {
        ASSERT_TRUE(WritePrivateProfileStringA("Cache", "CapTicket", text, "qbos.ini"));
    }

    CPComPtr<IWendrel> m_agent;
};

// With the cache manager that is shipped in place of the fake one.
class SharedCacheTest : public CapabilitiesTest {
protected:
    SharedCacheTest() {
        SetRegistryValue("SOFTWARE\\Classes\\CLSID\\{599AAE1C-9214-4DFE-9959-F22B3F07719D}\\InprocServer32", nullptr,
                         ProgramFolder() + "/wnComponents.dll");
    }
};

}  // namespace wncom::test
