// Subscription documents, read through an accessor that may lie: any status with any text. A filter list that is
// handed out is complete, and every text in it can be read.
#include <cstring>

#include "common/EventXMLProcessor.h"
#include "fuzz/support/Fuzz.h"
#include "wncom/CPComPtr.h"
#include "wncom/XMLSimpleAccessor.h"

using namespace wncom::fuzz;

namespace wncom {
namespace {

FuzzedDataProvider* g_input = nullptr;

HRESULT AnyStatus() { return g_input->PickValueInArray({S_OK, S_OK, S_OK, S_FALSE, E_FAIL, HRESULT{7}}); }

class Accessor final : public IXMLSimpleAccessor {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetDelimiter(BSTR) override { return AnyStatus(); }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LoadXML(BSTR) override { return AnyStatus(); }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetXML(BSTR, LONG, BSTR* text) override {
        Wide answer = PickWide(*g_input, g_input->ConsumeIntegral<std::uint8_t>(), true);
        if (g_input->ConsumeBool()) answer += u'\0';
        *text = g_input->ConsumeBool() ? SysAllocStringLen(answer.data(), static_cast<UINT>(answer.size())) : nullptr;
        return AnyStatus();
    }

private:
    ~Accessor() = default;
    ULONG m_references = 1;
};

}  // namespace

// In place of the creation through the registry.
HRESULT CreateComponentInstance(LPCOLESTR, LPCOLESTR, REFIID, void** object) noexcept {
    *object = g_input->ConsumeBool() || g_input->ConsumeBool() ? new Accessor : nullptr;
    return AnyStatus();
}

}  // namespace wncom

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    wncom::g_input = &input;
    wncom::EventXMLProcessor processor;
    BSTR document = SysAllocString(OLESTR("<s/>"));
    std::size_t bytes = 0;
    if (char** content = processor.getSubContent(document)) {
        for (int i = 0; i < 3; ++i) bytes += content[i] ? std::strlen(content[i]) : 0;
    }
    if (char** filters = processor.getFilterContent(document)) {
        std::size_t count = 0;
        for (; filters[count]; ++count) bytes += std::strlen(filters[count]);
        Expect(count > 0 && count % 2 == 0, "names and values pair up");
    }
    Expect(bytes < 4 * 1024, "no text is longer than the answers");
    SysFreeString(document);
    return 0;
}
