// The capabilities ticket: from the cache, or through a session from the service.
#include "tests/agent/CapabilitiesFixture.h"

namespace wncom::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

TEST_F(CapabilitiesTest, AFetchedTicketIsStored) {
    SetLifetime("3");
    EXPECT_EQ(Ask(), "<caps/>");
    EXPECT_THAT(Script().CallsOf("XMLCacheMgr"),
                ElementsAre("XMLCacheMgr.create()", "XMLCacheMgr.FetchXML(device-7-capTicket, 65)",
                            "XMLCacheMgr.PutXML(device-7-capTicket, <caps/>, 259200, 65)"));
    std::vector<std::string> lines;
    for (const std::string& line : Log()) {
        for (const char* part : {"cap ticket", "SimpleCache", "CapTicket not"}) {
            if (line.find(part) == std::string::npos) continue;
            lines.push_back(line);
            break;
        }
    }
    EXPECT_THAT(lines,
                ElementsAre("3 Read cap ticket cache life from settings -- 3 days.",
                            "3 WNSimpleCache::FromCache attempting to retrieve XML as device-7-capTicket",
                            "2 WNSimpleCache::FromCache failed 1", "3 CapTicket not in cache, trying via Orb",
                            "3 WNSimpleCache::ToCache attempting to cache 7 bytes of XML as device-7-capTicket for "
                            "3 days"));
}

// The service, its session and its port map may be out of reach.
TEST_F(CapabilitiesTest, ATicketFromTheCacheNeedsNoSessionAndNoRemoteCall) {
    Script().Answer(kCachedTicket, "<cached/>");
    for (const char* unreachable : {"FakeTransport.Initialize", "FakeTransport.StartSession", kTicketOfService}) {
        Script().FailIn(unreachable, {Fault::Integer});
    }
    EXPECT_EQ(Ask(), "<cached/>");
    EXPECT_THAT(Script().Calls(), ElementsAre("ServiceDesc.GetID()", "XMLCacheMgr.create()",
                                              "XMLCacheMgr.FetchXML(device-7-capTicket, 65)"));
    EXPECT_THAT(Log(), ElementsAre("3 Read cap ticket cache life from settings -- 1 days.",
                                   "3 WNSimpleCache::FromCache attempting to retrieve XML as device-7-capTicket",
                                   "3 WNSimpleCache::FromCache retrieved 9 bytes of XML from cache"));
}

TEST_F(CapabilitiesTest, TheLifetimeComesFromTheSettings) {
    struct Case {
        const char* text;  // null: no such key
        const char* seconds;
    };
    EXPECT_EQ(Ask(), "<caps/>") << "no file at all";
    EXPECT_EQ(StoredLifetime(), "86400");
    for (const Case& given : {Case{nullptr, "86400"}, Case{"", "86400"}, Case{"3", "259200"}, Case{"0", "none"},
                              Case{"soon", "none"}, Case{"24855", "2147472000"}, Case{"24856", "2147483647"},
                              Case{"4000000000", "2147483647"}, Case{"-1", "2147483647"}}) {
        Begin();
        SetLifetime(given.text);
        EXPECT_EQ(Ask(), "<caps/>");
        EXPECT_EQ(StoredLifetime(), given.seconds) << (given.text ? given.text : "no key");
    }
}

TEST_F(CapabilitiesTest, ALifetimeOfZeroTurnsTheCacheOff) {
    SetLifetime("0");
    Script().Answer(kCachedTicket, "<cached/>");
    EXPECT_EQ(Ask(), "<caps/>");
    Script().Answer(kTicketOfService, "");
    EXPECT_EQ(Ask(), Hex(E_FAIL));
    EXPECT_THAT(Script().CallsOf("XMLCacheMgr"), ElementsAre("XMLCacheMgr.create()", "XMLCacheMgr.create()"));
    EXPECT_THAT(Log(), IsSupersetOf({"2 capabilities ticket cache disabled",
                                     "2 GetCapabiltiesTicket failed with a 0 len ticket",
                                     "2 capabilities ticket cache disabled"}));
}

TEST_F(CapabilitiesTest, WithoutAManagerTheTicketComesFromTheService) {
    for (const Misbehaviour& failure : {Misbehaviour{Fault::Status, E_ACCESSDENIED}, Misbehaviour{Fault::Null},
                                        Misbehaviour{Fault::OutOfMemory}, Misbehaviour{Fault::Integer}}) {
        Begin();
        Script().FailIn("XMLCacheMgr.create", failure);
        EXPECT_EQ(Ask(), "<caps/>");
        EXPECT_THAT(
            Log(),
            IsSupersetOf({"1 WNSimpleCache::SimpleCache not init'ed", "3 CapTicket not in cache, trying via Orb",
                          "1 WNSimpleCache::SimpleCache not init'ed", "2 Failed to cache capabilities ticket"}));
    }
}

TEST_F(CapabilitiesTest, AManagerThatFailsCostsNoTicket) {
    struct Case {
        Misbehaviour failure;
        const char* status;
    };
    for (const Case& given :
         {Case{{Fault::Status, E_ACCESSDENIED}, "80070005"}, Case{{Fault::OutOfMemory}, "8007000e"},
          Case{{Fault::CommonException}, "8000ffff"}, Case{{Fault::Integer}, "8000ffff"}}) {
        Begin();
        Script().FailIn("XMLCacheMgr.FetchXML", given.failure);
        Script().FailIn("XMLCacheMgr.PutXML", given.failure);
        EXPECT_EQ(Ask(), "<caps/>");
        EXPECT_THAT(Log(), IsSupersetOf({std::string("2 WNSimpleCache::FromCache failed ") + given.status,
                                         std::string("1 WNSimpleCache::ToCache failed ") + given.status,
                                         std::string("2 Failed to cache capabilities ticket")}));
    }
    Begin();
    Script().FailIn("XMLCacheMgr.FetchXML", {Fault::Null});
    EXPECT_EQ(Ask(), "<caps/>") << "success without a text is no ticket";
    EXPECT_THAT(Log(), Contains("2 WNSimpleCache::FromCache failed 0"));
}

TEST_F(CapabilitiesTest, WithoutAnIdentifierTheKeyIsTheSuffixAlone) {
    for (const Misbehaviour& failure :
         {Misbehaviour{Fault::Status, E_FAIL}, Misbehaviour{Fault::Null}, Misbehaviour{Fault::Integer}}) {
        Begin();
        Script().FailIn("ServiceDesc.GetID", failure);
        EXPECT_EQ(Ask(), "<caps/>");
        EXPECT_THAT(Script().CallsOf("XMLCacheMgr.FetchXML"), ElementsAre("XMLCacheMgr.FetchXML(-capTicket, 65)"));
    }
}

TEST_F(CapabilitiesTest, TheIdentifierIsTheKeyWhateverItHolds) {
    const std::string identifier = std::string(5000, 'i') + "\xE2\x82\xAC '\"\\";
    Script().Answer("ServiceDesc.GetID", identifier);
    EXPECT_EQ(Ask(), "<caps/>");
    EXPECT_THAT(Script().CallsOf("XMLCacheMgr.FetchXML"),
                ElementsAre("XMLCacheMgr.FetchXML(" + identifier + "-capTicket, 65)"));
}

TEST_F(CapabilitiesTest, NothingIsStoredWhenThereIsNoTicket) {
    Script().Answer(kTicketOfService, "");
    EXPECT_EQ(Ask(), Hex(E_FAIL));
    EXPECT_THAT(Log(), Contains("2 GetCapabiltiesTicket failed with a 0 len ticket"));
    Script().FailIn("ServiceDesc.GetAddress", {Fault::Status, E_ABORT});
    EXPECT_EQ(Ask(), Hex(E_FAIL)) << "no session";
    EXPECT_THAT(Script().CallsOf("XMLCacheMgr.PutXML"), IsEmpty());
}

TEST_F(CapabilitiesTest, EveryOutsideCallMayFailInEveryWay) {
    EXPECT_EQ(Ask(), "<caps/>");
    const unsigned calls = Script().CallCount();
    ASSERT_GT(calls, 20U) << "the walk must cover the whole road";
    const int objects = Script().LiveObjects();
    for (const Fault fault :
         {Fault::Status, Fault::Null, Fault::CommonException, Fault::OutOfMemory, Fault::Integer}) {
        for (unsigned number = 1; number <= calls; ++number) {
            Begin();
            Script().FailAtCall(number, {fault, E_ABORT});
            const std::string ticket = Ask();
            SCOPED_TRACE(Script().Calls().at(number - 1));
            EXPECT_THAT(ticket, testing::AnyOf("<caps/>", Hex(E_FAIL)));
            Begin();
            EXPECT_EQ(Ask(), "<caps/>") << "and again";
            EXPECT_EQ(Script().LiveObjects(), objects);
        }
    }
}

TEST_F(CapabilitiesTest, ANullPlaceIsRefused) {
    EXPECT_EQ(Hex(m_agent->GetCapabilitiesTicket(nullptr)), Hex(E_FAIL));
    EXPECT_THAT(Log(), ElementsAre("3 CWendrel::GetCapabilitiesTicket Parameter \"pTicket\" is NULL!"));
    EXPECT_THAT(Script().Calls(), IsEmpty());
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

TEST_F(SharedCacheTest, ALargeTicketIsKeptWhole) {
    const std::string large(50'000'000, 'x');
    Script().Answer(kTicketOfService, large);
    EXPECT_TRUE(Ask() == large);
    Script().ForgetCalls();
    EXPECT_TRUE(Ask() == large);
    EXPECT_THAT(Script().CallsOf("FakeTransport"), IsEmpty());
}

TEST_F(SharedCacheTest, AnUnusableCacheCostsNoTicket) {
    SetRegistryValue("SOFTWARE\\Quillbeck\\QBNorvel\\XMLCache", "cachefile", "/proc/no/such/cache.db");
    EXPECT_EQ(Ask(), "<caps/>");
    EXPECT_THAT(Log(), Contains("2 Failed to cache capabilities ticket"));
}

}  // namespace
}  // namespace wncom::test
