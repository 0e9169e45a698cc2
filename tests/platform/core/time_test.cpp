#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "tests/platform/OnWine.h"

namespace wncom::test {
namespace {

// Sunday, 31 December 2005, 09:07:03 is what its day of the week claims; it was a Saturday.
SYSTEMTIME Moment() {
    SYSTEMTIME moment{};
    moment.wYear = 2005;
    moment.wMonth = 12;
    moment.wDay = 31;
    moment.wHour = 9;
    moment.wMinute = 7;
    moment.wSecond = 3;
    return moment;
}

std::string Date(const SYSTEMTIME& time, const char* picture) {
    char text[128] = "";
    const int length = GetDateFormatA(LOCALE_SYSTEM_DEFAULT, 0, &time, picture, text, sizeof(text));
    EXPECT_EQ(length, static_cast<int>(std::string(text).size()) + 1);
    return text;
}

std::string Time(const SYSTEMTIME& time, const char* picture) {
    char text[128] = "";
    const int length = GetTimeFormatA(LOCALE_SYSTEM_DEFAULT, 0, &time, picture, text, sizeof(text));
    EXPECT_EQ(length, static_cast<int>(std::string(text).size()) + 1);
    return text;
}

TEST(DatePictures, FormatEachField) {
    SYSTEMTIME moment = Moment();
    EXPECT_EQ(Date(moment, "M'/'d'/'yy"), "12/31/05");
    EXPECT_EQ(Date(moment, "ddd dddd MMM MMMM yyyy"), "Sat Saturday Dec December 2005");
    moment.wMonth = 2;
    moment.wDay = 1;
    EXPECT_EQ(Date(moment, "d dd M MM yy"), "1 01 2 02 05");
    // Wine writes two digits.
    EXPECT_EQ(Date(moment, "y"), OnWine() ? "05" : "5");
}

TEST(DatePictures, KeepQuotedText) {
    EXPECT_EQ(Date(Moment(), "'day 'd' o''clock'"), "day 31 o'clock");
    EXPECT_EQ(Date(Moment(), "d'open"), "31open");
}

TEST(DatePictures, RefuseDaysThatDoNotExist) {
    SYSTEMTIME moment = Moment();
    char text[32];
    moment.wMonth = 13;
    EXPECT_EQ(GetDateFormatA(LOCALE_SYSTEM_DEFAULT, 0, &moment, "d", text, sizeof(text)), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    moment.wMonth = 2;
    moment.wDay = 29;
    // Wine takes it for the 1st of March.
    EXPECT_EQ(GetDateFormatA(LOCALE_SYSTEM_DEFAULT, 0, &moment, "d", text, sizeof(text)), OnWine() ? 2 : 0);
    moment.wYear = 2004;
    EXPECT_EQ(Date(moment, "d dddd"), "29 Sunday");
}

TEST(TimePictures, FormatEachField) {
    SYSTEMTIME moment = Moment();
    EXPECT_EQ(Time(moment, "HH':'mm':'ss"), "09:07:03");
    EXPECT_EQ(Time(moment, "h hh H m s t tt"), "9 09 9 7 3 A AM");
    moment.wHour = 0;
    EXPECT_EQ(Time(moment, "h:mm tt"), "12:07 AM");
    moment.wHour = 13;
    EXPECT_EQ(Time(moment, "hh tt"), "01 PM");
}

TEST(TimePictures, RefuseTimesThatDoNotExist) {
    SYSTEMTIME moment = Moment();
    moment.wHour = 24;
    char text[32];
    EXPECT_EQ(GetTimeFormatA(LOCALE_SYSTEM_DEFAULT, 0, &moment, "H", text, sizeof(text)), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(TimePictures, NeedRoomForTheTerminator) {
    const SYSTEMTIME moment = Moment();
    char text[9];
    EXPECT_EQ(GetTimeFormatA(LOCALE_SYSTEM_DEFAULT, 0, &moment, "HH:mm:ss", nullptr, 0), 9);
    EXPECT_EQ(GetTimeFormatA(LOCALE_SYSTEM_DEFAULT, 0, &moment, "HH:mm:ss", text, 9), 9);
    EXPECT_EQ(GetTimeFormatA(LOCALE_SYSTEM_DEFAULT, 0, &moment, "HH:mm:ss", text, 8), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(GetTimeFormatA(LOCALE_SYSTEM_DEFAULT, 0, &moment, "HH:mm:ss", text, -1), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST(LocalTime, IsWhatANullTimeMeans) {
    SYSTEMTIME now{};
    std::string date;
    // Twice at most: the day may change in between.
    for (int i = 0; i < 2; ++i) {
        GetLocalTime(&now);
        char text[32];
        EXPECT_EQ(GetDateFormatA(LOCALE_SYSTEM_DEFAULT, 0, nullptr, "yyyy-MM-dd", text, sizeof(text)), 11);
        date = text;
        if (date == Date(now, "yyyy-MM-dd")) break;
    }
    EXPECT_EQ(date, Date(now, "yyyy-MM-dd"));
}

TEST(TickCount, PassesWithTime) {
    const DWORD start = GetTickCount();
    Sleep(20);
    EXPECT_GE(GetTickCount() - start, 15U);
    EXPECT_LT(GetTickCount() - start, 60'000U);
}

}  // namespace
}  // namespace wncom::test
