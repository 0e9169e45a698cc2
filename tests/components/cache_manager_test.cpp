// What the cache manager keeps, and what it refuses.
#include <filesystem>
#include <limits>

#include "tests/components/CacheFixture.h"

namespace wncom::test {
namespace {

class CacheManager : public CacheFixture {
protected:
    CPComPtr<IXMLCacheMgr> m_manager = Create<IXMLCacheMgr>(kProgIdXMLCacheMgr);
};

TEST_F(CacheManager, KeepsTheLastTicketOfEachKey) {
    EXPECT_EQ(Fetch("a"), Hex(S_FALSE));
    EXPECT_EQ(Hex(Put("a", "<first/>")), Hex(S_OK));
    EXPECT_EQ(Hex(Put("a", "<second/>")), Hex(S_OK));
    EXPECT_EQ(Hex(Put("b", "")), Hex(S_OK));
    EXPECT_EQ(Fetch("a"), "<second/>");
    EXPECT_EQ(Fetch("b"), "") << "an empty ticket is one";
    EXPECT_EQ(Hex(m_manager->RemoveXML(OLESTR("a"))), Hex(S_OK));
    EXPECT_EQ(Hex(m_manager->RemoveXML(OLESTR("a"))), Hex(S_FALSE));
    EXPECT_EQ(Fetch("a"), Hex(S_FALSE));
    EXPECT_EQ(DebugOutput(), "");
}

TEST_F(CacheManager, KeysAndTicketsMayHoldAnyCharacters) {
    const OLECHAR halfPair = 0xD800;
    WideText ticket = Wide("<t>");
    ticket.push_back(0);
    ticket.push_back(halfPair);
    const WideText keys[] = {Wide(""),
                             Wide("'; DROP TABLE ticket; --"),
                             WideText(1, halfPair),
                             WideText(2, halfPair),
                             Wide("A"),
                             Wide("a"),
                             WideText(100'000, 'k')};
    for (const WideText& key : keys) {
        // The agent's key lies in a buffer whose recorded length is its capacity: it ends at its terminator.
        const Bstr longer(key + OLECHAR() + Wide("rubbish"));
        EXPECT_EQ(Hex(m_manager->PutXML(longer.get(), Bstr(ticket + key).get(), 60, kCacheFlags)), Hex(S_OK));
    }
    for (const WideText& key : keys) {
        Bstr found;
        EXPECT_EQ(Hex(m_manager->FetchXML(key.c_str(), kCacheFlags, found.put())), Hex(S_OK));
        EXPECT_TRUE(found.view() == ticket + key);
    }
}

TEST_F(CacheManager, ALargeTicketIsKeptWhole) {
    const WideText large(50'000'000, 'x');
    EXPECT_EQ(Hex(m_manager->PutXML(OLESTR("large"), Bstr(large).get(), 60, kCacheFlags)), Hex(S_OK));
    Bstr found;
    EXPECT_EQ(Hex(m_manager->FetchXML(OLESTR("large"), kCacheFlags, found.put())), Hex(S_OK));
    EXPECT_TRUE(found.view() == large);
}

TEST_F(CacheManager, RefusesWhatItDoesNotOffer) {
    Bstr found;
    for (const LONG flags : {0, 1, 64, 66, -1}) {
        EXPECT_EQ(Hex(m_manager->PutXML(OLESTR("k"), nullptr, 60, flags)), Hex(E_INVALIDARG));
        EXPECT_EQ(Hex(m_manager->FetchXML(OLESTR("k"), flags, found.put())), Hex(E_INVALIDARG));
    }
    for (const LONG seconds : {LONG{0}, LONG{-1}, std::numeric_limits<LONG>::min()}) {
        EXPECT_EQ(Hex(m_manager->PutXML(OLESTR("k"), nullptr, seconds, kCacheFlags)), Hex(E_INVALIDARG));
    }
    EXPECT_EQ(Hex(m_manager->PutXML(nullptr, nullptr, 60, kCacheFlags)), Hex(E_INVALIDARG));
    EXPECT_EQ(Hex(m_manager->FetchXML(nullptr, kCacheFlags, found.put())), Hex(E_INVALIDARG));
    EXPECT_EQ(Hex(m_manager->FetchXML(OLESTR("k"), kCacheFlags, nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(m_manager->RemoveXML(nullptr)), Hex(E_INVALIDARG));
    EXPECT_FALSE(std::filesystem::exists(m_path)) << "nothing was to be kept";
}

TEST_F(CacheManager, ADatabaseCanBeLookedInto) {
    EXPECT_EQ(Hex(Put("a", "<a/>", 259200)), Hex(S_OK));
    EXPECT_EQ(Hex(Put("b", "<b/>", std::numeric_limits<LONG>::max())), Hex(S_OK));
    Sqlite database(m_path);
    EXPECT_EQ(database.Run("SELECT expires - stored FROM ticket ORDER BY expires LIMIT 1"), "259200");
    EXPECT_EQ(database.Run("SELECT max(expires - stored) FROM ticket"), "2147483647");
    EXPECT_EQ(database.Run("SELECT CAST(key AS TEXT) FROM ticket ORDER BY expires LIMIT 1"), "a") << "for people";
    EXPECT_EQ(Fetch("b"), "<b/>");
}

TEST_F(CacheManager, AnotherFileCountsFromTheNextManagerOn) {
    ASSERT_EQ(Hex(Put("a", "<old/>")), Hex(S_OK));
    SetCacheFile("");
    EXPECT_EQ(Fetch("a"), Hex(S_FALSE));
    const std::filesystem::path windows = std::filesystem::path(PortMapPath()).parent_path();
    EXPECT_TRUE(std::filesystem::exists(windows / "xmlcache.db")) << "the default";
    SetCacheFile(m_path);
    EXPECT_EQ(Fetch("a"), "<old/>");
    SetCacheFile(std::string(2000, 'x'));
    EXPECT_EQ(Hex(Put("a", "<a/>")), Hex(HRESULT_FROM_WIN32(ERROR_MORE_DATA)));
    EXPECT_EQ(DebugOutput(), "XMLCacheMgr: the registry value \"cachefile\" cannot be read\n");
}

}  // namespace
}  // namespace wncom::test
