// What a buffer makes of wide and of multibyte texts.
#include <gmock/gmock.h>

#include "tests/common/string_buffer_kinds.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MatchesPattern.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;

TEST(StringBufferText, IsNothingUntilATextIsGiven) {
    CPHeapBuffer buffer;
    EXPECT_EQ(buffer.Text(), nullptr);
    EXPECT_EQ(buffer.Length(), 0u);
    EXPECT_EQ(buffer.GetMultiByte(), nullptr);
    EXPECT_EQ(buffer.Append("").Text(), nullptr);
    EXPECT_EQ(CPHeapBuffer(nullptr, 7).Text(), nullptr);
    const CPHeapBuffer given(OLESTR("abc"), 7, false);
    EXPECT_EQ(TextOf(given), Letters(3));
    EXPECT_EQ(given.Tag(), 7u);
}

TEST(StringBufferText, IsErasedByANullOrEmptyAssignmentAndLeftAloneByANullOrEmptyAddition) {
    CPHeapBuffer buffer(OLESTR("abc"));
    buffer.Append(static_cast<const WCHAR*>(nullptr)).Append(OLESTR(""));
    buffer.Append(static_cast<const char*>(nullptr)).Append("");
    EXPECT_EQ(TextOf(buffer), Letters(3));
    EXPECT_EQ(TextOf(buffer.Assign(static_cast<const WCHAR*>(nullptr))), WideText());
    buffer.Assign("abc");
    EXPECT_EQ(TextOf(buffer.Assign(static_cast<const char*>(nullptr))), WideText());
    buffer.Assign("abc");
    EXPECT_EQ(TextOf(buffer.Assign("")), WideText());
}

TEST(StringBufferText, CountsTheTerminatorOfAMultiByteText) {
    CPHeapBuffer buffer;
    buffer.Assign("abc");
    EXPECT_EQ(buffer.Offset(), 14u);
    buffer.Allocate(8, false);
    buffer.Append("abcdef");
    EXPECT_EQ(buffer.Capacity(), 8u);
    buffer.Append("g");
    EXPECT_EQ(buffer.Capacity(), 32u);
    EXPECT_EQ(TextOf(buffer), Letters(7));
}

TEST(StringBufferText, ConvertsBytesAndCharactersOneToOne) {
    CPHeapBuffer buffer;
    buffer.Assign("\x7F\x80\xE9\xFF");
    EXPECT_EQ(TextOf(buffer), WideText({0x7F, 0x80, 0xE9, 0xFF}));
    EXPECT_STREQ(buffer.GetMultiByte(), "\x7F\x80\xE9\xFF");
}

TEST(StringBufferText, KeepsItsMultiByteFormWhileItFits) {
    CPHeapBuffer buffer(OLESTR("abcdef"));
    const char* narrow = buffer.GetMultiByte();
    buffer.Erase(3);
    EXPECT_EQ(buffer.GetMultiByte(), narrow);
    EXPECT_STREQ(narrow, "abc");
    buffer.Append(Letters(100).c_str());
    EXPECT_EQ(std::string(buffer.GetMultiByte()).size(), 103u);
}

TEST(StringBufferText, WithoutAMultiByteFormAnswersTheDefault) {
    CPHeapBuffer buffer(OLESTR("abc\u0100"));
    const LogCapture log(1);
    EXPECT_STREQ(buffer.GetMultiByte("default"), "default");
    EXPECT_THAT(log.Lines(),
                ElementsAre(MatchesPattern("1 Assertion failed: mbstrRequired, file CPWStringBufferMultiByte.h, line "
                                           "[0-9]+")));
    buffer.Erase(3);
    EXPECT_STREQ(buffer.GetMultiByte("default"), "abc");
    buffer.Erase();
    EXPECT_STREQ(buffer.GetMultiByte("default"), "default");
}

}  // namespace
}  // namespace wncom::test
