#include <gtest/gtest.h>

#include <string>

#include "common/logging/LogFormat.h"

namespace wncom {
namespace {

template <class... Arguments>
std::string Expand(const char* format, const Arguments&... arguments) {
    const LogArgument captured[] = {LogArgument(arguments)..., LogArgument(0)};
    LogLine line;
    AppendMessage(line, format, captured, sizeof...(arguments));
    return std::string(line.view());
}

const std::string kLong(2000, 'x');

TEST(LogFormat, WritesNumbersByTheirOwnWidth) {
    EXPECT_EQ("-1 4294967295 18446744073709551615", Expand("%d %d %d", -1, 0xFFFFFFFFU, ~std::uint64_t{0}));
    EXPECT_EQ("4294967295 255", Expand("%u %u", -1, static_cast<std::int8_t>(-1)));
    EXPECT_EQ("80004005", Expand("%08lx", static_cast<HRESULT>(0x80004005)));
    EXPECT_EQ("00000001 1 0x8000FFFF", Expand("%08lx %lx 0x%X", S_FALSE, S_FALSE, static_cast<HRESULT>(0x8000FFFF)));
    EXPECT_EQ("-9223372036854775808", Expand("%lld", std::int64_t{-0x7FFFFFFFFFFFFFFF} - 1));
    EXPECT_EQ("1777777777777777777777", Expand("%llo", ~std::uint64_t{0}));
    EXPECT_EQ("7 8 9 10", Expand("%hd %zu %I64d %hhu", 7, std::size_t{8}, std::int64_t{9}, 10));
}

TEST(LogFormat, FollowsFlagsWidthAndPrecision) {
    EXPECT_EQ("[   42][42   ][00042][  042]", Expand("[%5d][%-5d][%05d][%5.3d]", 42, 42, 42, 42));
    EXPECT_EQ("[-0042][+42][ 42][0x2a][052]", Expand("[%05d][%+d][% d][%#x][%#o]", -42, 42, 42, 42, 42));
    EXPECT_EQ("[][][+][  ][0]", Expand("[%.0d][%.0x][%+.0d][%2.0u][%#.0o]", 0, 0, 0, 0, 0));
    EXPECT_EQ("[00010][010][00010][0][0]", Expand("[%#.5o][%#.1o][%#05o][%#o][%#x]", 8, 8, 8, 0, 0));
    EXPECT_EQ("[  abc][ab][abc  ]", Expand("[%5s][%.2s][%-5s]", "abc", "abc", "abc"));
    EXPECT_EQ("[ é]", Expand("[%3S]", OLESTR("é")));
}

TEST(LogFormat, WritesAddressesWithThirtyTwoBitsUnderNumberConversions) {
    const void* const address = reinterpret_cast<const void*>(~std::uintptr_t{0} - 0x0F);
    EXPECT_EQ("FFFFFFF0 fffffff0", Expand("%X %x", address, address));
    EXPECT_EQ(std::string(2 * sizeof(void*) - 1, 'F') + "0", Expand("%p", address));
}

TEST(LogFormat, WritesNullTextsAsSuch) {
    EXPECT_EQ("(null) (null)",
              Expand("%s %S", static_cast<const char*>(nullptr), static_cast<const WCHAR*>(nullptr)));
    EXPECT_EQ("(null)", Expand(nullptr));
}

TEST(LogFormat, WritesWideTextAsUtf8) {
    EXPECT_EQ("aé€😀", Expand("%S", OLESTR("aé€😀")));
    const WCHAR unpaired[] = {0xD83D, OLESTR('x'), 0xDE00, 0xD83D, 0};
    EXPECT_EQ("\uFFFDx\uFFFD\uFFFD", Expand("%S", unpaired));
    EXPECT_EQ("[€][\uFFFD][]", Expand("[%C][%C][%C]", OLESTR('€'), static_cast<WCHAR>(0xDC00), WCHAR{0}));
}

TEST(LogFormat, TakesNoMoreOfATextThanThePrecisionInBytesAndCutsNoCharacter) {
    EXPECT_EQ("a", Expand("%.3S", OLESTR("a€")));
    EXPECT_EQ("a€", Expand("%.4S", OLESTR("a€b")));
    const char unterminated[] = {'a', 'b', 'c'};
    EXPECT_EQ("abc", Expand("%.3s", static_cast<const char*>(unterminated)));
}

TEST(LogFormat, WritesAnArgumentThatTheConversionDoesNotFitAsWhatItIs) {
    EXPECT_EQ("text é", Expand("%d %s", "text", OLESTR("é")));
    EXPECT_EQ("-7", Expand("%s", -7));
}

TEST(LogFormat, SurvivesMissingAndSurplusArguments) {
    EXPECT_EQ("1 (missing) (missing)", Expand("%d %s %d", 1));
    EXPECT_EQ("1", Expand("%d", 1, "unused"));
}

TEST(LogFormat, CopiesWhatIsNoConversion) {
    EXPECT_EQ("100% %s %k %5 %n%", Expand("100%% %%s %k %5 %n%"));
    EXPECT_EQ("%*d 5", Expand("%*d %d", 5));
    EXPECT_EQ("%-%", Expand("%-%%"));
}

TEST(LogFormat, SharesTheRoomAmongTheTexts) {
    EXPECT_EQ(std::string(1020, 'x'), Expand("%s", kLong.c_str()));
    EXPECT_EQ("EXIT: " + std::string(503, 'x') + " @" + std::string(503, 'x') + "@",
              Expand("EXIT: %s @%S@", kLong.c_str(), std::basic_string<WCHAR>(2000, OLESTR('x')).c_str()));
    const std::string cut(327, 'x');
    EXPECT_EQ("ENTER " + cut + " on line 7 in file " + cut + " @" + cut + "@",
              Expand("ENTER %s on line %d in file %s @%S@", kLong.c_str(), 7, kLong.c_str(), kLong.c_str()));
    // A percent sign before a letter takes no room, nor does a text of a precision of its own.
    EXPECT_EQ("%s " + std::string(1016, 'x'), Expand("%%s %s", kLong.c_str()));
    EXPECT_EQ("xx " + std::string(1015, 'x'), Expand("%.2s %s", kLong.c_str(), kLong.c_str()));
}

TEST(LogFormat, CutsALongFormatAndWarns) {
    const std::string warning = "WARNING!!! LogMessage() format string > 512 chars:";
    const std::string most(511, 'f');
    EXPECT_EQ(most, Expand(most.c_str()));
    EXPECT_EQ(warning + most, Expand((most + "g").c_str()));
    // A conversion behind the cut, and one that the cut divides.
    EXPECT_EQ(warning + most, Expand((most + "ggg%s").c_str(), "text"));
    EXPECT_EQ(warning + most.substr(1) + "%", Expand((most.substr(1) + "%s").c_str(), "text"));
}

TEST(LogFormat, EndsEveryLineOnce) {
    const auto end = [](const char* text) {
        LogLine line;
        line.Append(text);
        return std::string(line.End());
    };
    EXPECT_EQ("text\r\n", end("text"));
    EXPECT_EQ("text\n", end("text\n"));
    EXPECT_EQ("a\nb\r\n", end("a\nb"));
    EXPECT_EQ("\r\n", end(""));
}

TEST(LogFormat, CutsALineBetweenCharactersAndKeepsItsEnd) {
    LogLine line;
    line.Append(std::string(LogLine::kTextBytes - 2, 'x'));
    const LogArgument argument(OLESTR("€"));
    AppendMessage(line, "%Sy", &argument, 1);
    EXPECT_EQ(LogLine::kTextBytes - 2, line.length());
    line.Append("\n");
    EXPECT_EQ(std::string(LogLine::kTextBytes - 2, 'x') + "\r\n", line.End());
    LogLine longest;
    longest.Append(kLong);
    const std::string text = longest.End();
    EXPECT_EQ(std::string(LogLine::kTextBytes, 'x') + "\r\n", text);
    EXPECT_LT(text.size(), LogLine::kBufferBytes);
}

TEST(LogFormat, BoundsManyWideNumbers) {
    std::string format;
    for (int i = 0; i != 80; ++i) format += "%999d";
    LogLine line;
    AppendMessage(line, format.c_str(), nullptr, 0);
    EXPECT_LE(line.length(), LogLine::kTextBytes);
    EXPECT_EQ(LogLine::kTextBytes, Expand("%999999999999999999999d|", 1).size());
}

}  // namespace
}  // namespace wncom
