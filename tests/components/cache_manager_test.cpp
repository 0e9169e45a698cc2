// What the cache manager keeps, for how long, and what it refuses.
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
    const WideText kKeys[] = {Wide(""),
                              Wide("'; DROP TABLE ticket; --"),
                              WideText(1, halfPair),
                              WideText(2, halfPair),
                              Wide("A"),
                              Wide("a"),
                              WideText(100'000, 'k')};
    WideText ticket = Wide("<t>");
    ticket.push_back(0);
    ticket.push_back(halfPair);
    for (const WideText& key : kKeys) {
        EXPECT_EQ(Hex(m_manager->PutXML(key.c_str(), Bstr(WideView(ticket + key)).get(), 60, kCacheFlags)),
                  Hex(S_OK));
    }
    for (const WideText& key : kKeys) {
        Bstr found;
        EXPECT_EQ(Hex(m_manager->FetchXML(key.c_str(), kCacheFlags, found.put())), Hex(S_OK));
        EXPECT_TRUE(found.view() == ticket + key);
    }
}

// The agent's key lies in a buffer whose recorded length is its capacity.
TEST_F(CacheManager, AKeyEndsAtItsTerminator) {
    WideText longer = Wide("key");
    longer.push_back(0);
    longer += Wide("rubbish");
    EXPECT_EQ(Hex(m_manager->PutXML(Bstr(WideView(longer)).get(), nullptr, 60, kCacheFlags)), Hex(S_OK));
    EXPECT_EQ(Fetch("key"), "");
}

TEST_F(CacheManager, ALargeTicketIsKeptWhole) {
    const WideText large(50'000'000, 'x');
    EXPECT_EQ(Hex(m_manager->PutXML(OLESTR("large"), Bstr(WideView(large)).get(), 60, kCacheFlags)), Hex(S_OK));
    Bstr found;
    EXPECT_EQ(Hex(m_manager->FetchXML(OLESTR("large"), kCacheFlags, found.put())), Hex(S_OK));
    EXPECT_TRUE(found.view() == large);
}

TEST_F(CacheManager, RefusesWhatItDoesNotOffer) {
    const Bstr ticket(OLESTR("<t/>"));
    Bstr found;
    for (const LONG flags : {0, 1, 64, 66, -1}) {
        EXPECT_EQ(Hex(m_manager->PutXML(OLESTR("k"), ticket.get(), 60, flags)), Hex(E_INVALIDARG));
        EXPECT_EQ(Hex(m_manager->FetchXML(OLESTR("k"), flags, found.put())), Hex(E_INVALIDARG));
    }
    for (const LONG seconds : {LONG{0}, LONG{-1}, std::numeric_limits<LONG>::min()}) {
        EXPECT_EQ(Hex(m_manager->PutXML(OLESTR("k"), ticket.get(), seconds, kCacheFlags)), Hex(E_INVALIDARG));
    }
    EXPECT_EQ(Hex(m_manager->PutXML(nullptr, ticket.get(), 60, kCacheFlags)), Hex(E_INVALIDARG));
    EXPECT_EQ(Hex(m_manager->FetchXML(nullptr, kCacheFlags, found.put())), Hex(E_INVALIDARG));
    EXPECT_EQ(Hex(m_manager->FetchXML(OLESTR("k"), kCacheFlags, nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(m_manager->RemoveXML(nullptr)), Hex(E_INVALIDARG));
    EXPECT_EQ(Hex(m_manager->Reserved14()), Hex(E_NOTIMPL));
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

TEST_F(CacheManager, ByDefaultTheFileIsInTheWindowsDirectory) {
    SetCacheFile("");
    EXPECT_EQ(Hex(Put("a", "<a/>")), Hex(S_OK));
    const std::filesystem::path folder = std::filesystem::path(PortMapPath()).parent_path();
    EXPECT_TRUE(std::filesystem::exists(folder / "xmlcache.db"));
    EXPECT_FALSE(std::filesystem::exists(m_path));
}

TEST_F(CacheManager, AnotherFileCountsFromTheNextManagerOn) {
    ASSERT_EQ(Hex(Put("a", "<old/>")), Hex(S_OK));
    SetCacheFile("C:\\Other.db");
    EXPECT_EQ(Fetch("a"), Hex(S_FALSE));
    SetCacheFile(m_path);
    EXPECT_EQ(Fetch("a"), "<old/>");
}

TEST_F(CacheManager, ARemovedFileIsMadeAnew) {
#ifdef _WIN32
    GTEST_SKIP() << "an open file cannot be removed on Windows";
#endif
    ASSERT_EQ(Hex(Put("a", "<a/>")), Hex(S_OK));
    for (const char* part : {"", "-wal", "-shm"}) std::filesystem::remove(m_path + part);
    EXPECT_EQ(Fetch("a"), Hex(S_FALSE));
    EXPECT_EQ(Hex(Put("a", "<b/>")), Hex(S_OK));
    EXPECT_EQ(Fetch("a"), "<b/>");
    EXPECT_EQ(DebugOutput(), "");
}

}  // namespace
}  // namespace wncom::test
