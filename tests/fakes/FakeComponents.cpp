// The module FakeComponents.dll: every outside component of the system, scripted by the test.
#include <new>
#include <string>

#include "tests/fakes/FakeCacheMgr.h"
#include "tests/fakes/FakeObject.h"
#include "tests/fakes/FakePortMap.h"
#include "tests/support/Host.h"
#include "wncom/Descriptions.h"
#include "wncom/XMLSimpleAccessor.h"

namespace wncom::test {

Bstr ToBstr(const std::string& utf8) {
    const int bytes = static_cast<int>(utf8.size());
    const int units = bytes ? MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, nullptr, 0) : 0;
    Bstr text;
    text.attach(SysAllocStringLen(nullptr, static_cast<UINT>(units)));
    if (!text) throw std::bad_alloc();
    if (units) MultiByteToWideChar(CP_UTF8, 0, utf8.data(), bytes, text.get(), units);
    text.get()[units] = 0;
    return text;
}

std::string ToUtf8(BSTR text) {
    const int units = static_cast<int>(SysStringLen(text));
    const int bytes = units ? WideCharToMultiByte(CP_UTF8, 0, text, units, nullptr, 0, nullptr, nullptr) : 0;
    std::string utf8(static_cast<std::size_t>(bytes), '\0');
    if (bytes) WideCharToMultiByte(CP_UTF8, 0, text, units, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

namespace {

class FakeAccessor final : public FakeObject<IXMLSimpleAccessor> {
public:
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetDelimiter(BSTR delimiter) override {
        return Do("XMLSimpleAccessor.SetDelimiter", {ToUtf8(delimiter)});
    }
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LoadXML(BSTR document) override {
        return Do("XMLSimpleAccessor.LoadXML", {ToUtf8(document)});
    }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetXML(BSTR query, LONG flag, BSTR* text) override {
        *text = nullptr;
        return Do("XMLSimpleAccessor.GetXML", {ToUtf8(query), std::to_string(flag)}, [&] {
            const std::optional<std::string> answer = Script().QueryAnswer(ToUtf8(query));
            // Callers must not use what comes with "no match", and free it.
            const bool given = answer || Script().FlagOf("XMLSimpleAccessor.text without match");
            if (given) *text = ToBstr(answer.value_or("no match")).detach();
            return answer ? S_OK : S_FALSE;
        });
    }
};

class FakeServiceDesc final : public FakeObject<IServiceDesc> {
public:
    HRESULT STDMETHODCALLTYPE GetID(BSTR* id) override { return GiveText("ServiceDesc.GetID", id, m_id); }
    HRESULT STDMETHODCALLTYPE SetID(BSTR id) override { return TakeText("ServiceDesc.SetID", id, m_id); }
    HRESULT STDMETHODCALLTYPE GetAddress(BSTR* address) override {
        return GiveText("ServiceDesc.GetAddress", address, m_address);
    }
    HRESULT STDMETHODCALLTYPE SetAddress(BSTR address) override {
        return TakeText("ServiceDesc.SetAddress", address, m_address);
    }

private:
    std::optional<std::string> m_id;
    std::optional<std::string> m_address;
};

class FakeTransportDesc final : public FakeObject<ITransportDesc> {
public:
    HRESULT STDMETHODCALLTYPE SetTargetURI(BSTR address, LONG reserved, LONG addressType,
                                           LONG deliveryMethod) override {
        return Do(
            "TransportDesc.SetTargetURI",
            {ToUtf8(address), std::to_string(reserved), std::to_string(addressType), std::to_string(deliveryMethod)},
            [&] {
                m_target = ToUtf8(address);
                m_addressType = addressType;
                m_deliveryMethod = deliveryMethod;
                return S_OK;
            });
    }
    HRESULT STDMETHODCALLTYPE GetTargetURI(BSTR* address) override {
        return GiveText("TransportDesc.GetTargetURI", address, m_target);
    }
    HRESULT STDMETHODCALLTYPE GetAddressType(LONG* addressType) override {
        *addressType = m_addressType;
        return Do("TransportDesc.GetAddressType");
    }
    HRESULT STDMETHODCALLTYPE GetDeliveryMethod(LONG* deliveryMethod) override {
        *deliveryMethod = m_deliveryMethod;
        return Do("TransportDesc.GetDeliveryMethod");
    }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSessionContext(BSTR* context) override {
        return GiveText("TransportDesc.GetSessionContext", context, m_session);
    }
    HRESULT STDMETHODCALLTYPE SetSessionContext(BSTR context) override {
        return TakeText("TransportDesc.SetSessionContext", context, m_session);
    }
    HRESULT STDMETHODCALLTYPE GetJobURI(BSTR* address) override {
        return GiveText("TransportDesc.GetJobURI", address, m_job);
    }
    HRESULT STDMETHODCALLTYPE SetJobURI(BSTR address) override {
        return TakeText("TransportDesc.SetJobURI", address, m_job);
    }

private:
    std::optional<std::string> m_target;
    std::optional<std::string> m_session;
    std::optional<std::string> m_job;
    LONG m_addressType = -1;
    LONG m_deliveryMethod = -1;
};

struct FakeClass {
    CLSID clsid;
    const OLECHAR* progId;
    const char* name;  // its creation is called name + ".create"
    IUnknown* (*make)();
};

const FakeClass kClasses[] = {
    {CLSID_XMLSimpleAccessor, kProgIdXMLSimpleAccessor, "XMLSimpleAccessor",
     []() -> IUnknown* { return new FakeAccessor; }},
    {CLSID_XMLCacheMgr, kProgIdXMLCacheMgr, "XMLCacheMgr", []() -> IUnknown* { return new FakeCacheMgr; }},
    {CLSID_PortMap, kProgIdPortMap, "PortMap", []() -> IUnknown* { return new FakePortMap; }},
    {CLSID_DeviceContent, kProgIdDeviceContent, "DeviceContent",
     []() -> IUnknown* { return new FakeRecord("DeviceContent"); }},
    {CLSID_ServiceContent, kProgIdServiceContent, "ServiceContent",
     []() -> IUnknown* { return new FakeRecord("ServiceContent"); }},
    {CLSID_ServiceList, kProgIdServiceList, "ServiceList", []() -> IUnknown* { return new FakeList("ServiceList"); }},
    {CLSID_ServiceDesc, kProgIdServiceDesc, "ServiceDesc", []() -> IUnknown* { return new FakeServiceDesc; }},
    {CLSID_TransportDesc, kProgIdTransportDesc, "TransportDesc", []() -> IUnknown* { return new FakeTransportDesc; }},
};

// Unlike a component's own class object it lets scripted exceptions out: callers must cope with those.
class FakeClassObject final : public IClassFactory {
public:
    explicit FakeClassObject(const FakeClass& fake) : m_fake(fake) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = nullptr;
        if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
        *object = this;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --m_references;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        *object = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        if constexpr (kExceptionsPassTheSystem) return Create(iid, object);
        try {
            return Create(iid, object);
        } catch (...) {
            return E_UNEXPECTED;
        }
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

private:
    HRESULT Create(REFIID iid, void** object) {
        const Misbehaviour misbehaviour = Script().Enter(std::string(m_fake.name) + ".create");
        if (misbehaviour.fault == Fault::Status) return misbehaviour.status;
        if (misbehaviour.fault == Fault::Null) return S_OK;
        CPComPtr<IUnknown> made;
        made.attach(m_fake.make());
        return made->QueryInterface(iid, object);
    }

    ~FakeClassObject() = default;

    const FakeClass& m_fake;
    ULONG m_references = 1;
};

HRESULT WriteClassesRootValue(const std::string& key, const char* value, const std::string& data) {
    HKEY handle = nullptr;
    LSTATUS status = RegCreateKeyExA(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                                     nullptr, &handle, nullptr);
    if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
    status = RegSetValueExA(handle, value, 0, REG_SZ, reinterpret_cast<const BYTE*>(data.c_str()),
                            static_cast<DWORD>(data.size() + 1));
    RegCloseKey(handle);
    return HRESULT_FROM_WIN32(status);
}

std::string OwnPath() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&kClasses), &module);
    char path[4096];
    return std::string(path, GetModuleFileNameA(module, path, sizeof(path)));
}

HRESULT Register(const FakeClass& fake) {
    OLECHAR wide[39];
    StringFromGUID2(fake.clsid, wide, 39);
    const std::string clsid(wide, wide + 38);
    const std::basic_string<OLECHAR> wideProgId(fake.progId);
    const std::string progId(wideProgId.begin(), wideProgId.end());
    HRESULT status = WriteClassesRootValue(progId + "\\CLSID", nullptr, clsid);
    if (SUCCEEDED(status)) {
        status = WriteClassesRootValue("CLSID\\" + clsid + "\\InprocServer32", nullptr, OwnPath());
    }
    if (SUCCEEDED(status)) {
        status = WriteClassesRootValue("CLSID\\" + clsid + "\\InprocServer32", "ThreadingModel", "Apartment");
    }
    return status;
}

}  // namespace
}  // namespace wncom::test

using namespace wncom::test;

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* object) {
    *object = nullptr;
    for (const FakeClass& fake : kClasses) {
        if (fake.clsid != clsid) continue;
        wncom::CPComPtr<IClassFactory> made;
        made.attach(new FakeClassObject(fake));
        return made->QueryInterface(iid, object);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return Script().LiveObjects() == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
    for (const FakeClass& fake : kClasses) {
        if (const HRESULT status = Register(fake); FAILED(status)) return status;
    }
    return S_OK;
}
