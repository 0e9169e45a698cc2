// Eight clients in processes of their own that share one home: its log, its cache and its registry. Some are killed
// without warning; the others must not notice.
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <vector>

#include "tests/platform/processes/Peer.h"
#include "tests/samples/SampleFixture.h"
#include "tests/soak/CacheTicket.h"
#include "wncom/XMLCacheMgr.h"

namespace wncom::test {
namespace {

constexpr int kSurvivors = 4;
constexpr int kVictims = 4;  // at a time
constexpr int kWaves = 3;
constexpr int kKeys = 5;

// "12/31/05-09:07:03,[1520:2044/3] Component::message", taken apart.
struct LogLine {
    DWORD process = 0;
    std::string message;
    bool whole = false;
};

LogLine Parse(const std::string& line) {
    LogLine parsed;
    unsigned process = 0;
    int start = 0;
    int end = 0;
    // Another line's beginning inside this one would mean that the two are mixed.
    parsed.whole =
        std::sscanf(line.c_str(), "%*2u/%*2u/%*2u-%*2u:%*2u:%*2u,%n[%u:%*u/%*u] %n", &start, &process, &end) == 1 &&
        start == 18 && end > 0 && line.find(",[", 18) == std::string::npos;
    parsed.process = process;
    parsed.message = line.substr(static_cast<std::size_t>(end));
    return parsed;
}

class EightProcessesTest : public SampleFixture {
protected:
    EightProcessesTest() {
        SetLogging("file," + m_logPath + ",3");
        std::filesystem::create_directories(m_folder);
    }

    std::unique_ptr<Peer> Start(int number) const {
        return std::make_unique<Peer>(std::to_string(number) + " " + m_folder, ProgramFolder() + "/soak_peer.exe");
    }
    void AwaitStart(int number) const { AwaitFile(m_folder + "/started-" + std::to_string(number)); }

    // Numbers from 0 in the order of their start; victims are killed in the midst of a round.
    void RunAll(std::map<DWORD, int>& survivors) {
        std::vector<std::unique_ptr<Peer>> staying;
        for (int i = 0; i < kSurvivors; ++i) {
            staying.push_back(Start(i));
            survivors[staying.back()->Id()] = i;
        }
        for (int wave = 0; wave < kWaves; ++wave) {
            std::vector<std::unique_ptr<Peer>> victims;
            for (int i = 0; i < kVictims; ++i) victims.push_back(Start(kSurvivors + wave * kVictims + i));
            for (int i = 0; i < kVictims; ++i) AwaitStart(kSurvivors + wave * kVictims + i);
            for (const auto& victim : victims) {
                victim->Kill();
                Sleep(7);
            }
        }
        WriteWholeFile(m_folder + "/finish", "");
        for (const auto& peer : staying) EXPECT_EQ(peer->Result(), 0U);
    }

    const std::string m_folder = HomePath() + "/peers";
    const std::string m_logPath = HomePath() + "/eight.log";
};

TEST_F(EightProcessesTest, MixAndLoseNothingWhenSomeAreKilled) {
    std::map<DWORD, int> survivors;
    RunAll(survivors);

    std::map<DWORD, int> rounds;       // logged by each process itself, the next expected one
    std::map<DWORD, int> submissions;  // logged by the library in it
    std::istringstream log(ReadWholeFile(m_logPath));
    for (std::string line; std::getline(log, line);) {
        const LogLine parsed = Parse(line);
        ASSERT_TRUE(parsed.whole) << line;
        int number = 0;
        int round = 0;
        const std::size_t own = parsed.message.find("::peer ");
        if (own != std::string::npos &&
            std::sscanf(parsed.message.c_str() + own, "::peer %d round %d", &number, &round) == 2) {
            ASSERT_EQ(rounds[parsed.process]++, round) << line;
            if (survivors.count(parsed.process)) {
                ASSERT_EQ(survivors[parsed.process], number) << line;
            }
        }
        if (parsed.message.find("::calling SubmitJob on mJobControl") != std::string::npos) {
            ++submissions[parsed.process];
        }
    }
    EXPECT_EQ(rounds.size(), static_cast<std::size_t>(kSurvivors + kWaves * kVictims));
    for (const auto& [process, number] : survivors) {
        EXPECT_GE(rounds[process], 5) << number;
        EXPECT_EQ(submissions[process], rounds[process]) << number;
    }

    const auto cache = Create<IXMLCacheMgr>(kProgIdXMLCacheMgr);
    for (int key = 0; key < kKeys; ++key) {
        Bstr ticket;
        EXPECT_EQ(Hex(cache->FetchXML(Text("key-" + std::to_string(key)).get(), kCacheFlags, ticket.put())),
                  Hex(S_OK));
        EXPECT_TRUE(IsWholeTicket(Narrow(ticket.get())));
    }
    EXPECT_EQ(Hex(cache->PutXML(OLESTR("after"), Text("<t/>").get(), 60, kCacheFlags)), Hex(S_OK));
    EXPECT_FALSE(std::filesystem::exists(HomePath() + "/cache.db.damaged"));
}

}  // namespace
}  // namespace wncom::test
