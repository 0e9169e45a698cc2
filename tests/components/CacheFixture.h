// The cache manager and a look behind it, into its database.
#pragma once

#include <sqlite3.h>

#include <memory>
#include <string>
#include <string_view>

#include "tests/components/ComponentsFixture.h"
#include "wncom/XMLCacheMgr.h"

namespace wncom::test {

// A connection of the test's own.
class Sqlite {
public:
    explicit Sqlite(const std::string& path);
    // The last value of the last row, as text; the error's text when something fails.
    std::string Run(const std::string& sql);

private:
    struct Close {
        void operator()(sqlite3* database) const noexcept { sqlite3_close(database); }
    };
    std::unique_ptr<sqlite3, Close> m_database;
};

class CacheFixture : public ComponentsFixture {
protected:
    CacheFixture();

    // Makes the next manager use another file.
    static void SetCacheFile(const std::string& path);

    // Each with a manager of its own, as the agent has one a request.
    static HRESULT Put(std::string_view key, std::string_view ticket, LONG seconds = 60);
    // The ticket, or the status in hex when there is none.
    static std::string Fetch(std::string_view key);

    const std::string m_path = PathOf("cache.db");
};

}  // namespace wncom::test
