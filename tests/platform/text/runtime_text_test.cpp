#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <cwchar>
#include <string>

namespace {

TEST(RuntimeText, ConvertsBytesAndCharactersBelow256OneToOneWithinTheRoom) {
    constexpr auto refused = static_cast<std::size_t>(-1);
    char narrow[4] = "zzz";
    EXPECT_EQ(wcstombs(narrow, OLESTR("a\u00E9"), sizeof narrow), 2U);
    EXPECT_STREQ(narrow, "a\xE9");
    EXPECT_EQ(wcstombs(narrow, OLESTR("bcd"), 2), 2U);
    EXPECT_STREQ(narrow, "bc");
    EXPECT_EQ(wcstombs(narrow, OLESTR("a\u0100"), sizeof narrow), refused);
    EXPECT_EQ(wcstombs(nullptr, OLESTR("abc"), 0), 3U);

    WCHAR wide[4] = {'z', 'z', 'z', 0};
    EXPECT_EQ(mbstowcs(wide, "a\xFF", 4), 2U);
    EXPECT_EQ(std::basic_string<WCHAR>(wide), OLESTR("a\u00FF"));
    EXPECT_EQ(mbstowcs(wide, "bcd", 2), 2U);
    EXPECT_EQ(std::basic_string<WCHAR>(wide), OLESTR("bc"));
    EXPECT_EQ(mbstowcs(static_cast<WCHAR*>(nullptr), "a\x80\xFF", 0), 3U);
}

TEST(RuntimeText, ComparesWithoutTheCaseOfAsciiLettersOnly) {
    const auto sign = [](int result) { return (result > 0) - (result < 0); };
    const struct {
        const char *a, *b;
        int result;
    } cases[] = {
        {"ABCZ", "abcz", 0},
        {"\xC9", "\xE9", -1},
        {"ab", "ABC", -1},
        {"ABy", "abx", 1},
        // An underscore stands between the capitals and the small letters, a bracket and an at sign around the first.
        {"_", "A", -1},
        {"[", "{", -1},
        {"@", "`", -1},
    };
    for (const auto& each : cases) {
        std::basic_string<WCHAR> a, b;
        for (const char* at = each.a; *at; ++at) a += static_cast<unsigned char>(*at);
        for (const char* at = each.b; *at; ++at) b += static_cast<unsigned char>(*at);
        EXPECT_EQ(sign(_wcsicmp(a.c_str(), b.c_str())), each.result) << each.a;
        EXPECT_EQ(sign(_stricmp(each.a, each.b)), each.result) << each.a;
    }
    EXPECT_EQ(_wcsnicmp(OLESTR("ABx"), OLESTR("aby"), 2), 0);
    EXPECT_LT(_wcsnicmp(OLESTR("ABx"), OLESTR("aby"), 3), 0);
    EXPECT_EQ(_strnicmp("ABx", "aby", 2), 0);
    EXPECT_LT(_strnicmp("ABx", "aby", 3), 0);
}

TEST(RuntimeText, MeasuresTextsOfAnyLengthAtAnyPlace) {
    constexpr std::size_t most = 200;
    for (std::size_t place = 0; place < 40; ++place) {
        for (std::size_t length = 0; place + length < most; ++length) {
            // Zeros before the text and after its end do not count, nor do characters with a zero half.
            WCHAR room[most + 1] = {};
            for (std::size_t i = 0; i != length; ++i) room[place + i] = i % 2 == 0 ? OLESTR('a') : OLESTR('\x0100');
            ASSERT_EQ(wcslen(room + place), length) << place;
        }
    }
}

TEST(RuntimeText, DuplicatesTexts) {
    WCHAR* const wide = _wcsdup(OLESTR("ab"));
    EXPECT_EQ(std::basic_string<WCHAR>(wide), OLESTR("ab"));
    std::free(wide);
    char* const narrow = _strdup("ab");
    EXPECT_STREQ(narrow, "ab");
    std::free(narrow);
}

}  // namespace
