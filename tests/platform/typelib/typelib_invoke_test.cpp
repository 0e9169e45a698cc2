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
    Value(int number) : Value() {
        vt = VT_I4;
        lVal = number;
    }
    Value(const char* text) : Value() {
        vt = VT_BSTR;
        bstrVal = SysAllocString(Wide(text).c_str());
    }
    Value(IUnknown* object) : Value() {
        vt = VT_UNKNOWN;
        punkVal = object;
        if (object) object->AddRef();
    }
    Value(VARTYPE type, void* place) : Value() {
        vt = static_cast<VARTYPE>(type | VT_BYREF);
        byref = place;
    }
    Value(Bstr& text) : Value(VT_BSTR, text.put()) {}
    // Windows' own header lacks the const.
    Value(const Value& other) : Value() { VariantChangeType(this, const_cast<Value*>(&other), 0, other.vt); }
    Value(Value&& other) noexcept : VARIANT(other) { VariantInit(&other); }
    ~Value() { VariantClear(this); }
};

class InvokeThroughTypeLibrary : public testing::Test {
protected:
    // The arguments in the order in which a caller writes them.
    template <class... Ts>
    HRESULT Call(DISPID member, Ts&&... arguments) {
        return CallAs(member, DISPATCH_METHOD, {}, std::forward<Ts>(arguments)...);
    }
    template <class... Ts>
    HRESULT CallAs(DISPID member, WORD flags, std::vector<DISPID> names, Ts&&... arguments) {
        std::vector<Value> given;
        (given.emplace_back(std::forward<Ts>(arguments)), ...);
        std::vector<VARIANT> reversed(given.rbegin(), given.rend());
        DISPPARAMS params{reversed.data(), names.data(), static_cast<UINT>(reversed.size()),
                          static_cast<UINT>(names.size())};
        VariantClear(&m_result);
        m_wrong = kNone;
        ITarget* instance = &m_target;
        return Type(ITarget::kIid)->Invoke(instance, member, flags, &params, &m_result, &m_exception, &m_wrong);
    }
    Held<ITypeInfo> Type(const IID& iid) {
        ITypeInfo* info = nullptr;
        EXPECT_EQ(m_library->GetTypeInfoOfGuid(iid, &info), S_OK);
        return Held<ITypeInfo>(info);
    }
    std::string ResultText() const { return m_result.vt == VT_BSTR ? Narrow(m_result.bstrVal) : "no text"; }

    static constexpr UINT kNone = 99;
    Held<ITypeLib> m_library = LoadLibraryOf("platform_invoke.dll");
    Target m_target;
    Value m_result;
    EXCEPINFO m_exception{};
    // Which argument a failed call blames, counted from the last; Wine tells none.
    UINT m_wrong = kNone;
};

TEST_F(InvokeThroughTypeLibrary, ConvertsArgumentsAndReturnsTheResult) {
    ASSERT_EQ(Call(1, "a", -7), S_OK);
    EXPECT_EQ(ResultText(), "a -7");
    ASSERT_EQ(Call(1, 5, " 12 "), S_OK);
    EXPECT_EQ(ResultText(), "5 12");
    ASSERT_EQ(Call(8, 1, 2, 3, 4, 5, 6, 7, 8), S_OK);
    EXPECT_EQ(m_result.lVal, 87654321);
}

TEST_F(InvokeThroughTypeLibrary, NamesTheArgumentThatDoesNotFit) {
    LONG number = 0;
    Value variable("old");
    const auto expect = [&](HRESULT status, HRESULT expected, UINT wrong) {
        EXPECT_EQ(status, expected);
        EXPECT_EQ(m_wrong, OnWine() ? kNone : wrong);
    };
    expect(Call(1, "a", "no number"), DISP_E_TYPEMISMATCH, 0);
    expect(Call(1, static_cast<IUnknown*>(&m_target), 1), DISP_E_TYPEMISMATCH, 1);
    expect(Call(1, "a", "2147483648"), DISP_E_OVERFLOW, 0);
    // References to what the method does not write; a script has nothing to receive a text with but a result.
    expect(Call(2, "four", Value(VT_I4, &number)), DISP_E_TYPEMISMATCH, 0);
    expect(Call(2, "four", Value(VT_VARIANT, &variable)), DISP_E_TYPEMISMATCH, 0);
    EXPECT_EQ(Narrow(variable.bstrVal), "old");
}

TEST_F(InvokeThroughTypeLibrary, RefusesMembersThatCannotBeCalledThatWay) {
    EXPECT_EQ(Call(1, "a"), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(CallAs(7, DISPATCH_PROPERTYGET, {}, 1), DISP_E_BADPARAMCOUNT);
    EXPECT_EQ(Call(99), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(CallAs(6, DISPATCH_PROPERTYGET, {}), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(Call(10), DISP_E_MEMBERNOTFOUND);          // restricted
    EXPECT_EQ(Call(0x60000001), DISP_E_MEMBERNOTFOUND);  // AddRef
    EXPECT_EQ(Type(ITarget::kIid)->Invoke(&m_target, 6, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr),
              E_INVALIDARG);
}

TEST_F(InvokeThroughTypeLibrary, WritesThroughReferencesToTheCallersTexts) {
    Bstr info;
    ASSERT_EQ(Call(2, "four", info), S_FALSE) << "the method's own success";
    EXPECT_EQ(Narrow(info.get()), "taken");
    EXPECT_EQ(m_result.lVal, 4);
    ASSERT_EQ(Call(9, "new", info), S_OK);
    EXPECT_EQ(Narrow(info.get()), "new");
    BSTR text = SysAllocString(OLESTR("5"));
    EXPECT_EQ(Call(3, Value(VT_BSTR, &text)), S_OK);
    EXPECT_EQ(Narrow(text), "5+");
    SysFreeString(text);
    // By value, what is written has no taker.
    EXPECT_EQ(Call(2, "four", ""), S_FALSE);
}

TEST_F(InvokeThroughTypeLibrary, AsksObjectsForTheDeclaredInterface) {
    ASSERT_EQ(Call(4, static_cast<IUnknown*>(&m_target)), S_OK);
    EXPECT_EQ(m_result.vt, VT_DISPATCH);
    EXPECT_EQ(m_result.pdispVal, &m_target);
    EXPECT_EQ(m_target.references, 2U);
    Target other;
    other.isNoTarget = true;
    // Wine answers the object's own refusal, and keeps a reference then.
    EXPECT_EQ(Call(4, static_cast<IUnknown*>(&other)), OnWine() ? E_NOINTERFACE : DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Call(4, 1), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Call(4, static_cast<IUnknown*>(nullptr)), S_OK);
    EXPECT_EQ(m_target.references, 1U);
    EXPECT_EQ(other.references, OnWine() ? 2U : 1U);
}

TEST_F(InvokeThroughTypeLibrary, TellsTheMethodsFailureAndItsErrorObject) {
    Bstr info;
    EXPECT_EQ(Call(5, info), DISP_E_EXCEPTION);
    EXPECT_EQ(m_exception.scode, kOwnStatus);
    EXPECT_EQ(m_exception.bstrDescription, nullptr);
    EXPECT_EQ(Narrow(info.get()), "why");

    m_target.explains = true;
    EXPECT_EQ(Call(5, info), DISP_E_EXCEPTION);
    EXPECT_EQ(m_exception.scode, kOwnStatus);
    EXPECT_EQ(m_exception.wCode, 0);
    EXPECT_EQ(Narrow(m_exception.bstrSource), "Target");
    EXPECT_EQ(Narrow(m_exception.bstrDescription), "the device is off");
    EXPECT_EQ(Narrow(m_exception.bstrHelpFile), "help.txt");
    EXPECT_EQ(m_exception.dwHelpContext, 7U);
    for (BSTR text : {m_exception.bstrSource, m_exception.bstrDescription, m_exception.bstrHelpFile}) {
        SysFreeString(text);
    }
    IErrorInfo* left = nullptr;
    EXPECT_EQ(GetErrorInfo(0, &left), S_FALSE) << "it is taken, so that nobody else reads it";
}

TEST_F(InvokeThroughTypeLibrary, ReadsAndWritesProperties) {
    EXPECT_EQ(CallAs(7, DISPATCH_PROPERTYPUT, {DISPID_PROPERTYPUT}, "42"), S_OK);
    EXPECT_EQ(CallAs(7, DISPATCH_PROPERTYGET | DISPATCH_METHOD, {}), S_OK);
    EXPECT_EQ(m_result.lVal, 42);
    EXPECT_EQ(CallAs(7, DISPATCH_PROPERTYPUT, {}, 1), DISP_E_PARAMNOTFOUND);
}

TEST_F(InvokeThroughTypeLibrary, TakesNamedArguments) {
    // The names belong to the last arguments, the last one first.
    ASSERT_EQ(CallAs(8, DISPATCH_METHOD, {6, 7}, 1, 2, 3, 4, 5, 6, 8, 7), S_OK);
    EXPECT_EQ(m_result.lVal, 87654321);
    // A parameter that has its argument already, and ones that do not exist. Wine has other statuses for them.
    for (const DISPID name : {0, 2, 17, -5}) {
        const HRESULT hr = CallAs(1, DISPATCH_METHOD, {name}, "a", 1);
        EXPECT_TRUE(hr == DISP_E_PARAMNOTFOUND || (OnWine() && FAILED(hr))) << name;
        EXPECT_EQ(m_wrong, OnWine() ? kNone : 0U);
    }
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
    IPlain* instance = &plain;
    Value argument(21);
    DISPPARAMS params{&argument, nullptr, 1, 0};
    ASSERT_EQ(Type(IPlain::kIid)->Invoke(instance, 1, DISPATCH_METHOD, &params, &m_result, nullptr, nullptr), S_OK);
    EXPECT_EQ(m_result.lVal, 42);
}

}  // namespace
}  // namespace wncom::test
