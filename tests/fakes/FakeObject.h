// How a fake component becomes a COM object, and how its operations ask the script.
#pragma once

#include <windows.h>

#include <ole2.h>

#include <optional>
#include <string>

#include "common/server/Server.h"
#include "tests/fakes/FakeScript.h"
#include "tests/support/Utf8Text.h"
#include "wncom/Bstr.h"
#include "wncom/CPComPtr.h"

namespace wncom::test {

// One interface over IDispatch, whose four methods no caller needs here.
template <class Interface>
class FakeObject : public Interface, private CountedFake, private server::ModuleLock {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid != Interface::kIid && iid != IID_IUnknown) return E_NOINTERFACE;
        *object = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

protected:
    virtual ~FakeObject() = default;

    // Enters the script; the rest runs only when nothing else is scripted.
    template <class Rest>
    static HRESULT Do(const std::string& operation, const std::vector<std::string>& texts, Rest rest) {
        const Misbehaviour misbehaviour = Script().Enter(operation, texts);
        if (misbehaviour.fault == Fault::Status) return misbehaviour.status;
        if (misbehaviour.fault == Fault::Null) return S_OK;
        return rest();
    }
    static HRESULT Do(const std::string& operation, const std::vector<std::string>& texts = {}) {
        return Do(operation, texts, [] { return S_OK; });
    }
    // Gives the scripted text, or else the object's own; a missing one reads as null.
    static HRESULT GiveText(const std::string& operation, BSTR* text, const std::optional<std::string>& own) {
        *text = nullptr;
        return Do(operation, {}, [&] {
            std::optional<std::string> answer = Script().AnswerOf(operation);
            if (!answer) answer = own;
            if (answer) *text = ToBstr(*answer).detach();
            return S_OK;
        });
    }
    static HRESULT TakeText(const std::string& operation, BSTR text, std::optional<std::string>& own) {
        return Do(operation, {ToUtf8(text)}, [&] {
            own = text ? std::optional<std::string>(ToUtf8(text)) : std::nullopt;
            return S_OK;
        });
    }

private:
    ULONG m_references = 1;
};

}  // namespace wncom::test
