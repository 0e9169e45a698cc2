// Variants: what they own and how their types change.
#include <gtest/gtest.h>

#include <windows.h>

#include <ole2.h>

#include <string>

#include "tests/support/Com.h"

namespace wncom::test {
namespace {

VARIANT Number(LONG value) {
    VARIANT variant{};
    variant.vt = VT_I4;
    variant.lVal = value;
    return variant;
}

VARIANT TextValue(const std::string& text) {
    const auto wide = Wide(text);
    VARIANT variant{};
    variant.vt = VT_BSTR;
    variant.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    return variant;
}

VARIANT OfType(int type, void* place = nullptr) {
    VARIANT variant{};
    variant.vt = static_cast<VARTYPE>(type);
    variant.byref = place;
    return variant;
}

// The value after a change of type in place, or the status in hex with the old value kept.
std::string Changed(VARIANT value, VARTYPE type) {
    const VARIANT before = value;
    const HRESULT hr = VariantChangeType(&value, &value, 0, type);
    if (FAILED(hr)) {
        EXPECT_EQ(value.vt, before.vt);
        EXPECT_EQ(value.byref, before.byref);
    } else {
        EXPECT_EQ(value.vt, type);
    }
    const std::string text = FAILED(hr)        ? Hex(hr)
                             : type == VT_BSTR ? Narrow(value.bstrVal)
                                               : std::to_string(value.lVal);
    VariantClear(&value);
    return text;
}

TEST(Variant, ChangesBetweenNumbersAndTexts) {
    const std::string mismatch = Hex(DISP_E_TYPEMISMATCH);
    const std::string overflow = Hex(DISP_E_OVERFLOW);
    LONG number = 7;
    BSTR text = SysAllocString(OLESTR("8"));
    VARIANT reference = OfType(VT_I4 | VT_BYREF, &number);
    const struct {
        VARIANT from;
        VARTYPE to;
        std::string expected;
    } cases[] = {
        {TextValue(" -12 "), VT_I4, "-12"},
        {TextValue("+3"), VT_I4, "3"},
        // A number's text ends with its first zero.
        {TextValue(std::string("1\0x", 3)), VT_I4, "1"},
        {TextValue("2147483648"), VT_I4, overflow},
        {TextValue(""), VT_I4, mismatch},
        {TextValue("12x"), VT_I4, mismatch},
        {TextValue("+-1"), VT_I4, mismatch},
        {Number(-2147483647 - 1), VT_BSTR, "-2147483648"},
        {VARIANT{}, VT_I4, "0"},
        {VARIANT{}, VT_BSTR, ""},
        {OfType(VT_NULL), VT_I4, mismatch},
        {Number(1), VT_DISPATCH, mismatch},
        {Number(1), VT_I4 | VT_BYREF, mismatch},
        {reference, VT_BSTR, "7"},
        {OfType(VT_BSTR | VT_BYREF, &text), VT_I4, "8"},
        {OfType(VT_VARIANT | VT_BYREF, &reference), VT_BSTR, "7"},
    };
    for (const auto& one : cases) EXPECT_EQ(Changed(one.from, one.to), one.expected) << &one - cases;
    EXPECT_EQ(Narrow(text), "8") << "a variant does not own what it refers to";
    SysFreeString(text);
}

TEST(Variant, CopiesTextsWithTheZerosInThem) {
    VARIANT text = TextValue(std::string("a\0b", 3));
    VARIANT copy = TextValue("old");
    ASSERT_EQ(VariantChangeType(&copy, &text, 0, VT_BSTR), S_OK);
    EXPECT_NE(copy.bstrVal, text.bstrVal);
    EXPECT_EQ(Narrow(copy.bstrVal), std::string("a\0b", 3));
    VariantClear(&text);
    VariantClear(&copy);
    EXPECT_EQ(copy.vt, VT_EMPTY);
    VARIANT unknown = OfType(0x123);
    EXPECT_EQ(VariantClear(&unknown), DISP_E_BADVARTYPE);
}

}  // namespace
}  // namespace wncom::test
