// Late-bound calls through a type library.
#include <gtest/gtest.h>

#include <vector>

#include "include/wncom/Bstr.h"
#include "invoke_target.h"
#include "tests/platform/OnWine.h"
#include "typelib_text.h"

namespace wncom::test {
namespace {

// Owns what is in it.
struct Value : VARIANT {
    Value() : VARIANT{} {}
    explicit Value(LONG number) : Value() {
        vt = VT_I4;
        lVal = number;
    }
    explicit Value(const char* text) : Value() {
        vt = VT_BSTR;
        bstrVal = SysAllocString(Wide(text).c_str());
    }
    explicit Value(IUnknown* object) : Value() {
        vt = VT_UNKNOWN;
        punkVal = object;
        if (object) object->AddRef();
    }
    Value(VARTYPE type, void* place) : Value() {
        vt = static_cast<VARTYPE>(type | VT_BYREF);
        byref = place;
    }
    Value(Value&& other) noexcept : VARIANT(other) { VariantInit(&other); }
    ~Value() { VariantClear(this); }
};

// Arguments in the order in which a caller writes them.
template <class... Ts>
std::vector<Value> Arguments(Ts&&... arguments) {
    std::vector<Value> list;
    (list.push_back(Value(std::forward<Ts>(arguments))), ...);
    return list;
}

Value Reference(BSTR* text) { return Value(VT_BSTR, text); }

class InvokeThroughTypeLibrary : public testing::Test {
protected:
    void SetUp() override {
        const Held<ITypeLib> library = LoadLibraryOf("platform_invoke.dll");
        ASSERT_TRUE(library);
        ITypeInfo* info = nullptr;
        ASSERT_EQ(library->GetTypeInfoOfGuid(ITarget::kIid, &info), S_OK);
        m_type.reset(info);
    }

    HRESULT Call(DISPID member, std::vector<Value> arguments, VARIANT* result = nullptr, WORD flags = DISPATCH_METHOD,
                 std::vector<DISPID> names = {}) {
        std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
        DISPPARAMS params{reversed.data(), names.data(), static_cast<UINT>(reversed.size()),
                          static_cast<UINT>(names.size())};
        ITarget* instance = &m_target;
        return m_type->Invoke(instance, member, flags, &params, result, &m_exception, &m_wrong);
    }

    Target m_target;
    Held<ITypeInfo> m_type;
    EXCEPINFO m_exception{};
    // Which argument a failed call blames; Wine tells none.
    UINT m_wrong = kNone;
    static constexpr UINT kNone = 99;
};

TEST_F(InvokeThroughTypeLibrary, PassesValuesAndReturnsTheResult) {
    Value result;
    Value flag;
    flag.vt = VT_BOOL;
    flag.boolVal = VARIANT_TRUE;
    std::vector<Value> arguments = Arguments("a", LONG{-7}, LONG{-3});
    arguments.push_back(std::move(flag));
    ASSERT_EQ(Call(1, std::move(arguments), &result), S_OK);
    ASSERT_EQ(result.vt, VT_BSTR);
    EXPECT_EQ(Narrow(result.bstrVal), "a -7 -3 -1");
}

TEST_F(InvokeThroughTypeLibrary, ConvertsArguments) {
    Value result;
    ASSERT_EQ(Call(1, Arguments(LONG{5}, " 12 ", "-1.5", "true"), &result), S_OK);
    EXPECT_EQ(Narrow(result.bstrVal), "5 12 -2 -1");
}

TEST_F(InvokeThroughTypeLibrary, NamesTheArgumentThatDoesNotFit) {
    // Counted from the last one.
    EXPECT_EQ(Call(1, Arguments("a", "no number", LONG{1}, LONG{0})), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(m_wrong, OnWine() ? kNone : 2U);
    EXPECT_EQ(Call(1, Arguments("a", LONG{1}, LONG{70000}, LONG{0})), DISP_E_OVERFLOW);
    EXPECT_EQ(m_wrong, OnWine() ? kNone : 1U);
}

TEST_F(InvokeThroughTypeLibrary, RefusesAWrongNumberOfArguments) {
    EXPECT_EQ(Call(1, Arguments("a")), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(Call(7, Arguments(LONG{1}), nullptr, DISPATCH_PROPERTYGET), DISP_E_BADPARAMCOUNT);
}

TEST_F(InvokeThroughTypeLibrary, RefusesMembersThatCannotBeCalledThatWay) {
    EXPECT_EQ(Call(99, {}), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(Call(6, {}, nullptr, DISPATCH_PROPERTYGET), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(Call(11, {}), DISP_E_MEMBERNOTFOUND);          // restricted
    EXPECT_EQ(Call(0x60000001, {}), DISP_E_MEMBERNOTFOUND);  // AddRef
    EXPECT_EQ(m_type->Invoke(&m_target, 6, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr), E_INVALIDARG);
}

TEST_F(InvokeThroughTypeLibrary, WritesOutParametersIntoTheCallersText) {
    Bstr info;
    std::vector<Value> arguments = Arguments("four");
    arguments.push_back(Reference(info.put()));
    Value result;
    ASSERT_EQ(Call(2, std::move(arguments), &result), S_OK);
    EXPECT_EQ(Narrow(info.get()), "taken");
    EXPECT_EQ(result.lVal, 4);
}

TEST_F(InvokeThroughTypeLibrary, DropsAnOutParameterThatWasGivenByValue) {
    EXPECT_EQ(Call(2, Arguments("four", "")), S_OK);
}

TEST_F(InvokeThroughTypeLibrary, RefusesAReferenceOfAnotherType) {
    LONG number = 0;
    std::vector<Value> arguments = Arguments("four");
    arguments.push_back(Value(VT_I4, &number));
    EXPECT_EQ(Call(2, std::move(arguments)), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(m_wrong, OnWine() ? kNone : 0U);
}

// So a script has nothing to receive a text with but a method's result.
TEST_F(InvokeThroughTypeLibrary, RefusesAVariantForAReferenceToAText) {
    Value info("old");
    std::vector<Value> arguments = Arguments("four");
    arguments.push_back(Value(VT_VARIANT, &info));
    EXPECT_EQ(Call(2, std::move(arguments)), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Narrow(info.bstrVal), "old");
}

TEST_F(InvokeThroughTypeLibrary, PassesAnInOutTextBothWays) {
    BSTR text = SysAllocString(OLESTR("5"));
    std::vector<Value> arguments;
    arguments.push_back(Reference(&text));
    EXPECT_EQ(Call(3, std::move(arguments)), S_OK);
    EXPECT_EQ(Narrow(text), "5+");
    SysFreeString(text);
}

TEST_F(InvokeThroughTypeLibrary, WritesThroughAPointerWithoutDirection) {
    Bstr copy;
    std::vector<Value> arguments = Arguments("new");
    arguments.push_back(Reference(copy.put()));
    ASSERT_EQ(Call(10, std::move(arguments)), S_OK);
    EXPECT_EQ(Narrow(copy.get()), "new");
}

TEST_F(InvokeThroughTypeLibrary, AsksObjectsForTheDeclaredInterface) {
    {
        Value result;
        ASSERT_EQ(Call(4, Arguments(static_cast<IUnknown*>(&m_target)), &result), S_OK);
        EXPECT_EQ(result.vt, VT_DISPATCH);
        EXPECT_EQ(result.pdispVal, &m_target);
        EXPECT_EQ(m_target.references, 2U);
    }
    Target other;
    other.isNoTarget = true;
    // Wine answers the object's own refusal, and keeps a reference then.
    EXPECT_EQ(Call(4, Arguments(static_cast<IUnknown*>(&other))), OnWine() ? E_NOINTERFACE : DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Call(4, Arguments(LONG{1})), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Call(4, Arguments(static_cast<IUnknown*>(nullptr))), S_OK);
    EXPECT_EQ(m_target.references, 1U);
    EXPECT_EQ(other.references, OnWine() ? 2U : 1U);
}

TEST_F(InvokeThroughTypeLibrary, TellsTheMethodsOwnFailureAndWhatItExplains) {
    Bstr info;
    std::vector<Value> arguments;
    arguments.push_back(Reference(info.put()));
    EXPECT_EQ(Call(5, std::move(arguments)), DISP_E_EXCEPTION);
    EXPECT_EQ(m_exception.scode, kOwnStatus);
    EXPECT_EQ(m_exception.bstrDescription, nullptr);
    EXPECT_EQ(Narrow(info.get()), "why");
}

TEST_F(InvokeThroughTypeLibrary, ReadsAndWritesProperties) {
    EXPECT_EQ(Call(7, Arguments("42"), nullptr, DISPATCH_PROPERTYPUT, {DISPID_PROPERTYPUT}), S_OK);
    Value result;
    EXPECT_EQ(Call(7, {}, &result, DISPATCH_PROPERTYGET | DISPATCH_METHOD), S_OK);
    EXPECT_EQ(result.lVal, 42);
    EXPECT_EQ(Call(7, Arguments(LONG{1}), nullptr, DISPATCH_PROPERTYPUT), DISP_E_PARAMNOTFOUND);
}

TEST_F(InvokeThroughTypeLibrary, TakesNamedArguments) {
    // The names belong to the last two arguments, the last one first.
    Value result;
    ASSERT_EQ(Call(1, Arguments("a", LONG{10}, LONG{0}, LONG{20}), &result, DISPATCH_METHOD, {2, 3}), S_OK);
    EXPECT_EQ(Narrow(result.bstrVal), "a 10 20 0");
    // A parameter that has its argument already, and one that does not exist. Wine has other statuses for them.
    for (const DISPID name : {0, 17}) {
        const HRESULT hr = Call(1, Arguments("a", LONG{1}, LONG{2}, LONG{3}), nullptr, DISPATCH_METHOD, {name});
        EXPECT_TRUE(hr == DISP_E_PARAMNOTFOUND || (OnWine() && FAILED(hr))) << name;
        EXPECT_EQ(m_wrong, OnWine() ? kNone : 0U);
    }
}

TEST_F(InvokeThroughTypeLibrary, PassesNineParameters) {
    Value result;
    ASSERT_EQ(Call(9, Arguments(LONG{1}, LONG{2}, LONG{3}, LONG{4}, LONG{5}, LONG{6}, LONG{7}, LONG{8}), &result),
              S_OK);
    EXPECT_EQ(result.lVal, 87654321);
}

TEST_F(InvokeThroughTypeLibrary, PassesAVariantAsItIs) {
    Value result;
    ASSERT_EQ(Call(8, Arguments("text"), &result), S_OK);
    EXPECT_EQ(result.lVal, VT_BSTR);
    Value own(LONG{5});
    std::vector<Value> arguments;
    arguments.push_back(Value(VT_VARIANT, &own));
    Value again;
    ASSERT_EQ(Call(8, std::move(arguments), &again), S_OK);
    EXPECT_EQ(again.lVal, VT_I4);
}

TEST_F(InvokeThroughTypeLibrary, CallsATableWithoutDispatchMethods) {
    class Plain final : public IPlain {
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
        ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
        ULONG STDMETHODCALLTYPE Release() override { return 1; }
        HRESULT STDMETHODCALLTYPE Double(LONG number, LONG* result) override {
            *result = 2 * number;
            return S_OK;
        }
    };
    Plain plain;
    const Held<ITypeLib> library = LoadLibraryOf("platform_invoke.dll");
    ITypeInfo* info = nullptr;
    ASSERT_EQ(library->GetTypeInfoOfGuid(IPlain::kIid, &info), S_OK);
    const Held<ITypeInfo> type(info);
    Value argument(LONG{21});
    Value result;
    DISPPARAMS params{&argument, nullptr, 1, 0};
    IPlain* instance = &plain;
    ASSERT_EQ(type->Invoke(instance, 1, DISPATCH_METHOD, &params, &result, nullptr, nullptr), S_OK);
    EXPECT_EQ(result.lVal, 42);
}

}  // namespace
}  // namespace wncom::test
