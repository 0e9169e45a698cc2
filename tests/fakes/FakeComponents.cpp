// The module FakeComponents.dll: every outside component of the system, scripted by the test.
#include <string>

#include "common/server/Server.h"
#include "tests/fakes/FakeCacheMgr.h"
#include "tests/fakes/FakeObject.h"
#include "tests/fakes/FakePortMap.h"
#include "wncom/Descriptions.h"
#include "wncom/XMLSimpleAccessor.h"

namespace wncom::test {

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

// Written by the agent; nobody reads it here.
class FakeTransportDesc final : public FakeObject<ITransportDesc> {
public:
    HRESULT STDMETHODCALLTYPE SetTargetURI(BSTR address, LONG reserved, LONG addressType,
                                           LONG deliveryMethod) override {
        return Do("TransportDesc.SetTargetURI", {ToUtf8(address), std::to_string(reserved),
                                                 std::to_string(addressType), std::to_string(deliveryMethod)});
    }
    HRESULT STDMETHODCALLTYPE SetSessionContext(BSTR context) override {
        return Do("TransportDesc.SetSessionContext", {context ? ToUtf8(context) : "null"});
    }
    HRESULT STDMETHODCALLTYPE SetJobURI(BSTR address) override {
        return Do("TransportDesc.SetJobURI", {address ? ToUtf8(address) : "null"});
    }
    HRESULT STDMETHODCALLTYPE GetTargetURI(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetAddressType(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDeliveryMethod(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSessionContext(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetJobURI(BSTR*) override { return E_NOTIMPL; }
};

// A creation enters the script as the class's name and ".create".
HRESULT Made(const char* name, IUnknown* outer, REFIID iid, void** object, IUnknown* (*make)()) {
    if (outer) return CLASS_E_NOAGGREGATION;
    const Misbehaviour misbehaviour = Script().Enter(std::string(name) + ".create");
    if (misbehaviour.fault == Fault::Status) return misbehaviour.status;
    if (misbehaviour.fault == Fault::Null) return S_OK;
    CPComPtr<IUnknown> made;
    made.attach(make());
    return made->QueryInterface(iid, object);
}

}  // namespace
}  // namespace wncom::test

namespace wncom::server {
namespace {

using namespace wncom::test;

constexpr ServedClass kClasses[] = {
    {CLSID_XMLSimpleAccessor, "Fake", "QBNORVEL.XMLSimpleAccessor.1", "QBNORVEL.XMLSimpleAccessor",
     [](IUnknown* outer, REFIID iid, void** object) {
         return Made("XMLSimpleAccessor", outer, iid, object, []() -> IUnknown* { return new FakeAccessor; });
     }},
    {CLSID_XMLCacheMgr, "Fake", "QBNORVEL.XMLCacheMgr.1", "QBNORVEL.XMLCacheMgr",
     [](IUnknown* outer, REFIID iid, void** object) {
         return Made("XMLCacheMgr", outer, iid, object, []() -> IUnknown* { return new FakeCacheMgr; });
     }},
    {CLSID_PortMap, "Fake", "QBNORVEL.PortMap.1", "QBNORVEL.PortMap",
     [](IUnknown* outer, REFIID iid, void** object) {
         return Made("PortMap", outer, iid, object, []() -> IUnknown* { return new FakePortMap; });
     }},
    {CLSID_DeviceContent, "Fake", "QBNORVEL.DeviceContent.1", "QBNORVEL.DeviceContent",
     [](IUnknown* outer, REFIID iid, void** object) {
         return Made("DeviceContent", outer, iid, object,
                     []() -> IUnknown* { return new FakeRecord("DeviceContent"); });
     }},
    {CLSID_ServiceContent, "Fake", "QBNORVEL.ServiceContent.1", "QBNORVEL.ServiceContent",
     [](IUnknown* outer, REFIID iid, void** object) {
         return Made("ServiceContent", outer, iid, object,
                     []() -> IUnknown* { return new FakeRecord("ServiceContent"); });
     }},
    {CLSID_ServiceList, "Fake", "QBNORVEL.ServiceList.1", "QBNORVEL.ServiceList",
     [](IUnknown* outer, REFIID iid, void** object) {
         return Made("ServiceList", outer, iid, object, []() -> IUnknown* { return new FakeList("ServiceList"); });
     }},
    {CLSID_ServiceDesc, "Fake", "QBNORVEL.ServiceDesc.1", "QBNORVEL.ServiceDesc",
     [](IUnknown* outer, REFIID iid, void** object) {
         return Made("ServiceDesc", outer, iid, object, []() -> IUnknown* { return new FakeServiceDesc; });
     }},
    {CLSID_TransportDesc, "Fake", "QBNORVEL.TransportDesc.1", "QBNORVEL.TransportDesc",
     [](IUnknown* outer, REFIID iid, void** object) {
         return Made("TransportDesc", outer, iid, object, []() -> IUnknown* { return new FakeTransportDesc; });
     }},
};

}  // namespace

// The fakes' interfaces are described where the components' are.
const ServerDescription kServer = {
    kClasses, {0xabc6ba56, 0xdb8e, 0x4024, {0xa2, 0x4f, 0x6d, 0xef, 0xbe, 0x58, 0x45, 0x23}}, 1, 0};

}  // namespace wncom::server
