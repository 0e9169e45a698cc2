// How long tickets live, by a clock of the test's own.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "components/cache/TicketDatabase.h"
#include "tests/support/Com.h"
#include "tests/support/TestHome.h"

namespace wncom::test {
namespace {

using components::TicketDatabase;

class TicketDatabaseTest : public testing::Test {
protected:
    static constexpr std::int64_t kStart = 1'000'000;

    void Put(const char* key, std::int64_t now, LONG seconds) {
        m_database.Put(Wide(key), Wide("<t/>"), now, seconds);
    }
    bool Lives(const char* key, std::int64_t now) { return static_cast<bool>(m_database.Fetch(Wide(key), now)); }
    int Stored() {
        sqlite3* database = nullptr;
        int rows = 0;
        sqlite3_open(m_path.c_str(), &database);
        const auto count = [](void* value, int, char** values, char**) {
            *static_cast<int*>(value) = std::stoi(values[0]);
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(database, "SELECT count(*) FROM ticket", count, &rows, nullptr), SQLITE_OK);
        sqlite3_close(database);
        return rows;
    }

    const std::string m_path = HomePath() + "/tickets.db";
    TicketDatabase m_database{m_path};
};

TEST_F(TicketDatabaseTest, ATicketLivesItsLifetimeAndNotASecondMore) {
    Put("a", kStart, 10);
    EXPECT_TRUE(Lives("a", kStart));
    EXPECT_TRUE(Lives("a", kStart + 9));
    EXPECT_FALSE(Lives("a", kStart + 10));
    Put("a", kStart + 10, 10);
    EXPECT_TRUE(Lives("a", kStart + 19));
}

TEST_F(TicketDatabaseTest, AClockSetBackEndsALife) {
    Put("a", kStart, 10);
    EXPECT_FALSE(Lives("a", kStart - 1));
    Put("b", kStart - 1, 10);
    EXPECT_EQ(Stored(), 1) << "what comes from the future is cleaned away";
}

TEST_F(TicketDatabaseTest, EachPutCleansAFewExpiredTicketsAway) {
    for (int i = 0; i < 40; ++i) Put(std::to_string(i).c_str(), kStart, 10);
    Put("living", kStart, 1000);
    int before = Stored();
    for (int i = 0; i < 3; ++i) {
        Put("new", kStart + 10, 10);
        const int after = Stored();
        EXPECT_LT(after, before);
        EXPECT_GE(after, before - 20) << "a put must not pay for all";
        before = after;
    }
    EXPECT_EQ(before, 2);
    EXPECT_TRUE(Lives("living", kStart + 10));
}

}  // namespace
}  // namespace wncom::test
