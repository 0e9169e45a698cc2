#include <gtest/gtest.h>
#include <windows.h>

#include <oleauto.h>

#include <string_view>

#include "include/wncom/Bstr.h"

namespace {

using wncom::Bstr;

TEST(Bstr, KeepsZeroUnitsInside) {
    const std::basic_string_view<OLECHAR> text(OLESTR("a\0b"), 3);
    const Bstr copy(text);
    EXPECT_EQ(copy.view(), text);
    EXPECT_EQ(copy.get()[3], 0);
}

TEST(Bstr, NullIsAnEmptyText) {
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    EXPECT_EQ(SysStringLen(nullptr), 0U);
    EXPECT_EQ(SysStringByteLen(nullptr), 0U);
    SysFreeString(nullptr);
}

TEST(Bstr, CountsAnOddNumberOfBytes) {
    Bstr text;
    *text.put() = SysAllocStringByteLen("abc", 3);
    EXPECT_EQ(SysStringByteLen(text.get()), 3U);
    EXPECT_EQ(SysStringLen(text.get()), 1U);
    EXPECT_STREQ(reinterpret_cast<const char*>(text.get()), "abc");
}

TEST(Bstr, MakesTerminatedRoomWithoutASource) {
    Bstr text;
    *text.put() = SysAllocStringLen(nullptr, 7);
    ASSERT_TRUE(text);
    EXPECT_EQ(text.length(), 7U);
    EXPECT_EQ(text.get()[7], 0);
}

TEST(Bstr, RefusesALengthWhoseBytesOverflow) {
    for (const UINT units : {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        EXPECT_EQ(SysAllocStringLen(nullptr, units), nullptr) << units;
    }
    EXPECT_EQ(SysAllocStringByteLen(nullptr, 0xFFFFFFFFU), nullptr);
}

}  // namespace
