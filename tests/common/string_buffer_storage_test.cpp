// Where a buffer's storage comes from, where the text lies in it, who owns it, and its properties.
#include <gmock/gmock.h>

#include "common/CPException.h"
#include "common/CPWStringBufferEditing.h"
#include "common/CPWStringBufferMultiByte.h"
#include "common/CPWStringBufferStorage.h"
#include "tests/common/string_buffer_kinds.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MatchesPattern.h"
#include "wncom/Bstr.h"

namespace wncom::test {
namespace {

constexpr std::size_t kLargest = static_cast<std::size_t>(-1);

TEST(StringBufferStorage, GrowsByTheRoomThatTheSizeEarns) {
    struct {
        std::size_t size;
        bool grow;
        std::size_t capacity, offset;
    } const cases[] = {
        {0, true, 32, 16},     {10, true, 32, 11},    {16, true, 32, 8},         {17, true, 34, 8},
        {255, true, 510, 127}, {256, true, 512, 128}, {300, true, 576, 138},     {1000, true, 1407, 203},
        {300, false, 300, 0},  {0, false, 0, 0},      {10000, true, 10499, 249},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        CPHeapBuffer buffer(OLESTR("former"));
        EXPECT_NE(buffer.Allocate(c.size, c.grow), nullptr);
        EXPECT_EQ(buffer.Capacity(), c.capacity);
        EXPECT_EQ(buffer.Offset(), c.offset);
        EXPECT_EQ(TextOf(buffer), WideText());
    }
    const CPHeapBuffer sized(std::size_t{10});
    EXPECT_EQ(sized.Capacity(), 12u);
    EXPECT_EQ(sized.Offset(), 0u);
}

TEST(StringBufferStorage, RecordsItsOffsetInItsFirstTwoCharacters) {
    CPHeapBuffer buffer(OLESTR("abc"));
    EXPECT_EQ(buffer.Capacity(), 32u);
    const WCHAR* storage = buffer.mStorageProperty;
    EXPECT_EQ(storage[0], 0);
    EXPECT_EQ(storage[1], 14);
    EXPECT_EQ(buffer.Text(), storage + 14);
}

TEST(StringBufferStorage, SetsOnlyOffsetsThatCanBeRecordedInsideIt) {
    CPHeapBuffer buffer;
    struct {
        std::size_t capacity, asked, got;
    } const cases[] = {{100000, 0, 0},
                       {100000, 1, 0},
                       {100000, 2, 2},
                       {100000, 65535, 65535},
                       {100000, 65536, 65535},
                       {10, 70000, 9},
                       {100000, kLargest, 65535},
                       {10, 9, 9},
                       {3, 2, 2},
                       {2, 1, 0}};
    for (const auto& c : cases) {
        buffer.Allocate(c.capacity, false);
        EXPECT_EQ(buffer.SetOffset(c.asked), 0u);
        EXPECT_EQ(buffer.Offset(), c.got) << c.asked;
        EXPECT_EQ(TextOf(buffer), WideText());
    }
    buffer.Free();
    buffer.SetOffset(70000);
    EXPECT_EQ(buffer.Offset(), 0u);
}

TEST(StringBufferStorage, IsReusedForATextThatFits) {
    CPHeapBuffer buffer(OLESTR("abc"), 0, false);
    const WCHAR* storage = buffer.mStorageProperty;
    EXPECT_EQ(buffer.Offset(), 0u);
    buffer.Assign(Letters(31).c_str());
    EXPECT_EQ(buffer.GetBuffer(), storage);
    buffer.Assign(Letters(32).c_str());
    EXPECT_EQ(buffer.Capacity(), 64u);
    EXPECT_EQ(TextOf(buffer), Letters(32));
}

TEST(StringBufferStorage, IsHandedOverWithTheTextAtItsStartUnlessTheOffsetIsKept) {
    CPBstrBuffer buffer(OLESTR("abc"));
    Bstr detached;
    detached.attach(buffer.Detach());
    EXPECT_EQ(WideText(detached.get()), Letters(3));
    EXPECT_EQ(detached.length(), 32u) << "its capacity";
    EXPECT_EQ(buffer.Text(), nullptr);
    EXPECT_EQ(buffer.Capacity(), 0u);
    EXPECT_EQ(buffer.Detach(), nullptr);
    buffer.Assign(OLESTR("abc"));
    detached.attach(buffer.Detach(true));
    EXPECT_EQ(detached.get()[1], 14);
    EXPECT_EQ(WideText(detached.get() + 14), Letters(3));
}

TEST(StringBufferStorage, MovesWithTheTextAndTheTag) {
    CPHeapBuffer source(OLESTR("abc"), 7);
    const WCHAR* text = source.Text();
    CPHeapBuffer buffer(OLESTR("other"));
    buffer = std::move(source);
    EXPECT_EQ(buffer.Text(), text);
    EXPECT_EQ(buffer.Tag(), 7u);
    EXPECT_EQ(source.Text(), nullptr);
}

TEST(StringBufferStorage, StaysAbsentWhenTooMuchIsAskedFor) {
    CPHeapBuffer buffer;
    EXPECT_EQ(buffer.Allocate(kLargest, true), nullptr);
    EXPECT_EQ(buffer.Allocate(buffer.kMaxCapacity + 1, false), nullptr);
    EXPECT_EQ(buffer.Allocate(buffer.kMaxCapacity, true), nullptr);
    EXPECT_EQ(CPHeapBuffer(kLargest).Text(), nullptr);
    EXPECT_EQ(TextOf(buffer.Append(OLESTR("abc"))), Letters(3));
}

TEST(StringBufferStorage, AnswersProperties) {
    CPHeapBuffer buffer(OLESTR("abc"));
    WCHAR* storage = buffer.mStorageProperty;
    EXPECT_EQ(DWORD{buffer.mLengthProperty}, 3u);
    EXPECT_EQ(DWORD{buffer.mCapacityProperty}, 32u);
    EXPECT_EQ(static_cast<WCHAR*>(buffer.mTextProperty), storage + 14);
    EXPECT_EQ(static_cast<const WCHAR*>(buffer.mConstTextProperty), storage + 14);
    EXPECT_EQ(DWORD{buffer.mOffsetProperty}, 14u);
    buffer.mTagProperty = 5;
    EXPECT_EQ(DWORD{buffer.mTagProperty}, 5u);
    buffer.mOffsetProperty = 15;
    EXPECT_EQ(TextOf(buffer), WideText(OLESTR("bc")));
    const std::unique_ptr<WCHAR, void (*)(WCHAR*)> detached(buffer.mDetachedProperty, CPHeapAllocator::Release);
    EXPECT_EQ(detached.get(), storage);
    EXPECT_EQ(static_cast<WCHAR*>(buffer.mStorageProperty), nullptr);
}

TEST(StringBufferStorage, RefusesPropertiesThatCannotBeSetOrDoNotExist) {
    const auto thrown = [](auto&& access) {
        try {
            access();
        } catch (int value) {
            return value;
        }
        return 0;
    };
    CPHeapBuffer buffer(OLESTR("abc"));
    EXPECT_EQ(thrown([&] { buffer.mLengthProperty = 1; }), -1);
    EXPECT_EQ(thrown([&] { buffer.mStorageProperty = nullptr; }), -1);
    for (const unsigned id : {0u, 9u, 0xAAu}) {
        EXPECT_EQ(thrown([&] { buffer.GetProperty(id); }), -1) << id;
        EXPECT_EQ(thrown([&] { buffer.SetProperty(id, 0); }), -1) << id;
    }
    const BYTE stray[10] = {};
    EXPECT_EQ(thrown([&] { StringBufferPropertyId(stray + 9); }), -1);
}

TEST(StringBufferStorage, LogsItsSizes) {
    CPHeapBuffer buffer;
    const LogCapture log(6);
    buffer.Allocate(10, true);
    EXPECT_THAT(log.Lines(),
                testing::ElementsAre("6 CPWStringBuffer::SetOffset - mOffset=11",
                                     MatchesPattern("6 CPWStringBuffer::Allocate - refsize=10 \\| mBuffer=[0-9A-F]+ "
                                                    "\\| mCapacity=32 \\| mOffset=11")));
}

TEST(StringBufferTakeOver, OwnsATextOfUnknownCapacityUpToItsFirstZero) {
    CPBstrBuffer buffer(OLESTR("former"));
    *buffer.put() = SysAllocString(OLESTR("abcdef"));
    EXPECT_EQ(buffer.Capacity(), 6u);
    EXPECT_EQ(buffer.Offset(), 0u);
    EXPECT_STREQ(buffer.GetMultiByte(), "abcdef");
    *buffer.put() = SysAllocStringLen(OLESTR("ab\0cd"), 5);
    EXPECT_EQ(TextOf(buffer.Append(OLESTR("c"))), Letters(3));
    *buffer.put() = SysAllocStringLen(OLESTR("\0abcd"), 5);
    EXPECT_EQ(buffer.Offset(), 0u);
    EXPECT_EQ(TextOf(buffer.Append(OLESTR("abc"))), Letters(3));
    *buffer.put() = nullptr;
    EXPECT_EQ(buffer.Text(), nullptr);
    EXPECT_EQ(buffer.GetBuffer(), nullptr);
    EXPECT_FALSE(buffer.Erase());
}

TEST(StringBufferMemory, WhenItRunsOutLeavesABufferWithoutStorage) {
    using Buffer = CPWStringBuffer<FailingAllocator>;
    const WideText large = Letters(100);
    void (*const operations[])(Buffer&, const WideText&) = {
        [](Buffer& buffer, const WideText&) { buffer.Allocate(5, true); },
        [](Buffer& buffer, const WideText& text) { buffer.Assign(text.c_str()); },
        [](Buffer& buffer, const WideText& text) { buffer.Assign(std::string(text.size(), 'x').c_str()); },
        [](Buffer& buffer, const WideText& text) { buffer.Append(text.c_str()); },
        [](Buffer& buffer, const WideText& text) { buffer.Append(std::string(text.size(), 'x').c_str()); },
        [](Buffer& buffer, const WideText& text) { EXPECT_FALSE(buffer.Insert(text.c_str(), 1)); },
        [](Buffer& buffer, const WideText& text) { EXPECT_FALSE(buffer.Insert(text.c_str(), 9)); },
    };
    for (const auto operation : operations) {
        Buffer buffer(OLESTR("abc"), 7);
        FailingAllocator::allocationsToFailure = 1;
        operation(buffer, large);
        EXPECT_EQ(buffer.Text(), nullptr);
        EXPECT_EQ(buffer.Capacity(), 0u);
        EXPECT_EQ(buffer.GetMultiByte("default"), std::string("default"));
        EXPECT_EQ(TextOf(buffer.Append(OLESTR("abc"))), Letters(3));
        EXPECT_EQ(buffer.Tag(), 7u);
    }
}

TEST(CPException, CarriesItsMessageAndItsCodeWhereverItIsCopied) {
    const CPException thrown("what went wrong", E_ABORT);
    const CPException copy = thrown;
    EXPECT_STREQ(static_cast<const std::exception&>(copy).what(), "what went wrong");
    EXPECT_EQ(copy.GetCode(), E_ABORT);
    EXPECT_STREQ(CPException(nullptr, E_FAIL).what(), "");
}

}  // namespace
}  // namespace wncom::test
