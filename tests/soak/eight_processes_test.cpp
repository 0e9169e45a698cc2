// Eight clients in processes of their own that share one home: its log, its cache and its registry. Some are killed
// without warning; the others must not notice.
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <sstream>
#include <vector>

#include "tests/platform/processes/Peer.h"
#include "tests/samples/SampleFixture.h"
#include "wncom/XMLCacheMgr.h"

namespace wncom::test {
namespace {

constexpr int kSurvivors = 4;
constexpr int kVictims = 4;  // at a time
constexpr int kWaves = 3;

TEST_F(SampleFixture, EightProcessesLoseNothingWhenSomeAreKilled) {
    const std::string log = HomePath() + "/eight.log";
    const std::string folder = HomePath() + "/peers";
    SetLogging("file," + log + ",3");
    SetRegistryValue("SOFTWARE\\Quillbeck\\QBNorvel\\XMLCache", "cachefile", HomePath() + "/cache.db");
    std::filesystem::create_directories(folder);
    const auto start = [&folder](int number) {
        return std::make_unique<Peer>(std::to_string(number) + " " + folder, ProgramFolder() + "/soak_peer.exe");
    };
    std::vector<std::unique_ptr<Peer>> staying;
    for (int i = 0; i < kSurvivors; ++i) staying.push_back(start(i));
    for (int wave = 0; wave < kWaves; ++wave) {
        std::vector<std::unique_ptr<Peer>> victims;
        const int first = kSurvivors + wave * kVictims;
        for (int i = 0; i < kVictims; ++i) victims.push_back(start(first + i));
        for (int i = 0; i < kVictims; ++i) AwaitFile(folder + "/started-" + std::to_string(first + i));
        for (const auto& victim : victims) {
            victim->Kill();
            Sleep(7);
        }
    }
    WriteWholeFile(folder + "/finish", "");
    for (const auto& peer : staying) EXPECT_EQ(peer->Result(), 0U);

    std::map<DWORD, int> rounds;       // logged by each process itself, the next expected one
    std::map<DWORD, int> submissions;  // logged by the library in it
    std::istringstream lines(ReadWholeFile(log));
    for (std::string line; std::getline(lines, line);) {
        unsigned process = 0;
        int number = 0;
        int round = 0;
        if (std::sscanf(line.c_str(), "%*[^[][%u:", &process) != 1) continue;  // cut by a kill
        const std::size_t own = line.find("::peer ");
        if (own != std::string::npos && std::sscanf(line.c_str() + own, "::peer %d round %d", &number, &round) == 2) {
            ASSERT_EQ(rounds[process]++, round) << line;
        }
        if (line.find("::calling SubmitJob on mJobControl") != std::string::npos) ++submissions[process];
    }
    EXPECT_EQ(rounds.size(), static_cast<std::size_t>(kSurvivors + kWaves * kVictims));
    for (const auto& peer : staying) {
        EXPECT_GE(rounds[peer->Id()], 5);
        EXPECT_EQ(submissions[peer->Id()], rounds[peer->Id()]);
    }
    const auto cache = Create<IXMLCacheMgr>(kProgIdXMLCacheMgr);
    EXPECT_EQ(Hex(cache->PutXML(OLESTR("after"), Text("<t/>").get(), 60, kCacheFlags)), Hex(S_OK));
    EXPECT_FALSE(std::filesystem::exists(HomePath() + "/cache.db.damaged"));
}

}  // namespace
}  // namespace wncom::test
