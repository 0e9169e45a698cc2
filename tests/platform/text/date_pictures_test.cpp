#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace {

// 4 December 2005, 09:07:03
SYSTEMTIME Moment() {
    SYSTEMTIME moment{};
    moment.wYear = 2005;
    moment.wMonth = 12;
    moment.wDay = 4;
    moment.wHour = 9;
    moment.wMinute = 7;
    moment.wSecond = 53;
    return moment;
}

using FormatFunction = int (*)(LCID, DWORD, const SYSTEMTIME*, LPCSTR, LPSTR, int);

int CallDate(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR picture, LPSTR text, int size) {
    return GetDateFormatA(locale, flags, time, picture, text, size);
}
int CallTime(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR picture, LPSTR text, int size) {
    return GetTimeFormatA(locale, flags, time, picture, text, size);
}

TEST(DatePictures, FormatNumbersAndKeepQuotedText) {
    const struct {
        FormatFunction format;
        const char *picture, *expected;
    } cases[] = {
        {CallDate, "M'/'d'/'yy", "12/4/05"}, {CallDate, "dd.MM.yy", "04.12.05"},     {CallDate, "'day 'd", "day 4"},
        {CallDate, "d'open", "4open"},       {CallTime, "HH':'mm':'ss", "09:07:53"}, {CallTime, "H m s", "9 7 53"},
    };
    for (const auto& each : cases) {
        const SYSTEMTIME moment = Moment();
        const int size = static_cast<int>(std::string(each.expected).size()) + 1;
        char text[32] = "";
        EXPECT_EQ(each.format(LOCALE_SYSTEM_DEFAULT, 0, &moment, each.picture, nullptr, 0), size);
        EXPECT_EQ(each.format(LOCALE_SYSTEM_DEFAULT, 0, &moment, each.picture, text, size), size);
        EXPECT_STREQ(text, each.expected);
        EXPECT_EQ(each.format(LOCALE_SYSTEM_DEFAULT, 0, &moment, each.picture, text, size - 1), 0);
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    }
}

TEST(DatePictures, RefuseMomentsThatDoNotExist) {
    const struct {
        FormatFunction format;
        WORD SYSTEMTIME::*field;
        WORD number;
    } cases[] = {{CallDate, &SYSTEMTIME::wMonth, 0},   {CallDate, &SYSTEMTIME::wMonth, 13},
                 {CallDate, &SYSTEMTIME::wDay, 32},    {CallTime, &SYSTEMTIME::wHour, 24},
                 {CallTime, &SYSTEMTIME::wMinute, 60}, {CallTime, &SYSTEMTIME::wSecond, 60}};
    for (const auto& each : cases) {
        SYSTEMTIME moment = Moment();
        moment.*each.field = each.number;
        char text[32];
        EXPECT_EQ(each.format(LOCALE_SYSTEM_DEFAULT, 0, &moment, each.format == CallDate ? "M d" : "H m s", text, 32),
                  0)
            << each.number;
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    }
}

}  // namespace
