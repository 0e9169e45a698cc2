// The components as a script sees them: by names and variants.
#include <windows.h>

#include <oleauto.h>

#include "tests/components/ComponentsFixture.h"
#include "wncom/Descriptions.h"
#include "wncom/ScriptAccess.h"
#include "wncom/XMLCacheMgr.h"

namespace wncom::test {
namespace {

// A value that a script holds.
class Value {
public:
    Value() { VariantInit(&m_value); }
    explicit Value(const char* text) : Value() {
        m_value.vt = VT_BSTR;
        m_value.bstrVal = Text(text).detach();
    }
    explicit Value(LONG number) : Value() {
        m_value.vt = VT_I4;
        m_value.lVal = number;
    }
    Value(Value&& other) noexcept : m_value(other.m_value) { VariantInit(&other.m_value); }
    Value& operator=(Value&&) = delete;
    ~Value() { VariantClear(&m_value); }

    VARIANT* get() { return &m_value; }
    // A view for an argument list; the value keeps what it owns.
    const VARIANT& view() const { return m_value; }
    IDispatch* object() const { return m_value.vt == VT_DISPATCH ? m_value.pdispVal : nullptr; }
    // As a script would print it.
    std::string text() const {
        if (m_value.vt == VT_DISPATCH) return m_value.pdispVal ? "object" : "nothing";
        Value converted;
        const HRESULT status = VariantChangeType(converted.get(), const_cast<VARIANT*>(&m_value), 0, VT_BSTR);
        if (status != S_OK) return Hex(status);
        return converted.m_value.bstrVal ? Shown(converted.m_value.bstrVal) : "";
    }

private:
    VARIANT m_value;
};

class LateBound : public ComponentsFixture {
protected:
    static Value New(LPCOLESTR progId) {
        Value value;
        value.get()->vt = VT_DISPATCH;
        CLSID clsid = {};
        EXPECT_EQ(Hex(CLSIDFromProgID(progId, &clsid)), Hex(S_OK));
        EXPECT_EQ(Hex(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                       reinterpret_cast<void**>(&value.get()->pdispVal))),
                  Hex(S_OK));
        return value;
    }

    // The arguments in the order of the method's parameters.
    static HRESULT Invoke(const Value& object, const char* name, WORD kind,
                          const std::vector<const Value*>& arguments, Value* result) {
        WideText wide = Wide(name);
        LPOLESTR names = wide.data();
        DISPID member = DISPID_UNKNOWN;
        if (!object.object()) return E_POINTER;
        const HRESULT status = object.object()->GetIDsOfNames(GUID_NULL, &names, 1, 0, &member);
        if (FAILED(status)) return status;
        std::vector<VARIANT> views;
        for (auto it = arguments.rbegin(); it != arguments.rend(); ++it) views.push_back((*it)->view());
        DISPID put = DISPID_PROPERTYPUT;
        const bool isPut = (kind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
        DISPPARAMS parameters = {views.data(), isPut ? &put : nullptr, static_cast<UINT>(views.size()),
                                 isPut ? 1u : 0u};
        return object.object()->Invoke(member, GUID_NULL, 0, kind, &parameters, result ? result->get() : nullptr,
                                       nullptr, nullptr);
    }
    static Value Call(const Value& object, const char* name, const std::vector<const Value*>& arguments = {}) {
        Value result;
        const HRESULT status = Invoke(object, name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments, &result);
        EXPECT_GE(status, 0) << name << " " << Hex(status);
        return result;
    }
    static void Put(const Value& object, const char* name, const Value& value) {
        const WORD kind = value.object() ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT;
        EXPECT_EQ(Hex(Invoke(object, name, kind, {&value}, nullptr)), Hex(S_OK)) << name;
    }
};

TEST_F(LateBound, DescriptionsAreFilledAndRead) {
    const Value address("http://127.0.0.1:1/");
    const Value zero(LONG{0});
    const Value sink("3");
    const Value service = New(kProgIdServiceDesc);
    Call(service, "setaddress", {&address});
    EXPECT_EQ(Call(service, "GetAddress").text(), "http://127.0.0.1:1/");
    const Value transport = New(kProgIdTransportDesc);
    Call(transport, "SetTargetURI", {&address, &zero, &zero, &sink});
    EXPECT_EQ(Call(transport, "GetTargetURI").text(), "http://127.0.0.1:1/");
    EXPECT_EQ(Call(transport, "GetDeliveryMethod").text(), "3") << "a number may come as a text";
    EXPECT_EQ(Call(transport, "GetJobURI").text(), "");
}

TEST_F(LateBound, AccessorAndCacheAreAsked) {
    const Value accessor = New(kProgIdXMLSimpleAccessor);
    const Value document("<t><a>1</a><a>2</a></t>");
    const Value delimiter("-");
    const Value query("./a");
    const Value all(LONG{0});
    Call(accessor, "SetDelimiter", {&delimiter});
    Call(accessor, "LoadXML", {&document});
    EXPECT_EQ(Call(accessor, "GetXML", {&query, &all}).text(), "1-2");

    const Value cache = New(kProgIdXMLCacheMgr);
    const Value seconds(LONG{60});
    const Value flags(kCacheFlags);
    Call(cache, "PutXML", {&query, &document, &seconds, &flags});
    EXPECT_EQ(Call(cache, "FetchXML", {&query, &flags}).text(), "<t><a>1</a><a>2</a></t>");
    Call(cache, "RemoveXML", {&query});
    EXPECT_EQ(Call(cache, "FetchXML", {&query, &flags}).text(), "");
}

TEST_F(LateBound, PortMapIsSearchedAndWalked) {
    WriteWholeFile(PortMapPath(),
                   "<portmap><device name='d'><service address='usb:1' transport='USB'/></device></portmap>");
    const Value map = New(kProgIdPortMap);
    const Value wanted = New(kProgIdDeviceContent);
    const Value services = New(kProgIdServiceList);
    const Value service = New(kProgIdServiceContent);
    Put(service, "ServiceAddress", Value("usb"));
    EXPECT_LT(Invoke(services, "Add", DISPATCH_METHOD, {&map}, nullptr), 0) << "a map is no record";
    Call(services, "Add", {&service});
    EXPECT_EQ(Call(services, "Count").text(), "1");
    Put(wanted, "ServiceList", services);

    const Value devices = Call(map, "GetMatchingDevices", {&wanted});
    const Value device = Call(devices, "First");
    EXPECT_EQ(Call(device, "Name").text(), "d");
    const Value found = Call(Call(device, "ServiceList"), "First");
    EXPECT_EQ(Call(found, "TransportInfo").text(), "USB");
    EXPECT_EQ(Call(devices, "Next").text(), "nothing");
}

TEST_F(LateBound, PlainObjectIsGivenItsLateBoundSide) {
    const Value access = New(kProgIdScriptAccess);
    Value plain;
    plain.get()->vt = VT_UNKNOWN;
    plain.get()->punkVal = Create<ITransportDesc>(kProgIdTransportDesc).detach();
    EXPECT_EQ(Call(Call(access, "AsObject", {&plain}), "GetDeliveryMethod").text(), "-1");
    Value nothing;
    nothing.get()->vt = VT_UNKNOWN;
    nothing.get()->punkVal = nullptr;
    EXPECT_EQ(Call(access, "AsObject", {&nothing}).text(), "nothing");
}

// Each class's default interface has the id that the headers tell, and as many slots.
TEST_F(LateBound, TypeLibraryAgreesWithTheHeaders) {
    struct Expected {
        LPCOLESTR progId;
        IID iid;
        unsigned slots;
    };
    for (const Expected& expected :
         {Expected{kProgIdXMLSimpleAccessor, IXMLSimpleAccessor::kIid, 16},
          Expected{kProgIdXMLCacheMgr, IXMLCacheMgr::kIid, 17}, Expected{kProgIdPortMap, IPortMap::kIid, 9},
          Expected{kProgIdDeviceContent, IPortMapContent::kIid, 37},
          Expected{kProgIdServiceContent, IPortMapContent::kIid, 37},
          Expected{kProgIdServiceList, IPortMapList::kIid, 11}, Expected{kProgIdServiceDesc, IServiceDesc::kIid, 11},
          Expected{kProgIdTransportDesc, ITransportDesc::kIid, 18},
          Expected{kProgIdScriptAccess, IScriptAccess::kIid, 8}}) {
        const Value object = New(expected.progId);
        CPComPtr<ITypeInfo> dispatch;
        ASSERT_EQ(Hex(object.object()->GetTypeInfo(0, 0, dispatch.put())), Hex(S_OK));
        HREFTYPE partner = 0;
        CPComPtr<ITypeInfo> type;
        ASSERT_EQ(Hex(dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &partner)), Hex(S_OK));
        ASSERT_EQ(Hex(dispatch->GetRefTypeInfo(partner, type.put())), Hex(S_OK));
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
        EXPECT_EQ(attributes->guid, expected.iid) << Shown(Bstr(expected.progId).get());
        FUNCDESC* last = nullptr;
        EXPECT_EQ(type->GetFuncDesc(attributes->cFuncs - 1u, &last), S_OK);
        EXPECT_EQ(static_cast<unsigned>(last->oVft) / sizeof(void*), expected.slots - 1);
        type->ReleaseFuncDesc(last);
        type->ReleaseTypeAttr(attributes);
    }
}

}  // namespace
}  // namespace wncom::test
