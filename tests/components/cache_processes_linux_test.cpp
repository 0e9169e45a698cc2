// One cache for several processes, some of which are killed.
#include <signal.h>

#include <filesystem>

#include "tests/components/CacheFixture.h"
#include "tests/support/ForkedProcess.h"

namespace wncom::test {
namespace {

class CacheProcesses : public CacheFixture {
protected:
    static std::string Name(int writer, int i) { return std::to_string(writer) + "-" + std::to_string(i); }
    void ExpectSound() const { EXPECT_EQ(Sqlite(m_path).Run("PRAGMA integrity_check"), "ok"); }
};

TEST_F(CacheProcesses, LoseNoTicketToEachOther) {
    constexpr int kProcesses = 4;
    constexpr int kTickets = 25;
    std::vector<pid_t> children;
    for (int writer = 0; writer < kProcesses; ++writer) {
        children.push_back(RunInProcess([writer] {
            HRESULT status = S_OK;
            for (int i = 0; i < kTickets && status == S_OK; ++i) {
                status = Put(Name(writer, i), Name(writer, i));
                if (Fetch(Name(writer, i)) != Name(writer, i)) return E_FAIL;
            }
            return status;
        }));
    }
    for (const pid_t child : children) ExpectSuccess(child);
    for (int writer = 0; writer < kProcesses; ++writer) {
        for (int i = 0; i < kTickets; ++i) EXPECT_EQ(Fetch(Name(writer, i)), Name(writer, i));
    }
    EXPECT_EQ(DebugOutput(), "");
}

TEST_F(CacheProcesses, AKillLosesNothingThatWasStored) {
    for (int round = 0; round < 5; ++round) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = RunInProcess([&] {
            for (int i = 0;; ++i) {
                if (Put(Name(round, i), std::string(3000, 'x')) != S_OK) return E_FAIL;
                if (write(ends[1], "x", 1) != 1) return E_FAIL;
            }
        });
        close(ends[1]);
        char told[20];
        for (std::size_t count = 0; count < sizeof(told);) {
            const ssize_t got = read(ends[0], told, sizeof(told) - count);
            ASSERT_GT(got, 0) << "the writer failed";
            count += static_cast<std::size_t>(got);
        }
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        close(ends[0]);
        ExpectSuccess(RunInProcess([&] {
            for (int i = 0; i < static_cast<int>(sizeof(told)); ++i) {
                if (Fetch(Name(round, i)) != std::string(3000, 'x')) return E_FAIL;
            }
            return S_OK;
        }));
    }
    ExpectSound();
    EXPECT_EQ(DebugOutput(), "");
}

// All of them meet the damage at once; one replaces the file, and none loses what it stores from then on.
TEST_F(CacheProcesses, ReplaceADamagedDatabaseOnce) {
    for (int round = 0; round < 5; ++round) {
        for (const char* part : {"", "-wal", "-shm"}) std::filesystem::remove(m_path + part);
        WriteWholeFile(m_path, std::string(100'000, 'r'));
        std::vector<pid_t> children;
        for (int writer = 0; writer < 4; ++writer) {
            children.push_back(RunInProcess([writer] { return Put(Name(writer, 0), "<t/>"); }));
        }
        for (const pid_t child : children) ExpectSuccess(child);
        ExpectSuccess(RunInProcess([] {
            for (int writer = 0; writer < 4; ++writer) {
                if (Fetch(Name(writer, 0)) != "<t/>") return E_FAIL;
            }
            return S_OK;
        }));
        ExpectSound();
    }
    std::size_t replacements = 0;
    const std::string told = DebugOutput();
    for (std::size_t at = 0; (at = told.find("damaged (", at)) != std::string::npos; ++at) ++replacements;
    EXPECT_EQ(replacements, 5U) << told;
}

}  // namespace
}  // namespace wncom::test
