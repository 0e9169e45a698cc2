#include <atomic>
#include <new>
#include <string>
#include <utility>

#include "oleauto.h"

namespace {

using Text = std::basic_string<OLECHAR>;

// The error object of the system: what was set on it, for any thread that holds it.
class ErrorInfo final : public ICreateErrorInfo, public IErrorInfo {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (IsEqualIID(iid, IID_ICreateErrorInfo)) {
            *object = static_cast<ICreateErrorInfo*>(this);
        } else if (IsEqualIID(iid, IID_IErrorInfo) || IsEqualIID(iid, IID_IUnknown)) {
            *object = static_cast<IErrorInfo*>(this);
        } else {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() noexcept override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE SetGUID(REFGUID interfaceId) noexcept override {
        m_interfaceId = interfaceId;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR source) noexcept override { return Set(m_source, source); }
    HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR description) noexcept override {
        return Set(m_description, description);
    }
    HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR helpFile) noexcept override { return Set(m_helpFile, helpFile); }
    HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD helpContext) noexcept override {
        m_helpContext = helpContext;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetGUID(GUID* interfaceId) noexcept override {
        return Give(interfaceId, m_interfaceId);
    }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR* source) noexcept override { return Give(source, m_source); }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR* description) noexcept override {
        return Give(description, m_description);
    }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* helpFile) noexcept override { return Give(helpFile, m_helpFile); }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* helpContext) noexcept override {
        return Give(helpContext, m_helpContext);
    }

private:
    ~ErrorInfo() = default;

    static HRESULT Set(Text& place, LPCOLESTR text) noexcept try {
        place = text ? Text(text) : Text();
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    template <class Value>
    static HRESULT Give(Value* place, const Value& value) noexcept {
        if (!place) return E_INVALIDARG;
        *place = value;
        return S_OK;
    }
    static HRESULT Give(BSTR* place, const Text& text) noexcept {
        if (!place) return E_INVALIDARG;
        *place = text.empty() ? nullptr : SysAllocString(text.c_str());
        return *place || text.empty() ? S_OK : E_OUTOFMEMORY;
    }

    std::atomic<ULONG> m_references{1};
    GUID m_interfaceId = GUID_NULL;
    Text m_source;
    Text m_description;
    Text m_helpFile;
    DWORD m_helpContext = 0;
};

// The object that was set last on this thread, which goes with the thread.
struct CurrentError {
    ~CurrentError() { Replace(nullptr); }

    // What is replaced goes last: its end may itself set one.
    void Replace(IErrorInfo* info) noexcept {
        if (info) info->AddRef();
        if (IErrorInfo* const old = std::exchange(object, info)) old->Release();
    }

    IErrorInfo* object = nullptr;
};
thread_local CurrentError t_current;

}  // namespace

HRESULT CreateErrorInfo(ICreateErrorInfo** info) {
    if (!info) return E_INVALIDARG;
    *info = new (std::nothrow) ErrorInfo;
    return *info ? S_OK : E_OUTOFMEMORY;
}

HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info) {
    if (reserved != 0) return E_INVALIDARG;
    t_current.Replace(info);
    return S_OK;
}

HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info) {
    if (reserved != 0 || !info) return E_INVALIDARG;
    *info = std::exchange(t_current.object, nullptr);
    return *info ? S_OK : S_FALSE;
}
