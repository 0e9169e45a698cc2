// A database that cannot be used, or not as it is.
#include <signal.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "tests/components/CacheFixture.h"
#include "tests/support/ForkedProcess.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class CacheDamage : public CacheFixture {
protected:
    // A file with tickets in it that no process has open; with everything in the one file.
    void MakeDatabase(int tickets = 1) const {
        ExpectSuccess(RunInProcess([=] {
            HRESULT status = S_OK;
            for (int i = 0; i < tickets && status == S_OK; ++i) status = Put(Name(i), Ticket(i));
            return status;
        }));
        Sqlite(m_path).Run("SELECT count(*) FROM ticket");
        ASSERT_FALSE(std::filesystem::exists(m_path + "-wal"));
    }
    static std::string Name(int i) { return "ticket-" + std::to_string(i); }
    static std::string Ticket(int i) {
        std::string text = "<ticket>";
        for (int word = 0; word < 200 * i; ++word) text += std::to_string(word * i) + ' ';
        return text;
    }
    // Used again as if nothing had been.
    void ExpectReplaced(const std::string& reason) const {
        EXPECT_EQ(Hex(Put("new", "<new/>")), Hex(S_OK));
        EXPECT_EQ(Fetch("new"), "<new/>");
        EXPECT_EQ(DebugOutput(), "XMLCacheMgr: " + m_path + ": the database is damaged (" + reason +
                                     "); it is kept as " + m_path + ".damaged and replaced\n");
    }
};

TEST_F(CacheDamage, AFileThatIsNoDatabaseIsSetAside) {
    const std::string rubbish(5000, 'r');
    WriteWholeFile(m_path, rubbish);
    EXPECT_EQ(Fetch("a"), Hex(S_FALSE));
    EXPECT_EQ(ReadWholeFile(m_path + ".damaged"), rubbish);
    ExpectReplaced("file is not a database");
}

TEST_F(CacheDamage, ATicketThatChangedIsNeverGiven) {
    for (const char* change :
         {"content = x'3c00'", "stored = stored - 10", "expires = expires + 1", "key = x'6200'"}) {
        ASSERT_EQ(Hex(Put("a", "<a/>")), Hex(S_OK));
        ASSERT_EQ(Sqlite(m_path).Run(std::string("UPDATE ticket SET ") + change), "");
        EXPECT_EQ(Fetch("b"), Hex(S_FALSE)) << change;
        EXPECT_EQ(Fetch("a"), Hex(S_FALSE)) << change;
    }
    EXPECT_THAT(DebugOutput(), HasSubstr("the database is damaged (a ticket is not as it was stored)"));
}

TEST_F(CacheDamage, AMissingTableIsDamage) {
    MakeDatabase();
    Sqlite(m_path).Run("DROP TABLE ticket");
    EXPECT_EQ(Fetch(Name(0)), Hex(S_FALSE));
    ExpectReplaced("no such table: ticket");
}

TEST_F(CacheDamage, AnotherProgramsDatabaseIsLeftAlone) {
    Sqlite(m_path).Run("CREATE TABLE theirs(x); INSERT INTO theirs VALUES(7)");
    const std::string before = ReadWholeFile(m_path);
    EXPECT_EQ(Hex(Put("a", "<a/>")), Hex(E_FAIL));
    EXPECT_EQ(Fetch("a"), Hex(E_FAIL));
    EXPECT_EQ(ReadWholeFile(m_path), before);
    EXPECT_THAT(DebugOutput(), StartsWith("XMLCacheMgr: " + m_path + ": the file is another program's database\n"));
}

// Whatever is overwritten or cut off: the right ticket or none, and the cache goes on.
TEST_F(CacheDamage, NoDamageGivesAWrongTicket) {
    constexpr int kTickets = 5;
    MakeDatabase(kTickets);
    const std::string whole = ReadWholeFile(m_path);
    ASSERT_GT(whole.size(), 10'000U);

    const auto check = [&](const std::string& bytes) {
        // A new file each time, as the open one would have to be closed first.
        WriteWholeFile(m_path + ".new", bytes);
        std::filesystem::rename(m_path + ".new", m_path);
        for (const char* part : {"-wal", "-shm"}) std::filesystem::remove(m_path + part);
        for (int i = 0; i < kTickets; ++i) EXPECT_THAT(Fetch(Name(i)), testing::AnyOf(Ticket(i), Hex(S_FALSE)));
        EXPECT_EQ(Hex(Put("new", "<new/>")), Hex(S_OK));
        EXPECT_EQ(Fetch("new"), "<new/>");
    };
    // Densely where the file's own order is written down, sparsely elsewhere.
    for (std::size_t at = 0; at < whole.size(); at += at < 100 ? 4 : whole.size() / 60) {
        SCOPED_TRACE("overwritten at " + std::to_string(at));
        std::string damaged = whole;
        for (std::size_t i = at; i < std::min(at + 4, damaged.size()); ++i)
            damaged[i] = static_cast<char>(~damaged[i]);
        check(damaged);
    }
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 12) {
        SCOPED_TRACE("cut off at " + std::to_string(size));
        check(whole.substr(0, size));
    }
}

TEST_F(CacheDamage, WhatCannotBeOpenedFails) {
    for (const std::string& path : {HomePath(), PathOf("no/such/folder/cache.db"), std::string("/proc/cache.db")}) {
        SetCacheFile(path);
        EXPECT_LT(Put("a", "<a/>"), 0) << path;
        EXPECT_EQ(Fetch("a").substr(0, 3), "0x8") << path;
        EXPECT_THAT(DebugOutput(), HasSubstr("XMLCacheMgr: " + path + ": unable to open database file\n"));
    }
}

TEST_F(CacheDamage, AnOverlongPathIsRefused) {
    SetCacheFile(std::string(2000, 'x'));
    EXPECT_EQ(Hex(Put("a", "<a/>")), Hex(HRESULT_FROM_WIN32(ERROR_MORE_DATA)));
    EXPECT_EQ(DebugOutput(), "XMLCacheMgr: the registry value \"cachefile\" cannot be read\n");
}

// A writer that never ends costs a put two seconds at most; a fetch does not even notice.
TEST_F(CacheDamage, ALockedDatabaseFailsWithinTwoSeconds) {
    ASSERT_EQ(Hex(Put("a", "<a/>")), Hex(S_OK));
    Sqlite other(m_path);
    ASSERT_EQ(other.Run("BEGIN IMMEDIATE"), "");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Hex(Put("a", "<b/>")), Hex(HRESULT_FROM_WIN32(ERROR_LOCK_VIOLATION)));
    EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500)) << "it did not try for long";
    EXPECT_EQ(Fetch("a"), "<a/>");
    EXPECT_THAT(DebugOutput(), HasSubstr("database is locked"));
    ASSERT_EQ(other.Run("ROLLBACK"), "");
    EXPECT_EQ(Hex(Put("a", "<b/>")), Hex(S_OK));
}

// In a process of its own, whose files may grow to 300 KB.
TEST_F(CacheDamage, AFullDiskKeepsWhatWasThere) {
    ExpectSuccess(RunInProcess([] {
        signal(SIGXFSZ, SIG_IGN);
        HRESULT status = Put("a", "<a/>");
        const rlimit limit = {300'000, 300'000};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return E_FAIL;
        if (SUCCEEDED(Put("large", std::string(1'000'000, 'x')))) return E_UNEXPECTED;
        if (SUCCEEDED(status)) status = Put("b", "<b/>");
        return status;
    }));
    EXPECT_EQ(Fetch("a"), "<a/>");
    EXPECT_EQ(Fetch("large"), Hex(S_FALSE));
    EXPECT_EQ(Fetch("b"), "<b/>");
}

}  // namespace
}  // namespace wncom::test
