// The objects that the invocation tests call.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <string>

#include "tests/support/Com.h"

namespace wncom::test {

// As invoke.idl has them.
struct ITarget : IDispatch {
    static constexpr IID kIid = {0x51d1c2b4, 0x8e0f, 0x4c57, {0x9e, 0x0b, 0x7e, 0x8a, 0x0d, 0x1b, 0x2c, 0x34}};

    virtual HRESULT STDMETHODCALLTYPE Join(BSTR first, LONG number, BSTR* text) = 0;
    virtual HRESULT STDMETHODCALLTYPE Take(BSTR text, BSTR* info, LONG* length) = 0;
    virtual HRESULT STDMETHODCALLTYPE Extend(BSTR* text) = 0;
    virtual HRESULT STDMETHODCALLTYPE Same(ITarget* object, ITarget** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE Fail(BSTR* info, LONG* never) = 0;
    virtual HRESULT STDMETHODCALLTYPE Throw() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Size(LONG* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Size(LONG value) = 0;
    virtual HRESULT STDMETHODCALLTYPE Sum(LONG a, LONG b, LONG c, LONG d, LONG e, LONG f, LONG g, LONG h,
                                          LONG* sum) = 0;
    virtual HRESULT STDMETHODCALLTYPE Undirected(BSTR text, BSTR* copy) = 0;
    virtual HRESULT STDMETHODCALLTYPE Hidden() = 0;
};

struct IPlain : IUnknown {
    static constexpr IID kIid = {0x51d1c2b4, 0x8e0f, 0x4c57, {0x9e, 0x0b, 0x7e, 0x8a, 0x0d, 0x1b, 0x2c, 0x35}};

    virtual HRESULT STDMETHODCALLTYPE Double(LONG number, LONG* result) = 0;
};

// What Fail answers.
inline constexpr HRESULT kOwnStatus = static_cast<HRESULT>(0x80041234U);

// Lives on the stack and counts who holds it.
class Target final : public ITarget {
public:
    ULONG references = 1;
    LONG size = 0;
    bool isNoTarget = false;
    bool explains = false;  // Fail leaves an error object

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        const bool known = iid == IID_IUnknown || iid == IID_IDispatch || (iid == kIid && !isNoTarget);
        *object = known ? this : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

    HRESULT STDMETHODCALLTYPE Join(BSTR first, LONG number, BSTR* text) override {
        *text = SysAllocString(Wide(Narrow(first) + " " + std::to_string(number)).c_str());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Take(BSTR text, BSTR* info, LONG* length) override {
        *info = SysAllocString(OLESTR("taken"));
        *length = static_cast<LONG>(SysStringLen(text));
        return S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Extend(BSTR* text) override {
        const std::string longer = Narrow(*text) + "+";
        SysFreeString(*text);
        *text = SysAllocString(Wide(longer).c_str());
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Same(ITarget* object, ITarget** result) override {
        *result = object;
        if (object) object->AddRef();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Fail(BSTR* info, LONG*) override {
        *info = SysAllocString(OLESTR("why"));
        if (explains) Explain();
        return kOwnStatus;
    }
    HRESULT STDMETHODCALLTYPE Throw() override { throw 1; }
    HRESULT STDMETHODCALLTYPE get_Size(LONG* value) override {
        *value = size;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE put_Size(LONG value) override {
        size = value;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Sum(LONG a, LONG b, LONG c, LONG d, LONG e, LONG f, LONG g, LONG h,
                                  LONG* sum) override {
        *sum = a + 10 * (b + 10 * (c + 10 * (d + 10 * (e + 10 * (f + 10 * (g + 10 * h))))));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Undirected(BSTR text, BSTR* copy) override {
        *copy = SysAllocString(text);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Hidden() override { return S_OK; }

private:
    static void Explain() {
        ICreateErrorInfo* made = nullptr;
        if (FAILED(CreateErrorInfo(&made))) return;
        OLECHAR source[] = OLESTR("Target");
        OLECHAR description[] = OLESTR("the device is off");
        OLECHAR helpFile[] = OLESTR("help.txt");
        made->SetSource(source);
        made->SetDescription(description);
        made->SetHelpFile(helpFile);
        made->SetHelpContext(7);
        IErrorInfo* info = nullptr;
        if (SUCCEEDED(made->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)))) {
            SetErrorInfo(0, info);
            info->Release();
        }
        made->Release();
    }
};

}  // namespace wncom::test
