#include "tests/components/CacheFixture.h"

namespace wncom::test {

Sqlite::Sqlite(const std::string& path) {
    sqlite3* opened = nullptr;
    EXPECT_EQ(sqlite3_open(path.c_str(), &opened), SQLITE_OK);
    m_database.reset(opened);
}

std::string Sqlite::Run(const std::string& sql) {
    std::string last;
    const auto remember = [](void* value, int columns, char** values, char**) {
        if (const char* text = values[columns - 1]) *static_cast<std::string*>(value) = text;
        return 0;
    };
    const int code = sqlite3_exec(m_database.get(), sql.c_str(), remember, &last, nullptr);
    return code == SQLITE_OK ? last : sqlite3_errmsg(m_database.get());
}

CacheFixture::CacheFixture() { SetCacheFile(m_path); }

void CacheFixture::SetCacheFile(const std::string& path) {
    SetRegistryValue("SOFTWARE\\Quillbeck\\QBNorvel\\XMLCache", "cachefile", path);
}

HRESULT CacheFixture::Put(std::string_view key, std::string_view ticket, LONG seconds) {
    const auto manager = Create<IXMLCacheMgr>(kProgIdXMLCacheMgr);
    return manager->PutXML(Wide(key).c_str(), Text(ticket).get(), seconds, kCacheFlags);
}

std::string CacheFixture::Fetch(std::string_view key) {
    const auto manager = Create<IXMLCacheMgr>(kProgIdXMLCacheMgr);
    Bstr ticket;
    const HRESULT status = manager->FetchXML(Wide(key).c_str(), kCacheFlags, ticket.put());
    if (status == S_OK) return Shown(ticket.get());
    EXPECT_EQ(ticket.get(), nullptr) << "no ticket found, but a text";
    return Hex(status);
}

}  // namespace wncom::test
