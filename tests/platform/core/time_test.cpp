#include <gtest/gtest.h>
#include <windows.h>

namespace wncom::test {
namespace {

TEST(LocalTime, IsAMomentOfThisCentury) {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    EXPECT_GE(now.wYear, 2024);
    EXPECT_TRUE(now.wMonth >= 1 && now.wMonth <= 12) << now.wMonth;
    EXPECT_TRUE(now.wDay >= 1 && now.wDay <= 31) << now.wDay;
    EXPECT_LT(now.wHour, 24);
}

}  // namespace
}  // namespace wncom::test
