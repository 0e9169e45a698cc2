// Which part of the text an edit moves, seen from where the text lies afterwards.
#include <gtest/gtest.h>

#include <ostream>

#include "tests/common/string_buffer_kinds.h"

namespace wncom::test {
namespace {

WideText Wide(const char* text) { return {text, text + std::char_traits<char>::length(text)}; }

// A buffer with a text at an offset of a storage.
struct Layout {
    std::size_t capacity, offset;
    const char* text;
};

CPHeapBuffer Make(const Layout& layout) {
    CPHeapBuffer buffer;
    buffer.Allocate(layout.capacity, false);
    buffer.SetOffset(layout.offset);
    // Stays where the empty text is, which fits behind it.
    buffer.Append(Wide(layout.text).c_str());
    EXPECT_EQ(buffer.Offset(), layout.offset);
    return buffer;
}

void ExpectLayout(const CPHeapBuffer& buffer, const Layout& expected) {
    EXPECT_EQ(TextOf(buffer), Wide(expected.text));
    EXPECT_EQ(buffer.Offset(), expected.offset);
    EXPECT_EQ(buffer.Capacity(), expected.capacity);
}

struct NameOf {
    template <class Case>
    std::string operator()(const testing::TestParamInfo<Case>& info) const {
        return info.param.name;
    }
};

struct EraseCase {
    const char* name;
    Layout before;
    std::size_t first, last;
    Layout after;

    friend void PrintTo(const EraseCase& given, std::ostream* out) { *out << given.name; }
};
class StringBufferErase : public testing::TestWithParam<EraseCase> {};

TEST_P(StringBufferErase, MovesTheShorterPart) {
    CPHeapBuffer buffer = Make(GetParam().before);
    EXPECT_TRUE(buffer.Erase(GetParam().first, GetParam().last));
    ExpectLayout(buffer, GetParam().after);
}

constexpr std::size_t kEnd = CPHeapBuffer::kToEnd;
INSTANTIATE_TEST_SUITE_P(
    Cases, StringBufferErase,
    testing::Values(EraseCase{"FrontByItsOffset", {32, 14, "abcdef"}, 0, 1, {32, 16, "cdef"}},
                    EraseCase{"FrontOfOneFromTheStart", {32, 0, "abcdef"}, 0, 0, {32, 0, "bcdef"}},
                    EraseCase{"FrontOfTwoFromTheStart", {32, 0, "abcdef"}, 0, 1, {32, 2, "cdef"}},
                    EraseCase{"All", {33, 14, "abcdef"}, 0, kEnd, {33, 11, ""}},
                    EraseCase{"AllByItsLastPosition", {33, 14, "abcdef"}, 0, 5, {33, 11, ""}},
                    EraseCase{"End", {32, 14, "abcdef"}, 4, kEnd, {32, 14, "abcd"}},
                    EraseCase{"BeyondTheEnd", {32, 14, "abcdef"}, 4, 90, {32, 14, "abcd"}},
                    EraseCase{"ShortFront", {32, 14, "abcdef"}, 1, 2, {32, 16, "adef"}},
                    EraseCase{"ShortFrontAtTheStart", {32, 0, "abcdefgh"}, 1, 3, {32, 3, "aefgh"}},
                    EraseCase{"TooLittleAtTheStart", {32, 0, "abcdef"}, 1, 2, {32, 0, "adef"}},
                    EraseCase{"ShortRest", {32, 14, "abcdef"}, 3, 3, {32, 14, "abcef"}}),
    NameOf{});

TEST(StringBufferEdit, ErasesNothingOutsideTheText) {
    CPHeapBuffer buffer = Make({32, 14, "abcdef"});
    EXPECT_FALSE(buffer.Erase(6, kEnd));
    EXPECT_FALSE(buffer.Erase(3, 2));
    EXPECT_FALSE(CPHeapBuffer().Erase(0, kEnd));
    ExpectLayout(buffer, {32, 14, "abcdef"});
}

struct InsertCase {
    const char* name;
    Layout before;
    const char* text;
    std::size_t position, count;
    Layout after;

    friend void PrintTo(const InsertCase& given, std::ostream* out) { *out << given.name; }
};
class StringBufferInsert : public testing::TestWithParam<InsertCase> {};

TEST_P(StringBufferInsert, MovesAsLittleAsItCan) {
    CPHeapBuffer buffer = Make(GetParam().before);
    EXPECT_TRUE(buffer.Insert(Wide(GetParam().text).c_str(), GetParam().position, GetParam().count));
    ExpectLayout(buffer, GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, StringBufferInsert,
    testing::Values(InsertCase{"FrontWhenInTheFirstHalf", {32, 10, "abcdef"}, "xy", 3, 0, {32, 8, "abcxydef"}},
                    InsertCase{"RestWhenInTheSecondHalf", {32, 10, "abcdef"}, "xy", 4, 0, {32, 10, "abcdxyef"}},
                    InsertCase{"RestWhenTheFrontHasNoRoom", {32, 3, "abcdef"}, "xy", 1, 0, {32, 3, "axybcdef"}},
                    InsertCase{"FrontWhenTheBackHasNoRoom", {32, 25, "abcdef"}, "xy", 5, 0, {32, 23, "abcdexyf"}},
                    InsertCase{"AllToTheStartWithoutRoom", {15, 4, "abcdef"}, "vwxyz", 2, 0, {15, 0, "abvwxyzcdef"}},
                    InsertCase{"BehindTheEnd", {32, 10, "abcdef"}, "xy", 90, 0, {32, 10, "abcdefxy"}},
                    InsertCase{"BehindTheEndByMoving", {32, 24, "abcdef"}, "xyz", 6, 0, {32, 11, "abcdefxyz"}},
                    InsertCase{"PartBehindTheEndByMoving", {32, 24, "abcdef"}, "xyz", 6, 2, {32, 12, "abcdefxy"}},
                    InsertCase{"IntoAnEmptyText", {32, 10, ""}, "xyz", 5, 2, {32, 15, "xy"}},
                    InsertCase{"ByReallocating", {10, 0, "abcdef"}, "xyz", 1, 2, {32, 12, "axybcdef"}},
                    InsertCase{
                        "PartBehindTheEndByReallocating", {8, 0, "abcdef"}, "xyz", 6, 2, {32, 12, "abcdefxy"}}),
    NameOf{});

TEST(StringBufferEdit, InsertsNothingOfNoText) {
    CPHeapBuffer buffer = Make({32, 14, "abc"});
    EXPECT_FALSE(buffer.Insert(nullptr, 0));
    EXPECT_FALSE(buffer.Insert(OLESTR(""), 0));
    CPHeapBuffer fresh;
    EXPECT_TRUE(fresh.Insert(OLESTR("xyz"), 7, 2));
    EXPECT_EQ(TextOf(fresh), Wide("xy"));
}

TEST(StringBufferEdit, AppendsInPlaceWhileTheRoomLasts) {
    CPHeapBuffer buffer = Make({32, 20, "abcdef"});
    const WCHAR* text = buffer.Text();
    buffer.Append(OLESTR("ghijk"));
    EXPECT_EQ(buffer.Text(), text);
    buffer.Append(OLESTR("l"));
    ExpectLayout(buffer, {32, 10, "abcdefghijkl"});
    buffer.Append(Wide("mnopqrstuvwxyz0123456").c_str());
    ExpectLayout(buffer, {66, 16, "abcdefghijklmnopqrstuvwxyz0123456"});
}

TEST(StringBufferEdit, LeavesAnEmptyTextAtTheStartReadableWithoutItsOldSecondCharacter) {
    CPHeapBuffer buffer = Make({4, 0, "abc"});
    buffer.Erase();
    ExpectLayout(buffer, {4, 0, ""});
}

TEST(StringBufferEdit, TakesATextOutOfItself) {
    for (const std::size_t capacity : {7u, 10u, 32u}) {
        SCOPED_TRACE(capacity);
        CPHeapBuffer appended = Make({capacity, 0, "abcdef"});
        EXPECT_EQ(TextOf(appended.Append(appended.Text() + 2)), Wide("abcdefcdef"));
        CPHeapBuffer assigned = Make({capacity, 0, "abcdef"});
        EXPECT_EQ(TextOf(assigned.Assign(assigned.Text() + 2)), Wide("cdef"));
        CPHeapBuffer inserted = Make({capacity, 0, "abcdef"});
        EXPECT_TRUE(inserted.Insert(inserted.Text() + 1, 3, 4));
        EXPECT_EQ(TextOf(inserted), Wide("abcbcdedef"));
    }
    CPHeapBuffer moved = Make({32, 24, "abcdef"});
    EXPECT_EQ(TextOf(moved.Append(moved.Text() + 2)), Wide("abcdefcdef"));
}

TEST(StringBufferEdit, TakesATextOutOfItsOwnMultiByteForm) {
    CPHeapBuffer buffer = Make({7, 0, "abcdef"});
    EXPECT_EQ(TextOf(buffer.Append(buffer.GetMultiByte())), Wide("abcdefabcdef"));
    EXPECT_EQ(TextOf(buffer.Assign(buffer.GetMultiByte() + 3)), Wide("defabcdef"));
}

TEST(StringBufferEdit, MovesTheTextWhereItsOffsetCouldNotBeRecorded) {
    const WideText text = Letters(150000);
    CPBstrBuffer buffer;
    buffer.Allocate(200000, false);
    buffer.Assign(text.c_str(), false);
    EXPECT_TRUE(buffer.Erase(0, 65534));
    EXPECT_EQ(buffer.Offset(), 65535u);
    EXPECT_TRUE(buffer.Erase(0, 0));
    EXPECT_EQ(buffer.Offset(), 0u);
    EXPECT_TRUE(TextOf(buffer) == text.substr(65536));

    buffer.Assign(text.c_str(), false);
    EXPECT_TRUE(buffer.Erase(10, 70000));
    EXPECT_EQ(buffer.Offset(), 0u);
    EXPECT_TRUE(TextOf(buffer) == text.substr(0, 10) + text.substr(70001));
}

}  // namespace
}  // namespace wncom::test
