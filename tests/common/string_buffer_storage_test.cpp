// Where a buffer's storage comes from, where the text lies in it, who owns it, and its properties.
#include <gmock/gmock.h>

#include "common/CPException.h"
#include "common/CPWStringBuffer.inl"
#include "common/CPWStringBufferEditing.inl"
#include "common/CPWStringBufferMultiByte.inl"
#include "tests/common/string_buffer_kinds.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MatchesPattern.h"
#include "wncom/Bstr.h"

namespace wncom::test {
namespace {

constexpr std::size_t kLargest = static_cast<std::size_t>(-1);

template <class Allocator>
struct StringBufferStorage : testing::Test {
    CPWStringBuffer<Allocator> buffer;
};
using Kinds = testing::Types<CPBstrAllocator, CPHeapAllocator>;
TYPED_TEST_SUITE(StringBufferStorage, Kinds);

TYPED_TEST(StringBufferStorage, GrowsByTheRoomThatTheSizeEarns) {
    struct {
        std::size_t size;
        bool grow;
        std::size_t capacity, offset;
    } const cases[] = {
        {0, true, 32, 16},     {10, true, 32, 11},    {16, true, 32, 8},       {255, true, 510, 127},
        {256, true, 512, 128}, {300, true, 576, 138}, {1000, true, 1407, 203}, {10000, true, 10499, 249},
        {300, false, 300, 0},  {0, false, 0, 0},      {1, false, 1, 0},        {2, false, 2, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.size);
        EXPECT_NE(this->buffer.Allocate(c.size, c.grow), nullptr);
        EXPECT_EQ(this->buffer.Capacity(), c.capacity);
        EXPECT_EQ(this->buffer.Offset(), c.offset);
        EXPECT_EQ(this->buffer.Length(), 0u);
    }
}

TYPED_TEST(StringBufferStorage, OfAnAskedSizeHoldsATextOfThatSize) {
    const CPWStringBuffer<TypeParam> sized(std::size_t{10});
    EXPECT_EQ(sized.Capacity(), 12u);
    EXPECT_EQ(sized.Offset(), 0u);
    EXPECT_EQ(TextOf(sized), WideText());
}

TYPED_TEST(StringBufferStorage, TakesAsMuchTextAsItsSmallestSizesHold) {
    for (const std::size_t size : {0u, 1u, 2u, 3u, 4u}) {
        for (const std::size_t length : {0u, 1u, 2u, 3u, 4u, 5u}) {
            this->buffer.Allocate(size, false);
            this->buffer.Append(Letters(length).c_str());
            EXPECT_EQ(TextOf(this->buffer), Letters(length)) << length << " in " << size;
            this->buffer.Erase();
            EXPECT_EQ(TextOf(this->buffer), WideText());
            this->buffer.Append("ab");
            EXPECT_EQ(TextOf(this->buffer), Letters(2)) << length << " in " << size;
        }
    }
}

TYPED_TEST(StringBufferStorage, RecordsItsOffsetInItsFirstTwoCharacters) {
    this->buffer.Assign(OLESTR("abc"));
    EXPECT_EQ(this->buffer.Capacity(), 32u);
    const WCHAR* storage = this->buffer.mStorageProperty;
    EXPECT_EQ(storage[0], 0);
    EXPECT_EQ(storage[1], 14);
    EXPECT_EQ(this->buffer.Text(), storage + 14);
}

TYPED_TEST(StringBufferStorage, SetsOnlyOffsetsThatCanBeRecorded) {
    this->buffer.Allocate(100000, false);
    struct {
        std::size_t asked, got;
    } const cases[] = {{0, 0}, {1, 0}, {2, 2}, {65535, 65535}, {65536, 65535}, {70000, 65535}, {kLargest, 65535}};
    for (const auto& c : cases) {
        EXPECT_EQ(this->buffer.SetOffset(c.asked), 0u);
        EXPECT_EQ(this->buffer.Offset(), c.got) << c.asked;
    }
}

TYPED_TEST(StringBufferStorage, KeepsAnOffsetInsideTheStorage) {
    this->buffer.Allocate(10, false);
    this->buffer.SetOffset(70000);
    EXPECT_EQ(this->buffer.Offset(), 9u);
    EXPECT_EQ(TextOf(this->buffer), WideText());
    this->buffer.Free();
    this->buffer.SetOffset(70000);
    EXPECT_EQ(this->buffer.Offset(), 0u);
}

TYPED_TEST(StringBufferStorage, IsReusedForATextThatFits) {
    this->buffer.Assign(OLESTR("abc"), false);
    const WCHAR* storage = this->buffer.mStorageProperty;
    EXPECT_EQ(this->buffer.Offset(), 0u);
    this->buffer.Assign(Letters(31).c_str());
    EXPECT_EQ(this->buffer.GetBuffer(), storage);
    this->buffer.Assign(Letters(32).c_str());
    EXPECT_EQ(this->buffer.Capacity(), 64u);
    EXPECT_EQ(TextOf(this->buffer), Letters(32));
}

TYPED_TEST(StringBufferStorage, IsHandedOverWithItsTextAtTheStart) {
    this->buffer.Assign(OLESTR("abc"));
    const std::unique_ptr<WCHAR, void (*)(WCHAR*)> detached(this->buffer.Detach(), TypeParam::Release);
    EXPECT_EQ(WideText(detached.get()), Letters(3));
    EXPECT_EQ(this->buffer.Text(), nullptr);
    EXPECT_EQ(this->buffer.Capacity(), 0u);
    EXPECT_EQ(this->buffer.Detach(), nullptr);
}

TYPED_TEST(StringBufferStorage, IsHandedOverAsItIsWhenTheOffsetIsKept) {
    this->buffer.Assign(OLESTR("abc"));
    const std::unique_ptr<WCHAR, void (*)(WCHAR*)> detached(this->buffer.Detach(true), TypeParam::Release);
    EXPECT_EQ(detached.get()[1], 14);
    EXPECT_EQ(WideText(detached.get() + 14), Letters(3));
}

TYPED_TEST(StringBufferStorage, MovesWithTheTextAndTheTag) {
    CPWStringBuffer<TypeParam> source(OLESTR("abc"), 7);
    const WCHAR* text = source.Text();
    this->buffer.Assign(OLESTR("other"));
    this->buffer = std::move(source);
    EXPECT_EQ(this->buffer.Text(), text);
    EXPECT_EQ(this->buffer.Tag(), 7u);
    EXPECT_EQ(source.Text(), nullptr);
}

TYPED_TEST(StringBufferStorage, StaysAbsentWhenTooMuchIsAskedFor) {
    EXPECT_EQ(this->buffer.Allocate(kLargest, true), nullptr);
    EXPECT_EQ(this->buffer.Allocate(kLargest, false), nullptr);
    EXPECT_EQ(this->buffer.Allocate(this->buffer.kMaxCapacity, true), nullptr);
    EXPECT_EQ(CPWStringBuffer<TypeParam>(kLargest).Text(), nullptr);
    EXPECT_EQ(CPWStringBuffer<TypeParam>(kLargest - 1).Text(), nullptr);
    EXPECT_EQ(TextOf(this->buffer.Append(OLESTR("abc"))), Letters(3));
}

TYPED_TEST(StringBufferStorage, AnswersProperties) {
    this->buffer.Assign(OLESTR("abc"));
    WCHAR* storage = this->buffer.mStorageProperty;
    EXPECT_EQ(DWORD{this->buffer.mLengthProperty}, 3u);
    EXPECT_EQ(DWORD{this->buffer.mCapacityProperty}, 32u);
    EXPECT_EQ(static_cast<WCHAR*>(this->buffer.mTextProperty), storage + 14);
    EXPECT_EQ(static_cast<const WCHAR*>(this->buffer.mConstTextProperty), storage + 14);
    EXPECT_EQ(DWORD{this->buffer.mOffsetProperty}, 14u);
    this->buffer.mTagProperty = 5;
    EXPECT_EQ(DWORD{this->buffer.mTagProperty}, 5u);
    this->buffer.mOffsetProperty = 15;
    EXPECT_EQ(TextOf(this->buffer), WideText(OLESTR("bc")));
    const std::unique_ptr<WCHAR, void (*)(WCHAR*)> detached(this->buffer.mDetachedProperty, TypeParam::Release);
    EXPECT_EQ(detached.get(), storage);
    EXPECT_EQ(static_cast<WCHAR*>(this->buffer.mStorageProperty), nullptr);
}

TYPED_TEST(StringBufferStorage, RefusesPropertiesThatCannotBeSetOrDoNotExist) {
    const auto thrown = [](auto&& access) {
        try {
            access();
        } catch (int value) {
            return value;
        }
        return 0;
    };
    EXPECT_EQ(thrown([&] { this->buffer.mLengthProperty = 1; }), -1);
    EXPECT_EQ(thrown([&] { this->buffer.mStorageProperty = nullptr; }), -1);
    for (const unsigned id : {0u, 9u, 0xAAu}) {
        EXPECT_EQ(thrown([&] { this->buffer.GetProperty(id); }), -1) << id;
        EXPECT_EQ(thrown([&] { this->buffer.SetProperty(id, 0); }), -1) << id;
    }
    EXPECT_EQ(thrown([] {
                  const BYTE stray[10] = {};
                  StringBufferPropertyId(stray + 9);
              }),
              -1);
}

TYPED_TEST(StringBufferStorage, LogsItsSizes) {
    const LogCapture log(6);
    this->buffer.Allocate(10, true);
    EXPECT_THAT(log.Lines(),
                testing::ElementsAre("6 CPWStringBuffer::SetOffset - mOffset=11",
                                     MatchesPattern("6 CPWStringBuffer::Allocate - refsize=10 \\| mBuffer=[0-9A-F]+ "
                                                    "\\| mCapacity=32 \\| mOffset=11")));
}

TEST(StringBufferTakeOver, OwnsATextOfUnknownCapacity) {
    CPBstrBuffer buffer(OLESTR("former"));
    *buffer.put() = SysAllocString(OLESTR("abcdef"));
    EXPECT_EQ(buffer.Length(), 6u);
    EXPECT_EQ(buffer.Offset(), 0u);
    EXPECT_EQ(buffer.Capacity(), 6u);
    EXPECT_STREQ(buffer.GetMultiByte(), "abcdef");
}

TEST(StringBufferTakeOver, EditsATextThatFillsItsStorage) {
    for (const std::size_t length : {0u, 1u, 2u, 3u, 4u, 6u, 40u}) {
        SCOPED_TRACE(length);
        const WideText given = Letters(length);
        const auto taken = [&given] {
            CPBstrBuffer buffer;
            *buffer.put() = SysAllocString(given.c_str());
            return buffer;
        };
        EXPECT_EQ(TextOf(taken().Append(OLESTR("xy"))), given + WideText(OLESTR("xy")));
        EXPECT_EQ(TextOf(taken().Append("xy")), given + WideText(OLESTR("xy")));
        EXPECT_EQ(TextOf(taken().Assign(given.c_str())), given);
        CPBstrBuffer inserted = taken();
        EXPECT_TRUE(inserted.Insert(OLESTR("xy"), length));
        EXPECT_EQ(TextOf(inserted), given + WideText(OLESTR("xy")));
        CPBstrBuffer erased = taken();
        EXPECT_EQ(erased.Erase(), length > 0);
        EXPECT_EQ(TextOf(erased), WideText());
        EXPECT_EQ(TextOf(erased.Append(given.c_str())), given);
        for (std::size_t last = 0; last < length; ++last) {
            CPBstrBuffer cut = taken();
            EXPECT_TRUE(cut.Erase(0, last));
            EXPECT_EQ(TextOf(cut), given.substr(last + 1));
            EXPECT_EQ(WideText(cut.GetBuffer()), given.substr(last + 1));
        }
    }
}

TEST(StringBufferTakeOver, OfNothingLeavesTheBufferEmpty) {
    CPBstrBuffer buffer(OLESTR("former"));
    *buffer.put() = nullptr;
    EXPECT_EQ(buffer.Text(), nullptr);
    EXPECT_EQ(buffer.Length(), 0u);
    EXPECT_EQ(buffer.GetBuffer(), nullptr);
    EXPECT_FALSE(buffer.Erase());
}

TEST(StringBufferTakeOver, StopsAtAZeroInTheText) {
    CPBstrBuffer buffer;
    *buffer.put() = SysAllocStringLen(OLESTR("ab\0cd"), 5);
    EXPECT_EQ(TextOf(buffer.Append(OLESTR("c"))), Letters(3));
    *buffer.put() = SysAllocStringLen(OLESTR("\0abcd"), 5);
    EXPECT_EQ(buffer.Offset(), 0u);
    EXPECT_EQ(TextOf(buffer.Append(OLESTR("abc"))), Letters(3));
}

TEST(StringBufferTakeOver, HandsABstrOnWithTheCapacityAsItsLength) {
    CPBstrBuffer buffer(OLESTR("abc"));
    Bstr text;
    text.attach(buffer.Detach());
    EXPECT_EQ(text.length(), 32u);
    EXPECT_EQ(WideText(text.get()), Letters(3));
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
