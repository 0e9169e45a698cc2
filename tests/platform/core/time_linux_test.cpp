#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <ctime>

namespace wncom::test {
namespace {

TEST(LocalTimeOnLinux, FollowsTheZone) {
    setenv("TZ", "XXX-05:30", 1);
    tzset();
    SYSTEMTIME local{};
    std::time_t before = 0;
    std::time_t after = 0;
    do {
        before = std::time(nullptr);
        GetLocalTime(&local);
        after = std::time(nullptr);
    } while (before != after);
    std::tm expected{};
    const std::time_t shifted = before + 5 * 3600 + 1800;
    gmtime_r(&shifted, &expected);
    EXPECT_EQ(local.wYear, expected.tm_year + 1900);
    EXPECT_EQ(local.wDay, expected.tm_mday);
    EXPECT_EQ(local.wDayOfWeek, expected.tm_wday);
    EXPECT_EQ(local.wHour, expected.tm_hour);
    EXPECT_EQ(local.wMinute, expected.tm_min);
    EXPECT_EQ(local.wSecond, expected.tm_sec);
    EXPECT_LT(local.wMilliseconds, 1000);
}

}  // namespace
}  // namespace wncom::test
