// The capabilities ticket: from the cache, or through a session from the service.
#include "tests/agent/CapabilitiesFixture.h"
#include "tests/support/Golden.h"

namespace wncom::test {
namespace {

// Later calls in one situation see the same faults.
struct Situation {
    const char* name;
    void (*prepare)();
    const char* lifetime = nullptr;  // null: not set
};

const Situation kSituations[] = {
    {"fetched and stored", [] {}, "3"},
    {"from the cache, with everything else out of reach",
     [] {
         Script().Answer(kCachedTicket, "<cached/>");
         Script().FailIn("FakeTransport.maker", {Fault::Integer});
     }},
    {"the cache is turned off", [] { Script().Answer(kCachedTicket, "<cached/>"); }, "0"},
    {"the cache is turned off and there is no ticket", [] { Script().Answer(kTicketOfService, ""); }, "0"},
    {"no manager",
     [] {
         Script().FailIn("XMLCacheMgr.create", {Fault::Status, E_ACCESSDENIED});
     }},
    {"a manager that is created as nothing", [] { Script().FailIn("XMLCacheMgr.create", {Fault::Null}); }},
    {"a manager that refuses",
     [] {
         Script().FailIn("XMLCacheMgr.FetchXML", {Fault::Status, E_ACCESSDENIED});
         Script().FailIn("XMLCacheMgr.PutXML", {Fault::Status, E_ACCESSDENIED});
     }},
    {"a manager that throws",
     [] {
         Script().FailIn("XMLCacheMgr.FetchXML", {Fault::Integer});
         Script().FailIn("XMLCacheMgr.PutXML", {Fault::OutOfMemory});
     }},
    {"a manager that finds nothing and says so", [] { Script().FailIn("XMLCacheMgr.FetchXML", {Fault::Null}); }},
    {"no identifier", [] { Script().FailIn("ServiceDesc.GetID", {Fault::Integer}); }},
    {"an identifier outside every code page", [] { Script().Answer("ServiceDesc.GetID", "\xE6\xBC\xA2 '\"\\%s"); }},
    {"no ticket", [] { Script().Answer(kTicketOfService, ""); }},
    {"no session",
     [] {
         Script().FailIn("ServiceDesc.GetAddress", {Fault::Status, E_ABORT});
     }},
};

TEST_F(CapabilitiesTest, ComeFromTheCacheOrTheService) {
    std::string transcript;
    for (const Situation& situation : kSituations) {
        Begin();
        SetLifetime(situation.lifetime);
        situation.prepare();
        const std::string answer = Ask();
        transcript += std::string("== ") + situation.name + ": " + answer + "\n" + Happened();
    }
    Begin();
    const HRESULT status = m_agent->GetCapabilitiesTicket(nullptr);
    transcript += "== no place: " + Hex(status) + "\n" + Happened();
    ExpectGolden("agent/golden/capabilities.log", transcript);
}

TEST_F(CapabilitiesTest, TheLifetimeComesFromTheSettings) {
    struct Case {
        const char* text;
        const char* seconds;  // as PutXML gets them; null when nothing is stored
    };
    for (const Case& given : {Case{nullptr, "86400"}, Case{"", "86400"}, Case{"soon", nullptr},
                              Case{"24855", "2147472000"}, Case{"24856", "2147483647"}, Case{"-1", "2147483647"}}) {
        Begin();
        SetLifetime(given.text);
        EXPECT_EQ(Ask(), "<caps/>");
        const std::vector<std::string> puts = Script().CallsOf("XMLCacheMgr.PutXML");
        const std::string seconds = given.seconds ? given.seconds : "";
        EXPECT_EQ(puts.empty() ? "" : puts.back(),
                  seconds.empty() ? "" : "XMLCacheMgr.PutXML(device-7-capTicket, <caps/>, " + seconds + ", 65)");
    }
}

TEST_F(CapabilitiesTest, EveryOutsideCallMayFailInEveryWay) {
    EXPECT_EQ(Ask(), "<caps/>");
    const unsigned calls = Script().CallCount();
    ASSERT_GT(calls, 20U) << "the walk must cover all calls";
    const int objects = Script().LiveObjects();
    for (const Fault fault :
         {Fault::Status, Fault::Null, Fault::CommonException, Fault::OutOfMemory, Fault::Integer}) {
        for (unsigned number = 1; number <= calls; ++number) {
            Begin();
            Script().FailAtCall(number, {fault, E_ABORT});
            const std::string ticket = Ask();
            SCOPED_TRACE(Script().Calls().at(number - 1));
            EXPECT_TRUE(ticket == "<caps/>" || ticket == Hex(E_FAIL)) << ticket;
            Begin();
            EXPECT_EQ(Ask(), "<caps/>") << "and again";
            EXPECT_EQ(Script().LiveObjects(), objects);
        }
    }
}

TEST_F(SharedCacheTest, AnExpiredTicketIsFetchedAnew) {
    EXPECT_EQ(Ask(), "<caps/>");
    Script().Answer(kTicketOfService, "<new/>");
    EXPECT_EQ(Ask(), "<caps/>");
    const auto manager = Create<IXMLCacheMgr>(kProgIdXMLCacheMgr);
    ASSERT_EQ(Hex(manager->PutXML(OLESTR("device-7-capTicket"), Text("<short/>").get(), 1, kCacheFlags)), Hex(S_OK));
    Sleep(1100);
    EXPECT_EQ(Ask(), "<new/>");
}

}  // namespace
}  // namespace wncom::test
