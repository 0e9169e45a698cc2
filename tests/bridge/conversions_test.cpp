#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>

#include "bridge/TextConversions.h"
#include "tests/support/LogCapture.h"

namespace wncom::test {
namespace {

using WideString = std::basic_string<WCHAR>;

std::string Encoded(const WCHAR* text) { return WCharToUtf8(text).get(); }
WideString Decoded(const char* text) { return Utf8ToWChar(text).get(); }

// UTF-8 as it is defined, for one unit.
std::string Reference(unsigned character) {
    std::string bytes;
    if (character < 0x80) return {static_cast<char>(character)};
    const int tail = character < 0x800 ? 1 : 2;
    bytes += static_cast<char>((tail == 1 ? 0xC0 : 0xE0) + (character >> (6 * tail)));
    for (int i = tail - 1; i >= 0; --i) bytes += static_cast<char>(0x80 + ((character >> (6 * i)) % 64));
    return bytes;
}

// The halves of surrogate pairs are characters like others.
TEST(EncodingTest, AgreesWithUtf8ForEveryCharacterOfOneUnit) {
    for (unsigned character = 1; character < 0x10000; ++character) {
        const WideString text{u'a', static_cast<WCHAR>(character), u'b'};
        ASSERT_EQ("a" + Reference(character) + "b", Encoded(text.c_str())) << std::hex << character;
        ASSERT_EQ(text, Decoded(Encoded(text.c_str()).c_str())) << std::hex << character;
    }
    EXPECT_EQ(WCharToUtf8(nullptr), nullptr);
    EXPECT_EQ(Utf8ToWChar(nullptr), nullptr);
}

// The encoder as it is described, unit by unit.
int EncodedPlainly(const WideString& text, std::ptrdiff_t capacity, std::string& bytes) {
    bytes.clear();
    for (std::size_t i = 0; i != text.size(); ++i) {
        const auto left = capacity - static_cast<std::ptrdiff_t>(bytes.size());
        if (left <= 0) return 4;
        const std::string sequence = Reference(static_cast<std::uint16_t>(text[i]));
        const auto lacking = static_cast<std::ptrdiff_t>(sequence.size()) - left;
        if (lacking > 0) return i + 1 == text.size() ? static_cast<int>(lacking) : 4;
        bytes += sequence;
    }
    return 0;
}

TEST(EncodingTest, AgreesWithAPlainLoopForAnyMixAndAnyRoom) {
    constexpr unsigned kSeed = 5489;
    SCOPED_TRACE("seed " + std::to_string(kSeed));
    std::mt19937 numbers(kSeed);
    const unsigned limits[] = {0x80, 0x100, 0x800, 0x10000};
    for (int round = 0; round < 3000; ++round) {
        const unsigned usual = limits[numbers() % 4];
        const unsigned other = limits[numbers() % 4];
        WideString text(numbers() % 140, 0);
        for (WCHAR& unit : text)
            unit = static_cast<WCHAR>(1 + numbers() % ((numbers() % 8 != 0 ? usual : other) - 1));
        // Often too little, and now and then less than nothing.
        const auto most = static_cast<unsigned>(text.size() * 3 + 8);
        const auto capacity = static_cast<std::ptrdiff_t>(numbers() % most) - 4;
        const auto room = static_cast<std::size_t>(std::max<std::ptrdiff_t>(capacity, 0));
        std::string expected;
        const int status = EncodedPlainly(text, capacity, expected);
        std::string bytes(600, '*');
        std::ptrdiff_t written = -1;
        ASSERT_EQ(status,
                  u16_utf8(text.data(), static_cast<std::ptrdiff_t>(text.size()), bytes.data(), capacity, &written));
        ASSERT_EQ(expected, bytes.substr(0, static_cast<std::size_t>(written)));
        ASSERT_EQ(std::string(bytes.size() - room, '*'), bytes.substr(room)) << "nothing is written beyond the room";
        EncodedPlainly(text, PTRDIFF_MAX, expected);
        ASSERT_EQ(expected, Encoded(text.c_str()));
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

}  // namespace
}  // namespace wncom::test
