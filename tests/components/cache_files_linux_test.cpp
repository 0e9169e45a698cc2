// A database file that is damaged, foreign, locked, removed or replaced, and who may use it.
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "tests/components/CacheFixture.h"
#include "tests/support/ForkedProcess.h"

namespace wncom::test {
namespace {

namespace fs = std::filesystem;
using testing::IsSubstring;

class CacheFiles : public CacheFixture {
protected:
    // A database with tickets in it that no process has open.
    static void MakeDatabase(int tickets = 1) {
        ExpectSuccess(RunInProcess([=] {
            HRESULT status = S_OK;
            for (int i = 0; i < tickets && status == S_OK; ++i) status = Put(Name(i), Ticket(i));
            return status;
        }));
    }
    static std::string Name(int i) { return "ticket-" + std::to_string(i); }
    static std::string Ticket(int i) {
        std::string text = "<ticket>";
        for (int word = 0; word < 200 * i; ++word) text += std::to_string(word * i) + ' ';
        return text;
    }
};

TEST_F(CacheFiles, DamagedDatabaseIsSetAsideAndReplaced) {
    struct Damage {
        const char* reason;
        void (*make)(const std::string& path);
    };
    for (const Damage& damage :
         {Damage{"file is not a database", [](const std::string& path) { WriteWholeFile(path, "rubbish"); }},
          Damage{"no such table: ticket", [](const std::string& path) { Sqlite(path).Run("DROP TABLE ticket"); }},
          Damage{"a ticket is not as it was stored",
                 [](const std::string& path) { Sqlite(path).Run("UPDATE ticket SET content = x'3c00'"); }}}) {
        fs::remove(m_path);
        MakeDatabase();
        ForgetDebugOutput();
        damage.make(m_path);
        const std::string damaged = ReadWholeFile(m_path);
        EXPECT_EQ(Fetch(Name(0)), Hex(S_FALSE));
        EXPECT_EQ(DebugOutput(), "XMLCacheMgr: " + m_path + ": the database is damaged (" + damage.reason +
                                     "); it is kept as " + m_path + ".damaged and replaced\n");
        EXPECT_EQ(ReadWholeFile(m_path + ".damaged"), damaged);
        EXPECT_EQ(Hex(Put("new", "<new/>")), Hex(S_OK));
        EXPECT_EQ(Fetch("new"), "<new/>");
    }
}

TEST_F(CacheFiles, ATicketThatChangedIsNeverGiven) {
    for (const char* change :
         {"content = x'3c00'", "stored = stored - 10", "expires = expires + 1", "key = x'6200'"}) {
        ASSERT_EQ(Hex(Put("a", "<a/>")), Hex(S_OK));
        ASSERT_EQ(Sqlite(m_path).Run(std::string("UPDATE ticket SET ") + change), "");
        EXPECT_EQ(Fetch("b"), Hex(S_FALSE)) << change;
        EXPECT_EQ(Fetch("a"), Hex(S_FALSE)) << change;
    }
}

// Whatever is overwritten or cut off: the right ticket or none, and the cache goes on.
TEST_F(CacheFiles, NoDamageGivesAWrongTicket) {
    constexpr int kTickets = 5;
    MakeDatabase(kTickets);
    const std::string whole = ReadWholeFile(m_path);
    ASSERT_GT(whole.size(), 10'000U);
    const auto check = [&](const std::string& bytes) {
        WriteWholeFile(m_path + ".new", bytes);
        fs::rename(m_path + ".new", m_path);
        for (int i = 0; i < kTickets; ++i) {
            const std::string found = Fetch(Name(i));
            EXPECT_TRUE(found == Ticket(i) || found == Hex(S_FALSE)) << found;
        }
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

TEST_F(CacheFiles, WhatCannotBeUsedFailsAndIsLeftAlone) {
    const std::string theirs = PathOf("theirs.db");
    Sqlite(theirs).Run("CREATE TABLE theirs(x); INSERT INTO theirs VALUES(7)");
    const std::string before = ReadWholeFile(theirs);
    for (const std::string& path :
         {HomePath(), PathOf("no/such/folder/cache.db"), std::string("/proc/cache.db"), theirs}) {
        ForgetDebugOutput();
        SetCacheFile(path);
        EXPECT_LT(Put("a", "<a/>"), 0) << path;
        EXPECT_EQ(Fetch("a").substr(0, 3), "0x8") << path;
        const char* reason =
            path == theirs ? "the file is another program's database" : "unable to open database file";
        EXPECT_PRED_FORMAT2(IsSubstring, "XMLCacheMgr: " + path + ": " + reason + "\n", DebugOutput());
    }
    EXPECT_EQ(ReadWholeFile(theirs), before);
}

// Nothing of an old file is left to be taken for the next one's, and a process that had it open uses the next one.
TEST_F(CacheFiles, FileIsRemovedOrReplacedWhileAProcessHasItOpen) {
    MakeDatabase(2);
    fs::rename(m_path, PathOf("kept.db"));
    int turn[2];
    int done[2];
    ASSERT_EQ(pipe(turn), 0);
    ASSERT_EQ(pipe(done), 0);
    // Stores a ticket and then says at each turn whether it finds what others stored.
    const pid_t idle = RunInProcess([&] {
        if (Put("old", "<old/>") != S_OK) return E_FAIL;
        for (const auto& [key, ticket] : {std::pair{"b", std::string("<b/>")}, std::pair{"ticket-1", Ticket(1)}}) {
            char go = 0;
            if (write(done[1], "x", 1) != 1 || read(turn[0], &go, 1) != 1) return E_FAIL;
            if (Fetch(key) != ticket || Fetch("old") != Hex(S_FALSE)) return E_FAIL;
        }
        return S_OK;
    });
    const auto takeTurn = [&] {
        char ready = 0;
        EXPECT_EQ(read(done[0], &ready, 1), 1);
    };
    takeTurn();
    fs::remove(m_path);
    ExpectSuccess(RunInProcess([] { return Fetch("old") == Hex(S_FALSE) ? Put("b", "<b/>") : E_FAIL; }));
    EXPECT_EQ(write(turn[1], "x", 1), 1);
    takeTurn();
    fs::rename(PathOf("kept.db"), m_path);
    ExpectSuccess(
        RunInProcess([] { return Fetch("b") == Hex(S_FALSE) && Fetch("ticket-1") == Ticket(1) ? S_OK : E_FAIL; }));
    EXPECT_EQ(write(turn[1], "x", 1), 1);
    ExpectSuccess(idle);
    for (const int end : {turn[0], turn[1], done[0], done[1]}) close(end);
    EXPECT_EQ(DebugOutput(), "");
}

// A writer that never ends costs a put two seconds at most; a fetch does not even notice.
TEST_F(CacheFiles, ALockedDatabaseFailsWithinTwoSeconds) {
    ASSERT_EQ(Hex(Put("a", "<a/>")), Hex(S_OK));
    Sqlite other(m_path);
    ASSERT_EQ(other.Run("BEGIN IMMEDIATE"), "");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Hex(Put("a", "<b/>")), Hex(HRESULT_FROM_WIN32(ERROR_LOCK_VIOLATION)));
    EXPECT_GT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500)) << "it did not try for long";
    EXPECT_EQ(Fetch("a"), "<a/>");
    EXPECT_PRED_FORMAT2(IsSubstring, "database is locked", DebugOutput());
    ASSERT_EQ(other.Run("ROLLBACK"), "");
    EXPECT_EQ(Hex(Put("a", "<b/>")), Hex(S_OK));
}

// In a process of its own, whose files may grow to 300 KB.
TEST_F(CacheFiles, AFullDiskKeepsWhatWasThere) {
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

TEST_F(CacheFiles, WhoMayWriteTheHomeMayUseTheCache) {
    for (const mode_t home : {0700u, 0755u, 02775u, 0777u}) {
        fs::remove(m_path);
        ASSERT_EQ(chmod(HomePath().c_str(), home), 0);
        MakeDatabase();
        struct stat file;
        ASSERT_EQ(stat(m_path.c_str(), &file), 0);
        EXPECT_EQ(file.st_mode & 0777, home & 0666);
    }
    if (getuid() != 0) GTEST_SKIP() << "another user is tried by root alone";
    ExpectSuccess(RunInProcess([] {
        constexpr uid_t kNobody = 65534;
        if (setgid(kNobody) != 0 || setuid(kNobody) != 0) return E_FAIL;
        return Fetch(Name(0)) == Ticket(0) ? Put(Name(1), Ticket(1)) : E_ACCESSDENIED;
    }));
    EXPECT_EQ(Fetch(Name(1)), Ticket(1));
    EXPECT_EQ(DebugOutput(), "");
}

}  // namespace
}  // namespace wncom::test
