#include <gtest/gtest.h>
#include <windows.h>

#include <iterator>
#include <random>
#include <string>
#include <string_view>

#include "tests/platform/OnWine.h"

namespace {

using WideText = std::basic_string<WCHAR>;

WideText Wide(UINT page, std::string_view bytes, DWORD flags = 0) {
    WCHAR buffer[64];
    const int units = MultiByteToWideChar(page, flags, bytes.data(), static_cast<int>(bytes.size()), buffer, 64);
    return WideText(buffer, static_cast<std::size_t>(units));
}

std::string Narrow(UINT page, const WideText& text, DWORD flags = 0, LPCSTR defaultChar = nullptr,
                   LPBOOL used = nullptr) {
    char buffer[64];
    const int bytes =
        WideCharToMultiByte(page, flags, text.data(), static_cast<int>(text.size()), buffer, 64, defaultChar, used);
    return std::string(buffer, static_cast<std::size_t>(bytes));
}

TEST(CodePages, AreWesternUnlessTheHomeSaysOtherwise) { EXPECT_EQ(GetACP(), 1252U); }

TEST(CodePages, MapEveryWesternByteThereAndBack) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte) bytes += static_cast<char>(byte);
    WCHAR wide[255];
    ASSERT_EQ(MultiByteToWideChar(1252, MB_ERR_INVALID_CHARS, bytes.data(), 255, wide, 255), 255);
    EXPECT_EQ(wide[0x80 - 1], 0x20AC);
    EXPECT_EQ(wide[0x81 - 1], 0x0081);
    EXPECT_EQ(wide[0x9F - 1], 0x0178);
    EXPECT_EQ(wide[0xE9 - 1], 0x00E9);
    char back[255];
    BOOL used = TRUE;
    ASSERT_EQ(WideCharToMultiByte(1252, WC_NO_BEST_FIT_CHARS, wide, 255, back, 255, nullptr, &used), 255);
    EXPECT_EQ(std::string(back, 255), bytes);
    EXPECT_FALSE(used);
}

TEST(CodePages, ReplaceWhatTheWesternPageLacks) {
    BOOL used = FALSE;
    EXPECT_EQ(Narrow(CP_ACP, OLESTR("a\u4E2Db"), WC_NO_BEST_FIT_CHARS, nullptr, &used), "a?b");
    EXPECT_TRUE(used);
    EXPECT_EQ(Narrow(CP_THREAD_ACP, OLESTR("\u4E2D"), WC_NO_BEST_FIT_CHARS, "_"), "_");
    EXPECT_EQ(Narrow(CP_ACP, OLESTR("plain"), 0, nullptr, &used), "plain");
    EXPECT_FALSE(used);
}

TEST(CodePages, CarryEveryPlaneThroughUtf8) {
    const WideText text = OLESTR("a\u00E9\u20AC\U0001F600");
    const std::string bytes = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
    EXPECT_EQ(Narrow(CP_UTF8, text), bytes);
    EXPECT_EQ(Wide(CP_UTF8, bytes, MB_ERR_INVALID_CHARS), text);
}

struct BadUtf8 {
    std::string_view bytes;
    WideText replaced;
};

TEST(CodePages, ReplaceEachInvalidRunOfUtf8OnceOrRefuseIt) {
    const BadUtf8 cases[] = {
        {"\x80z", OLESTR("\uFFFDz")},
        {"\xC0\xAFz", OLESTR("\uFFFD\uFFFDz")},                // overlong
        {"\xE2\x82z", OLESTR("\uFFFDz")},                      // cut short
        {"\xE0\x80\x80z", OLESTR("\uFFFD\uFFFDz")},            // overlong
        {"\xF0\x80\x80\x80z", OLESTR("\uFFFD\uFFFD\uFFFDz")},  // overlong
        {"\xED\xA0\x80z", OLESTR("\uFFFD\uFFFDz")},            // a surrogate
        {"\xF4\x90\x80\x80", OLESTR("\uFFFD\uFFFD\uFFFD")},    // above the last plane
        {"\xF8\x90\x80z", OLESTR("\uFFFD\uFFFD\uFFFDz")},      // no lead
        {"z\xF0\x9F\x98", OLESTR("z\uFFFD")},
    };
    for (const BadUtf8& bad : cases) {
        EXPECT_EQ(Wide(CP_UTF8, bad.bytes), bad.replaced);
        SetLastError(0);
        EXPECT_EQ(Wide(CP_UTF8, bad.bytes, MB_ERR_INVALID_CHARS), WideText());
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_UNICODE_TRANSLATION});
    }
}

TEST(CodePages, ReplaceLoneSurrogatesInUtf8OrRefuseThem) {
    for (const WideText& text : {WideText(1, 0xD800), WideText(1, 0xDC00)}) {
        EXPECT_EQ(Narrow(CP_UTF8, text + OLESTR("z")), "\xEF\xBF\xBDz");
        SetLastError(0);
        EXPECT_EQ(Narrow(CP_UTF8, text, WC_ERR_INVALID_CHARS), "");
        EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_UNICODE_TRANSLATION});
    }
}

// Long texts take a quicker road than short ones.
TEST(CodePages, ReadLongTextsAsTheirCharactersOneByOne) {
    const std::string_view western[] = {"a", "bc", "\xE9", "\x80", "\x9F", "0123456789abcdefghijklmnopqrstuvwxyz"};
    const std::string_view utf8[] = {"a",
                                     "bc",
                                     "\xC3\xA9",
                                     "\xDF\xBF",
                                     "\xE0\xA0\x80",
                                     "\xEF\xBF\xBF",
                                     "\xE4\xB8\xAD\xE6\x96\x87",
                                     "\xF0\x9F\x98\x80",
                                     "\xFFz",
                                     "\xC0\x80z",
                                     "\xED\xA0\x80z",
                                     "\xE0\x80\x80z",
                                     "\xE2\x82z",
                                     "\xC3z",
                                     "\x80z",
                                     "0123456789abcdefghijklmnopqrstuvwxyz"};
    std::mt19937 numbers;
    for (int round = 0; round < 2000; ++round) {
        const bool isUtf8 = round % 2 != 0;
        const UINT page = isUtf8 ? CP_UTF8 : 1252;
        // Few kinds of characters at a time, so that there are long stretches of each.
        const std::size_t kinds = 1 + numbers() % (isUtf8 ? std::size(utf8) : std::size(western));
        const std::size_t first = numbers() % kinds;
        std::string bytes;
        WideText expected;
        while (bytes.size() < 150) {
            const std::size_t kind = first + numbers() % (kinds - first);
            const std::string_view character = isUtf8 ? utf8[kind] : western[kind];
            bytes += character;
            expected += Wide(page, character);
        }
        WideText read(bytes.size(), OLESTR('*'));
        const int count = static_cast<int>(bytes.size());
        const int units = MultiByteToWideChar(page, 0, bytes.data(), count, read.data(), count);
        EXPECT_EQ(MultiByteToWideChar(page, 0, bytes.data(), count, nullptr, 0), units);
        read.resize(static_cast<std::size_t>(units));
        ASSERT_EQ(read, expected) << "round " << round;
    }
}

TEST(CodePages, CountTheTerminatorOfATerminatedSourceOnly) {
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", -1, nullptr, 0), 4);
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "abc", 3, nullptr, 0), 3);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, OLESTR("abc"), -1, nullptr, 0, nullptr, nullptr), 4);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, OLESTR("abc"), 3, nullptr, 0, nullptr, nullptr), 3);
}

TEST(CodePages, RefuseABufferThatIsTooSmall) {
    WCHAR wide[2];
    char narrow[2];
    SetLastError(0);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", 3, wide, 2), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, OLESTR("\u20AC"), 1, narrow, 2, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST(CodePages, RefuseArgumentsThatMakeNoSense) {
    char narrow[4] = "abc";
    WCHAR wide[4];
    BOOL used;
    const auto refused = [](int result, DWORD code) {
        const DWORD error = GetLastError();
        SetLastError(0);
        return result == 0 && error == code;
    };
    SetLastError(0);
    EXPECT_TRUE(refused(MultiByteToWideChar(CP_ACP, 0, nullptr, 1, wide, 4), ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(refused(MultiByteToWideChar(CP_ACP, 0, narrow, 0, wide, 4), ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(refused(MultiByteToWideChar(CP_ACP, 0, narrow, 3, nullptr, 4), ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(refused(MultiByteToWideChar(77, 0, narrow, 3, wide, 4), ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(refused(MultiByteToWideChar(CP_ACP, 0x40000000, narrow, 3, wide, 4), ERROR_INVALID_FLAGS));
    // Wine takes what means nothing for the code page at hand.
    if (wncom::test::OnWine()) return;
    EXPECT_TRUE(
        refused(WideCharToMultiByte(CP_UTF8, 0, OLESTR("a"), 1, narrow, 4, "_", nullptr), ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(
        refused(WideCharToMultiByte(CP_UTF8, 0, OLESTR("a"), 1, narrow, 4, nullptr, &used), ERROR_INVALID_PARAMETER));
    EXPECT_TRUE(refused(WideCharToMultiByte(1252, WC_ERR_INVALID_CHARS, OLESTR("a"), 1, narrow, 4, nullptr, nullptr),
                        ERROR_INVALID_FLAGS));
}

}  // namespace
