#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>

namespace {

struct Freer {
    void operator()(void* memory) const noexcept { std::free(memory); }
};

TEST(RuntimeText, NarrowsCharactersBelow256OneToOneAndRefusesOthers) {
    char narrow[8] = {};
    EXPECT_EQ(wcstombs(narrow, OLESTR("a\u00E9"), sizeof narrow), 2U);
    EXPECT_STREQ(narrow, "a\xE9");
    EXPECT_EQ(wcstombs(narrow, OLESTR("a\u0100"), sizeof narrow), static_cast<std::size_t>(-1));
    EXPECT_EQ(wcstombs(nullptr, OLESTR("a\u0100"), 0), 2U);
}

TEST(RuntimeText, WidensBytesOneToOne) {
    WCHAR wide[8];
    EXPECT_EQ(mbstowcs(wide, "a\x80\xFF", 8), 3U);
    EXPECT_EQ(wcscmp(wide, OLESTR("a\u0080\u00FF")), 0);
    EXPECT_EQ(mbstowcs(static_cast<WCHAR*>(nullptr), "a\x80\xFF", 0), 3U);
}

TEST(RuntimeText, StopsAtTheEndOfTheRoomWithoutATerminator) {
    WCHAR wide[3] = {'x', 'x', 'x'};
    EXPECT_EQ(mbstowcs(wide, "abc", 2), 2U);
    EXPECT_EQ(wide[2], 'x');
}

TEST(RuntimeText, ComparesWithoutTheCaseOfAsciiLettersOnly) {
    EXPECT_EQ(_wcsicmp(OLESTR("ABC"), OLESTR("abc")), 0);
    EXPECT_NE(_wcsicmp(OLESTR("\u00C9"), OLESTR("\u00E9")), 0);
    EXPECT_LT(_wcsicmp(OLESTR("ab"), OLESTR("ABC")), 0);
    EXPECT_EQ(_wcsnicmp(OLESTR("ABx"), OLESTR("aby"), 2), 0);
    EXPECT_GT(_wcsnicmp(OLESTR("ABy"), OLESTR("abx"), 3), 0);
    EXPECT_EQ(_stricmp("ABC", "abc"), 0);
    EXPECT_EQ(_strnicmp("ABx", "aby", 2), 0);
    // An underscore stands between the capitals and the small letters.
    EXPECT_LT(_stricmp("_", "A"), 0);
}

TEST(RuntimeText, FindsCharactersAndTheEnd) {
    const WCHAR* text = OLESTR("abca");
    EXPECT_EQ(wcschr(text, 'c'), text + 2);
    EXPECT_EQ(wcschr(text, '\0'), text + 4);
    EXPECT_EQ(wcschr(text, 'x'), nullptr);
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
    const std::unique_ptr<WCHAR, Freer> wide(_wcsdup(OLESTR("ab")));
    EXPECT_EQ(wcscmp(wide.get(), OLESTR("ab")), 0);
    const std::unique_ptr<char, Freer> narrow(_strdup("ab"));
    EXPECT_STREQ(narrow.get(), "ab");
}

}  // namespace
