// How long tickets live, by a clock of the test's own.
#include "components/cache/TicketDatabase.h"
#include "tests/components/CacheFixture.h"

namespace wncom::test {
namespace {

class TicketDatabaseTest : public testing::Test {
protected:
    static constexpr std::int64_t kStart = 1'000'000;

    void Put(const std::string& key, std::int64_t now, LONG seconds) {
        m_database.Put(Wide(key), Wide("<t/>"), now, seconds);
    }
    bool Lives(const char* key, std::int64_t now) { return static_cast<bool>(m_database.Fetch(Wide(key), now)); }
    int Stored() const { return std::stoi(Sqlite(m_path).Run("SELECT count(*) FROM ticket")); }

    const std::string m_path = HomePath() + "/tickets.db";
    components::TicketDatabase m_database{m_path};
};

TEST_F(TicketDatabaseTest, ATicketLivesItsLifetimeAndNotASecondMore) {
    Put("a", kStart, 10);
    EXPECT_FALSE(Lives("a", kStart - 3)) << "a clock set back ends a life";
    EXPECT_TRUE(Lives("a", kStart - 1)) << "a reader that waited for its turn";
    EXPECT_TRUE(Lives("a", kStart));
    EXPECT_TRUE(Lives("a", kStart + 9));
    EXPECT_FALSE(Lives("a", kStart + 10));
    Put("a", kStart + 10, 10);
    EXPECT_TRUE(Lives("a", kStart + 19));
    Put("b", kStart + 8, 10);
    EXPECT_EQ(Stored(), 2) << "a writer that waited for its turn";
    Put("b", kStart, 10);
    EXPECT_EQ(Stored(), 1) << "what comes from the future is cleaned away";
}

TEST_F(TicketDatabaseTest, EachPutCleansAFewExpiredTicketsAway) {
    for (int i = 0; i < 40; ++i) Put(std::to_string(i), kStart, 10);
    Put("living", kStart, 1000);
    // The living one, the new one, and what 16 a put have left of the 40.
    for (const int left : {26, 10, 2}) {
        Put("new", kStart + 10, 10);
        EXPECT_EQ(Stored(), left);
    }
    EXPECT_TRUE(Lives("living", kStart + 10));
}

}  // namespace
}  // namespace wncom::test
