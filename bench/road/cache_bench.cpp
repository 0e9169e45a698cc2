// A capabilities ticket of 8 KB from the cache, through agent, cache wrapper and cache manager, beside one read of
// the same row with a prepared statement on an open connection.
#include <sqlite3.h>

#include <memory>
#include <optional>
#include <string>

#include "bench/Bench.h"
#include "bench/road/Road.h"
#include "tests/support/TestHome.h"
#include "wncom/XMLCacheMgr.h"

namespace wncom::bench {
namespace {

using namespace wncom::test;

constexpr std::size_t kPairs = 101;
constexpr std::size_t kReads = 100;
constexpr std::size_t kTicketUnits = std::size_t{8} << 10;

std::basic_string<OLECHAR> Key() { return Wide(std::string(kServiceId) + "-capTicket"); }

class PreparedRead {
public:
    PreparedRead() {
        sqlite3* database = nullptr;
        Check(sqlite3_open((HomePath() + "/windows/xmlcache.db").c_str(), &database));
        m_database.reset(database);
        sqlite3_stmt* statement = nullptr;
        Check(sqlite3_prepare_v2(database, "SELECT content FROM ticket WHERE key = ?1", -1, &statement, nullptr));
        m_statement.reset(statement);
    }

    void Read() {
        const int keyBytes = static_cast<int>(m_key.size() * sizeof(OLECHAR));
        Check(sqlite3_bind_blob(m_statement.get(), 1, m_key.data(), keyBytes, SQLITE_STATIC));
        Require(sqlite3_step(m_statement.get()) == SQLITE_ROW, "no row");
        benchmark::DoNotOptimize(sqlite3_column_blob(m_statement.get(), 0));
        Require(sqlite3_column_bytes(m_statement.get(), 0) == kTicketUnits * sizeof(OLECHAR), "another ticket");
        sqlite3_reset(m_statement.get());
    }

private:
    struct Release {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    static void Check(int code) { Require(code == SQLITE_OK, sqlite3_errstr(code)); }

    std::basic_string<OLECHAR> m_key = Key();
    std::unique_ptr<sqlite3, Release> m_database;
    std::unique_ptr<sqlite3_stmt, Release> m_statement;
};

// Where the ticket is stored, and everything that a look at it passes through.
struct Scene {
    explicit Scene(bool withSettings) {
        const std::string settings = HomePath() + "/windows/qbos.ini";
        DeleteFileA(settings.c_str());
        if (withSettings) WriteWholeFile(settings, "[Cache]\r\nCapTicket=3\r\n");
        const Bstr ticket = Text("<ticket>" + std::string(kTicketUnits - 17, 't') + "</ticket>");
        Require(manager->PutXML(Key().c_str(), ticket.get(), 3600, kCacheFlags) == S_OK, "no ticket can be kept");
        peer.emplace();
    }

    Road road{"none"};
    CPComPtr<IXMLCacheMgr> manager = Create<IXMLCacheMgr>(kProgIdXMLCacheMgr);
    std::optional<PreparedRead> peer;
};

// Compares what one part of the road costs with the peer's read.
void RegisterPart(const std::string& name, void (*part)(Scene&), bool withSettings = true) {
    Register(name + " / prepared SQLite read", [=](benchmark::State& state) {
        Scene scene(withSettings);
        Report(state, ComparePairs(
                          kPairs, kReads,
                          [&] {
                              for (std::size_t i = 0; i != kReads; ++i) part(scene);
                          },
                          [&] {
                              for (std::size_t i = 0; i != kReads; ++i) scene.peer->Read();
                          }));
    });
}

void GetTicket(Scene& scene) {
    Bstr cached;
    Require(scene.road.agent().GetCapabilitiesTicket(cached.put()) == S_OK, "no ticket");
}

void CreateManager(Scene&) { Create<IXMLCacheMgr>(kProgIdXMLCacheMgr); }

void Fetch(Scene& scene) {
    Bstr cached;
    Require(scene.manager->FetchXML(Key().c_str(), kCacheFlags, cached.put()) == S_OK, "no ticket");
}

void ReadSettings(Scene&) { benchmark::DoNotOptimize(GetPrivateProfileIntA("Cache", "CapTicket", 1, "qbos.ini")); }

}  // namespace
}  // namespace wncom::bench

int main(int argc, char** argv) {
    using namespace wncom::bench;
    RegisterPart("cached ticket of 8 KB", GetTicket);
    RegisterPart("cached ticket of 8 KB, no qbos.ini", GetTicket, false);
    RegisterPart("its look into qbos.ini", ReadSettings);
    RegisterPart("its look into no qbos.ini", ReadSettings, false);
    RegisterPart("its cache manager's creation", CreateManager);
    RegisterPart("its FetchXML", Fetch);
    return Run(argc, argv);
}
