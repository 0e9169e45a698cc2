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
    // Each of four processes stores so many tickets, and all are found afterwards.
    static void StoreAtOnce(int tickets) {
        constexpr int kProcesses = 4;
        std::vector<pid_t> children;
        for (int writer = 0; writer < kProcesses; ++writer) {
            children.push_back(RunInProcess([=] {
                for (int i = 0; i < tickets; ++i) {
                    if (Put(Name(writer, i), Name(writer, i)) != S_OK) return E_FAIL;
                    if (Fetch(Name(writer, i)) != Name(writer, i)) return E_FAIL;
                }
                return S_OK;
            }));
        }
        for (const pid_t child : children) ExpectSuccess(child);
        ExpectSuccess(RunInProcess([=] {
            for (int i = 0; i < kProcesses * tickets; ++i) {
                const std::string name = Name(i / tickets, i % tickets);
                if (Fetch(name) != name) return E_FAIL;
            }
            return S_OK;
        }));
    }
};

TEST_F(CacheProcesses, LoseNoTicketToEachOther) {
    StoreAtOnce(25);
    ExpectSound();
    EXPECT_EQ(DebugOutput(), "");
}

// All of them meet the damage at once; one replaces the file, and none loses what it stores from then on.
TEST_F(CacheProcesses, ReplaceADamagedDatabaseOnce) {
    for (int round = 0; round < 5; ++round) {
        ForgetDebugOutput();
        std::filesystem::remove(m_path);
        WriteWholeFile(m_path, std::string(100'000, 'r'));
        StoreAtOnce(1);
        ExpectSound();
        const std::string told = DebugOutput();
        EXPECT_EQ(told.find("damaged ("), told.rfind("damaged (")) << told;
        EXPECT_PRED_FORMAT2(testing::IsSubstring, "damaged (", told);
    }
}

TEST_F(CacheProcesses, AKillLosesNothingThatWasStored) {
    constexpr int kTold = 20;
    const std::string ticket(3000, 'x');
    for (int round = 0; round < 5; ++round) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = RunInProcess([&] {
            for (int i = 0;; ++i) {
                if (Put(Name(round, i), ticket) != S_OK || write(ends[1], "x", 1) != 1) return E_FAIL;
            }
        });
        close(ends[1]);
        char byte = 0;
        for (int i = 0; i < kTold; ++i) ASSERT_EQ(read(ends[0], &byte, 1), 1) << "the writer failed";
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        close(ends[0]);
        ExpectSuccess(RunInProcess([&] {
            for (int i = 0; i < kTold; ++i) {
                if (Fetch(Name(round, i)) != ticket) return E_FAIL;
            }
            return S_OK;
        }));
    }
    ExpectSound();
    EXPECT_EQ(DebugOutput(), "");
}

}  // namespace
}  // namespace wncom::test
