#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>

#include "bridge/TextConversions.h"
#include "tests/support/LogCapture.h"

namespace wncom::test {
namespace {

using WideString = std::basic_string<WCHAR>;

std::string Encoded(const WCHAR* text) { return WCharToUtf8(text).get(); }
WideString Decoded(const char* text) { return Utf8ToWChar(text).get(); }

// UTF-8 as it is defined, for one character that is no surrogate.
std::string Reference(unsigned character) {
    std::string bytes;
    if (character < 0x80) return {static_cast<char>(character)};
    const int tail = character < 0x800 ? 1 : 2;
    bytes += static_cast<char>((tail == 1 ? 0xC0 : 0xE0) + (character >> (6 * tail)));
    for (int i = tail - 1; i >= 0; --i) bytes += static_cast<char>(0x80 + ((character >> (6 * i)) % 64));
    return bytes;
}

TEST(EncodingTest, AgreesWithUtf8ForEveryCharacterOfOneUnit) {
    for (unsigned character = 1; character < 0x10000; ++character) {
        if (character >= 0xD800 && character < 0xE000) continue;
        const WideString text{u'a', static_cast<WCHAR>(character), u'b'};
        ASSERT_EQ("a" + Reference(character) + "b", Encoded(text.c_str())) << std::hex << character;
        ASSERT_EQ(text, Decoded(Encoded(text.c_str()).c_str())) << std::hex << character;
    }
}

TEST(EncodingTest, EncodesEachHalfOfASurrogatePairByItself) {
    EXPECT_EQ("\xED\xA0\xBD\xED\xB8\x80", Encoded(OLESTR("\U0001F600")));
    EXPECT_EQ(WideString(OLESTR("\U0001F600")), Decoded("\xED\xA0\xBD\xED\xB8\x80"));
}

TEST(EncodingTest, FillsItsRoomWithCharactersOfThreeBytes) {
    EXPECT_EQ(std::size_t{3000}, Encoded(WideString(1000, u'\u6F22').c_str()).size());
    EXPECT_EQ("", Encoded(OLESTR("")));
}

TEST(EncodingTest, FindsACharacterThatIsNotAsciiWhereverItStands) {
    for (std::size_t place = 0; place < 40; ++place) {
        WideString text(40, u'x');
        text[place] = u'\u00E9';
        const std::string expected = std::string(place, 'x') + "\xC3\xA9" + std::string(39 - place, 'x');
        EXPECT_EQ(expected, Encoded(text.c_str())) << place;
    }
}

// The encoder as it is described, unit by unit.
int EncodedPlainly(const WideString& text, std::ptrdiff_t capacity, std::string& bytes) {
    bytes.clear();
    for (std::size_t i = 0; i != text.size(); ++i) {
        const auto left = capacity - static_cast<std::ptrdiff_t>(bytes.size());
        if (left == 0) return 4;
        const std::string sequence = Reference(static_cast<std::uint16_t>(text[i]));
        const auto lacking = static_cast<std::ptrdiff_t>(sequence.size()) - left;
        if (lacking > 0) return i + 1 == text.size() ? static_cast<int>(lacking) : 4;
        bytes += sequence;
    }
    return 0;
}

TEST(EncodingTest, AgreesWithAPlainLoopForAnyMixAndAnyRoom) {
    std::mt19937 numbers;
    const unsigned limits[] = {0x80, 0x100, 0x800, 0x10000};
    for (int round = 0; round < 3000; ++round) {
        const unsigned usual = limits[numbers() % 4];
        const unsigned other = limits[numbers() % 4];
        WideString text(numbers() % 140, 0);
        for (WCHAR& unit : text)
            unit = static_cast<WCHAR>(1 + numbers() % ((numbers() % 8 != 0 ? usual : other) - 1));
        const auto capacity = static_cast<std::ptrdiff_t>(numbers() % 500);
        std::string expected;
        const int status = EncodedPlainly(text, capacity, expected);
        std::string bytes(600, '*');
        std::ptrdiff_t written = -1;
        ASSERT_EQ(status,
                  u16_utf8(text.data(), static_cast<std::ptrdiff_t>(text.size()), bytes.data(), capacity, &written));
        ASSERT_EQ(expected, bytes.substr(0, static_cast<std::size_t>(written)));
        ASSERT_EQ(std::string(bytes.size() - static_cast<std::size_t>(capacity), '*'),
                  bytes.substr(static_cast<std::size_t>(capacity)))
            << "nothing is written beyond the room";
        EncodedPlainly(text, PTRDIFF_MAX, expected);
        ASSERT_EQ(expected, Encoded(text.c_str()));
    }
}

TEST(EncodingTest, NullGivesNull) {
    EXPECT_EQ(nullptr, WCharToUtf8(nullptr));
    EXPECT_EQ(nullptr, Utf8ToWChar(nullptr));
}

struct EncoderRoom {
    const WCHAR* text;
    std::ptrdiff_t capacity;
    int status;
    std::ptrdiff_t written;
};

TEST(EncodingTest, TellsWhatDidNotFit) {
    for (const EncoderRoom& room : {
             EncoderRoom{OLESTR("ab"), 2, 0, 2},       // fits
             EncoderRoom{OLESTR("ab"), 1, 4, 1},       // a unit remains
             EncoderRoom{OLESTR("\u00E9"), 1, 1, 0},   // one byte lacks
             EncoderRoom{OLESTR("a\u20AC"), 2, 2, 1},  // two bytes lack
             EncoderRoom{OLESTR("a\u20AC"), 3, 1, 1},  // one byte lacks
             EncoderRoom{OLESTR("\u20ACa"), 2, 4, 0},  // one pending, one unread
             EncoderRoom{OLESTR("a"), 0, 4, 0},        // no room at all
             EncoderRoom{OLESTR("a"), -1, 4, 0},
             EncoderRoom{OLESTR(""), 0, 0, 0},
         }) {
        char bytes[8] = "*******";
        std::ptrdiff_t written = -1;
        const auto count = static_cast<std::ptrdiff_t>(WideString(room.text).size());
        EXPECT_EQ(room.status, u16_utf8(room.text, count, bytes, room.capacity, &written)) << room.capacity;
        EXPECT_EQ(room.written, written);
        EXPECT_EQ('*', bytes[written]) << "nothing is written past what is counted";
    }
}

struct DecoderCase {
    std::string bytes;
    std::ptrdiff_t capacity;
    int status;
    std::ptrdiff_t consumed;
    WideString units;
    std::string logged;
};

TEST(DecodingTest, AnswersWithItsStatusAndWhatItRead) {
    const std::string error = "1 utf8_u16 Error: Illegal UTF8 sequence --        ";
    LogCapture log(1);
    for (const DecoderCase& input : {
             DecoderCase{"", 8, 0, 0, OLESTR(""), ""}, DecoderCase{"a", 0, 1, 0, OLESTR(""), ""},
             DecoderCase{"abc", 2, 1, 2, OLESTR("ab"), ""}, DecoderCase{"a\xC3", 8, 2, 1, OLESTR("a"), ""},
             DecoderCase{"a\xE2\x82", 8, 3, 1, OLESTR("a"), ""}, DecoderCase{"\xE2", 8, 3, 0, OLESTR(""), ""},
             DecoderCase{"ab\xC3\x41", 8, -2, 2, OLESTR("ab"),
                         error + "Second byte of 2-byte sequence cannot be 0x41"},
             DecoderCase{"\xE2\x0F\x80", 8, -2, 0, OLESTR(""),
                         error + "Second byte of 3-byte sequence cannot be 0x0F"},
             DecoderCase{"\xE2\x82\xFF", 8, -3, 0, OLESTR(""),
                         error + "Third byte of 3-byte sequence cannot be 0xFF"},
             DecoderCase{"\xF0\x9F\x98\x80", 8, -1, 0, OLESTR(""), error + "Sequence cannot start with 0xF0"},
             DecoderCase{"a\x80", 8, -1, 1, OLESTR("a"), error + "Sequence cannot start with 0x80"},
             DecoderCase{"\xC0\x81", 8, 0, 2, OLESTR("\u0001"), ""},  // over-long
         }) {
        log.Clear();
        WCHAR units[8] = {};
        std::ptrdiff_t consumed = -1;
        const auto count = static_cast<std::ptrdiff_t>(input.bytes.size());
        EXPECT_EQ(input.status, utf8_u16(input.bytes.data(), count, &consumed, units, input.capacity)) << input.bytes;
        EXPECT_EQ(input.consumed, consumed) << input.bytes;
        EXPECT_EQ(input.units, WideString(units)) << input.bytes;
        const std::vector<std::string> lines = log.Lines();
        EXPECT_EQ(input.logged, lines.empty() ? "" : lines.front());
    }
}

TEST(DecodingTest, KeepsWhatStandsBeforeABadSequence) {
    EXPECT_EQ(WideString(OLESTR("ab")), Decoded("ab\xFF"
                                                "cd"));
}

TEST(ValueTest, ComesBackInTheSystemsCodePage) {
    EXPECT_EQ(WideString(OLESTR("\u20AC")), WideString(CStringToWChar(CString("\x80")).get()));
    ASSERT_NE(nullptr, CStringToWChar(CString()));
    EXPECT_EQ(0, CStringToWChar(CString())[0]);
}

TEST(ValueTest, IsLoggedWhileItIsMade) {
    LogCapture log(4);
    EXPECT_EQ(CString("a\xE9"), CharToCString("a\xE9"));
    EXPECT_TRUE(CharToCString(nullptr).empty());
    EXPECT_THAT(log.Lines(),
                testing::ElementsAre("4 In CharToCString, str is a\xE9", "4 In CharToCString, result is a\xC3\xA9",
                                     "4 In CharToCString, str is (null)", "4 In CharToCString, result is "));
}

}  // namespace
}  // namespace wncom::test
