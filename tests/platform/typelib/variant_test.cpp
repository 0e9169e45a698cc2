// Variants: what they own and how their types change.
#include <gtest/gtest.h>

#include <windows.h>

#include <ole2.h>

#include <string>

#include "typelib_text.h"

namespace wncom::test {
namespace {

VARIANT Number(LONG value) {
    VARIANT variant{};
    variant.vt = VT_I4;
    variant.lVal = value;
    return variant;
}

VARIANT Fraction(double value) {
    VARIANT variant{};
    variant.vt = VT_R8;
    variant.dblVal = value;
    return variant;
}

VARIANT Text(const std::string& text) {
    const auto wide = Wide(text);
    VARIANT variant{};
    variant.vt = VT_BSTR;
    variant.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    return variant;
}

// "TYPE:VALUE" after a change of type, or the status in hex.
std::string Changed(VARIANT source, VARTYPE type) {
    VARIANT result{};
    const HRESULT hr = VariantChangeType(&result, &source, 0, type);
    VariantClear(&source);
    char text[64];
    if (FAILED(hr)) {
        snprintf(text, sizeof(text), "%08X", static_cast<unsigned>(hr));
        return text;
    }
    EXPECT_EQ(result.vt, type);
    switch (type) {
        case VT_BSTR:
            snprintf(text, sizeof(text), "%s", Narrow(result.bstrVal).c_str());
            break;
        case VT_R8:
            snprintf(text, sizeof(text), "%g", result.dblVal);
            break;
        case VT_I2:
        case VT_BOOL:
            snprintf(text, sizeof(text), "%d", result.iVal);
            break;
        default:
            snprintf(text, sizeof(text), "%lld", type == VT_UI4 ? static_cast<long long>(result.ulVal) : result.lVal);
            break;
    }
    VariantClear(&result);
    return text;
}

constexpr const char* kMismatch = "80020005";
constexpr const char* kOverflow = "8002000A";

TEST(Variant, TurnsTextsIntoNumbers) {
    EXPECT_EQ(Changed(Text(" -12 "), VT_I4), "-12");
    EXPECT_EQ(Changed(Text("2.5"), VT_I4), "2");
    EXPECT_EQ(Changed(Text("3.5"), VT_I4), "4");
    EXPECT_EQ(Changed(Text("4294967295"), VT_UI4), "4294967295");
    EXPECT_EQ(Changed(Text("1e3"), VT_R8), "1000");
    EXPECT_EQ(Changed(Text("1e-400"), VT_R8), "0");
    EXPECT_EQ(Changed(Text(""), VT_I4), kMismatch);
    EXPECT_EQ(Changed(Text("12x"), VT_I4), kMismatch);
    EXPECT_EQ(Changed(Text("nan"), VT_R8), kMismatch);
    // A number's text ends with its first zero.
    EXPECT_EQ(Changed(Text(std::string("1\0x", 3)), VT_I4), "1");
    EXPECT_EQ(Changed(Text("2147483648"), VT_I4), kOverflow);
}

TEST(Variant, TurnsNumbersIntoTexts) {
    EXPECT_EQ(Changed(Number(-2147483647 - 1), VT_BSTR), "-2147483648");
    EXPECT_EQ(Changed(Fraction(0.1), VT_BSTR), "0.1");
    EXPECT_EQ(Changed(Fraction(1e16), VT_BSTR), "1E+16");
    EXPECT_EQ(Changed(Fraction(-0.0), VT_BSTR), "0");
    VARIANT flag{};
    flag.vt = VT_BOOL;
    flag.boolVal = VARIANT_TRUE;
    EXPECT_EQ(Changed(flag, VT_BSTR), "-1");
    EXPECT_EQ(Changed(VARIANT{}, VT_BSTR), "");
}

TEST(Variant, KeepsNumbersWithinTheirRange) {
    EXPECT_EQ(Changed(Number(32768), VT_I2), kOverflow);
    EXPECT_EQ(Changed(Number(-32768), VT_I2), "-32768");
    EXPECT_EQ(Changed(Fraction(-1), VT_UI4), kOverflow);
    EXPECT_EQ(Changed(Fraction(2147483647.4), VT_I4), "2147483647");
    EXPECT_EQ(Changed(Fraction(2147483647.5), VT_I4), kOverflow);
    EXPECT_EQ(Changed(VARIANT{}, VT_I4), "0");
}

TEST(Variant, KnowsTruth) {
    EXPECT_EQ(Changed(Text("TRUE"), VT_BOOL), "-1");
    EXPECT_EQ(Changed(Text("false"), VT_BOOL), "0");
    EXPECT_EQ(Changed(Text("7"), VT_BOOL), "-1");
    EXPECT_EQ(Changed(Text("yes"), VT_BOOL), kMismatch);
    EXPECT_EQ(Changed(Number(5), VT_BOOL), "-1");
}

TEST(Variant, RefusesTypesThatDoNotGoTogether) {
    VARIANT null{};
    null.vt = VT_NULL;
    EXPECT_EQ(Changed(null, VT_I4), kMismatch);
    EXPECT_EQ(Changed(Number(1), VT_DISPATCH), kMismatch);
    EXPECT_EQ(Changed(Number(1), VT_I4 | VT_BYREF), kMismatch);
    VARIANT unknown{};
    unknown.vt = 0x123;
    EXPECT_EQ(VariantClear(&unknown), DISP_E_BADVARTYPE);
}

TEST(Variant, ReadsThroughReferences) {
    LONG number = 7;
    VARIANT reference{};
    reference.vt = VT_I4 | VT_BYREF;
    reference.plVal = &number;
    VARIANT outer{};
    outer.vt = VT_VARIANT | VT_BYREF;
    outer.pvarVal = &reference;
    EXPECT_EQ(Changed(reference, VT_BSTR), "7");
    EXPECT_EQ(Changed(outer, VT_BSTR), "7");
}

TEST(Variant, ChangesInPlace) {
    VARIANT value = Text("5");
    ASSERT_EQ(VariantChangeType(&value, &value, 0, VT_I4), S_OK);
    EXPECT_EQ(value.lVal, 5);
    ASSERT_EQ(VariantChangeType(&value, &value, 0, VT_BSTR), S_OK);
    EXPECT_EQ(Narrow(value.bstrVal), "5");
    EXPECT_EQ(VariantChangeType(&value, &value, 0, VT_DISPATCH), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Narrow(value.bstrVal), "5");
    VariantClear(&value);
}

TEST(Variant, CopiesTextsWithTheZerosInThem) {
    VARIANT text = Text(std::string("a\0b", 3));
    VARIANT copy = Text("old");
    ASSERT_EQ(VariantCopy(&copy, &text), S_OK);
    EXPECT_NE(copy.bstrVal, text.bstrVal);
    EXPECT_EQ(Narrow(copy.bstrVal), std::string("a\0b", 3));
    VariantClear(&text);
    VariantClear(&copy);
    EXPECT_EQ(copy.vt, VT_EMPTY);
}

TEST(Variant, DoesNotOwnWhatItRefersTo) {
    BSTR text = SysAllocString(OLESTR("mine"));
    VARIANT reference{};
    reference.vt = VT_BSTR | VT_BYREF;
    reference.pbstrVal = &text;
    EXPECT_EQ(VariantClear(&reference), S_OK);
    EXPECT_EQ(Narrow(text), "mine");
    SysFreeString(text);
}

}  // namespace
}  // namespace wncom::test
