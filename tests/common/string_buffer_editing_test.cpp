// Which part of the text an edit moves, seen from where the text lies afterwards.
#include <gtest/gtest.h>

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

constexpr std::size_t kEnd = CPHeapBuffer::kToEnd;

TEST(StringBufferEdit, ErasesByMovingTheShorterPart) {
    struct {
        const char* name;
        Layout before;
        std::size_t first, last;
        Layout after;
    } const cases[] = {{"front, by its offset", {32, 14, "abcdef"}, 0, 1, {32, 16, "cdef"}},
                       {"front of one from the start", {32, 0, "abcdef"}, 0, 0, {32, 0, "bcdef"}},
                       {"front of two from the start", {32, 0, "abcdef"}, 0, 1, {32, 2, "cdef"}},
                       {"all", {33, 14, "abcdef"}, 0, kEnd, {33, 11, ""}},
                       {"all, by its last position", {33, 14, "abcdef"}, 0, 5, {33, 11, ""}},
                       {"all of a small storage", {4, 0, "abc"}, 0, kEnd, {4, 0, ""}},
                       {"end", {32, 14, "abcdef"}, 4, kEnd, {32, 14, "abcd"}},
                       {"beyond the end", {32, 14, "abcdef"}, 4, 90, {32, 14, "abcd"}},
                       {"short front", {32, 14, "abcdef"}, 1, 2, {32, 16, "adef"}},
                       {"short front at the start", {32, 0, "abcdefgh"}, 1, 3, {32, 3, "aefgh"}},
                       {"too little at the start", {32, 0, "abcdef"}, 1, 2, {32, 0, "adef"}},
                       {"one of two halves", {32, 14, "abcde"}, 2, 2, {32, 14, "abde"}},
                       {"short rest", {32, 14, "abcdef"}, 3, 3, {32, 14, "abcef"}}};
    for (const auto& given : cases) {
        SCOPED_TRACE(given.name);
        CPHeapBuffer buffer = Make(given.before);
        EXPECT_TRUE(buffer.Erase(given.first, given.last));
        ExpectLayout(buffer, given.after);
    }
    CPHeapBuffer buffer = Make({32, 14, "abcdef"});
    EXPECT_FALSE(buffer.Erase(6, kEnd));
    EXPECT_FALSE(buffer.Erase(3, 2));
    EXPECT_FALSE(CPHeapBuffer().Erase(0, kEnd));
    ExpectLayout(buffer, {32, 14, "abcdef"});
}

TEST(StringBufferEdit, InsertsByMovingAsLittleAsItCan) {
    struct {
        const char* name;
        Layout before;
        const char* text;
        std::size_t position, count;
        Layout after;
    } const cases[] = {{"front when in the first half", {32, 10, "abcdef"}, "xy", 3, 0, {32, 8, "abcxydef"}},
                       {"rest when in the second half", {32, 10, "abcdef"}, "xy", 4, 0, {32, 10, "abcdxyef"}},
                       {"rest when the front has no room", {32, 3, "abcdef"}, "xy", 1, 0, {32, 3, "axybcdef"}},
                       {"front when it has just room", {32, 4, "abcdef"}, "xy", 1, 0, {32, 2, "axybcdef"}},
                       {"front when the back has no room", {32, 24, "abcdef"}, "xy", 5, 0, {32, 22, "abcdexyf"}},
                       {"rest when the back has just room", {32, 23, "abcdef"}, "xy", 5, 0, {32, 23, "abcdexyf"}},
                       {"all to the start without room", {15, 4, "abcdef"}, "vwxyz", 2, 0, {15, 0, "abvwxyzcdef"}},
                       {"in a storage that is just large enough", {11, 2, "abcdef"}, "xy", 1, 0, {11, 2, "axybcdef"}},
                       {"reallocated when it is not", {10, 0, "abcdef"}, "xyz", 1, 2, {32, 12, "axybcdef"}},
                       {"at the end", {32, 10, "abcdef"}, "xy", 90, 0, {32, 10, "abcdefxy"}},
                       {"a part at the end in its room", {32, 23, "abcdef"}, "xyz", 6, 2, {32, 23, "abcdefxy"}},
                       // Without room the whole text is appended first.
                       {"at the end by moving", {32, 24, "abcdef"}, "xyz", 6, 0, {32, 11, "abcdefxyz"}},
                       {"a part at the end by moving", {32, 24, "abcdef"}, "xyz", 6, 2, {32, 11, "abcdefxy"}},
                       {"a part at the end by reallocating", {8, 0, "abcdef"}, "uvwxyz", 6, 2, {32, 10, "abcdefuv"}},
                       {"into an empty text", {32, 10, ""}, "xyz", 5, 2, {32, 15, "xy"}},
                       {"into an empty text that it fills", {3, 0, ""}, "xy", 0, 0, {3, 0, "xy"}}};
    for (const auto& given : cases) {
        SCOPED_TRACE(given.name);
        CPHeapBuffer buffer = Make(given.before);
        EXPECT_TRUE(buffer.Insert(Wide(given.text).c_str(), given.position, given.count));
        ExpectLayout(buffer, given.after);
    }
}

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
