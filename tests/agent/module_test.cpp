// The module as COM sees it: exports, class objects, locks, registration.
#include <algorithm>

#include "tests/agent/AgentFixture.h"
#include "tests/support/Golden.h"

namespace wncom::test {
namespace {

using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, LPVOID*);

std::string GuidText(REFGUID guid) {
    OLECHAR wide[39];
    StringFromGUID2(guid, wide, 39);
    return std::string(wide, wide + 38);
}

class ModuleTest : public AgentFixture {
protected:
    HRESULT ClassObject(REFCLSID clsid, REFIID iid, void** object) {
        return m_module.Export<GetClassObject>("DllGetClassObject")(clsid, iid, object);
    }
};

TEST_F(ModuleTest, ClassObjectsAreGivenForTheTwoClassesOnly) {
    EXPECT_EQ(Hex(ClassObject(CLSID_Wendrel, IID_IClassFactory, nullptr)), Hex(E_POINTER));
    void* object = this;
    EXPECT_EQ(Hex(ClassObject(CLSID_ServiceDesc, IID_IClassFactory, &object)), Hex(CLASS_E_CLASSNOTAVAILABLE));
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Hex(ClassObject(CLSID_Wendrel, IWendrel::kIid, &object)), Hex(E_NOINTERFACE));
    EXPECT_EQ(object, nullptr);
    for (const CLSID& clsid : {CLSID_Wendrel, CLSID_WendrelParent}) {
        CPComPtr<IClassFactory> first;
        CPComPtr<IClassFactory> second;
        EXPECT_EQ(Hex(ClassObject(clsid, IID_IClassFactory, first.put_void())), Hex(S_OK));
        EXPECT_EQ(Hex(ClassObject(clsid, IID_IClassFactory, second.put_void())), Hex(S_OK));
        EXPECT_EQ(first.get(), second.get());
    }
}

TEST_F(ModuleTest, ObjectsAndServerLocksHoldTheModuleAndClassObjectsDoNot) {
    EXPECT_EQ(Hex(CanUnload()), Hex(S_OK));
    CPComPtr<IClassFactory> factory;
    ASSERT_EQ(Hex(ClassObject(CLSID_WendrelParent, IID_IClassFactory, factory.put_void())), Hex(S_OK));
    EXPECT_EQ(Hex(CanUnload()), Hex(S_OK));
    factory->LockServer(TRUE);
    EXPECT_EQ(Hex(CanUnload()), Hex(S_FALSE));
    factory->LockServer(FALSE);
    EXPECT_EQ(Hex(CanUnload()), Hex(S_OK));
    CPComPtr<IUnknown> object;
    ASSERT_EQ(Hex(factory->CreateInstance(nullptr, IID_IUnknown, object.put_void())), Hex(S_OK));
    EXPECT_EQ(Hex(CanUnload()), Hex(S_FALSE));
    object.Release();
    EXPECT_EQ(Hex(CanUnload()), Hex(S_OK));
}

TEST_F(ModuleTest, ARefusedInterfaceLeavesNoObjectBehind) {
    CPComPtr<IClassFactory> factory;
    ASSERT_EQ(Hex(ClassObject(CLSID_Wendrel, IID_IClassFactory, factory.put_void())), Hex(S_OK));
    void* object = this;
    EXPECT_EQ(Hex(factory->CreateInstance(nullptr, IServiceDesc::kIid, &object)), Hex(E_NOINTERFACE));
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(Hex(factory->CreateInstance(nullptr, IID_IUnknown, nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(CanUnload()), Hex(S_OK));
}

// An outer object that hands interface queries on to its inner one.
class Outer final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid != IID_IUnknown) return inner->QueryInterface(iid, object);
        *object = static_cast<IUnknown*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1;
    CPComPtr<IUnknown> inner;
};

TEST_F(ModuleTest, AnAggregatedObjectHasTheOuterIdentity) {
    for (const CLSID& clsid : {CLSID_Wendrel, CLSID_WendrelParent}) {
        CPComPtr<IClassFactory> factory;
        ASSERT_EQ(Hex(ClassObject(clsid, IID_IClassFactory, factory.put_void())), Hex(S_OK));
        Outer outer;
        void* refused = this;
        EXPECT_EQ(Hex(factory->CreateInstance(&outer, IID_IDispatch, &refused)), Hex(CLASS_E_NOAGGREGATION));
        EXPECT_EQ(refused, nullptr);
        ASSERT_EQ(Hex(factory->CreateInstance(&outer, IID_IUnknown, outer.inner.put_void())), Hex(S_OK));
        {
            CPComPtr<IUnknown> dispatch;
            ASSERT_EQ(Hex(outer.QueryInterface(IID_IDispatch, dispatch.put_void())), Hex(S_OK));
            EXPECT_EQ(outer.references, 2U);
            CPComPtr<IUnknown> identity;
            ASSERT_EQ(Hex(dispatch->QueryInterface(IID_IUnknown, identity.put_void())), Hex(S_OK));
            EXPECT_EQ(identity.get(), &outer);
        }
        EXPECT_EQ(outer.references, 1U);
    }
}

// Everything below a key of HKEY_CLASSES_ROOT: key, value name and data of each row.
void CollectRows(const std::string& path, std::vector<std::string>& rows) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
    bool empty = true;
    for (DWORD index = 0;; ++index, empty = false) {
        char name[256];
        DWORD nameLength = sizeof(name);
        char data[1024] = {};
        DWORD size = sizeof(data) - 1;
        if (RegEnumValueA(key, index, name, &nameLength, nullptr, nullptr, reinterpret_cast<LPBYTE>(data), &size) !=
            ERROR_SUCCESS) {
            break;
        }
        rows.push_back(path + (*name ? " [" + std::string(name) + "]" : "") + " = " + data);
    }
    if (empty) rows.push_back(path);
    for (DWORD index = 0;; ++index) {
        char name[256];
        DWORD nameLength = sizeof(name);
        if (RegEnumKeyExA(key, index, name, &nameLength, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        CollectRows(path + "\\" + name, rows);
    }
    RegCloseKey(key);
}

// What the module has in the registry, a line each in the order of the alphabet.
std::string Rows() {
    std::vector<std::string> rows;
    for (const char* progId : {"QBNORVEL.Wendrel", "QBNORVEL.WendrelParent"}) {
        CollectRows(progId, rows);
        CollectRows(progId + std::string(".1"), rows);
    }
    CollectRows("CLSID\\" + GuidText(CLSID_Wendrel), rows);
    CollectRows("CLSID\\" + GuidText(CLSID_WendrelParent), rows);
    std::sort(rows.begin(), rows.end());
    std::string text;
    for (const std::string& row : rows) text += row + "\n";
    return text;
}

std::string LibraryKey() { return "TypeLib\\" + GuidText(LIBID_WNCOMLib); }

TEST_F(ModuleTest, RegistrationWritesEachClassesRowsAndTheTypeLibrary) {
    char path[4096];
    const std::string module(path, GetModuleFileNameA(m_module.handle(), path, sizeof(path)));
    for (int times = 0; times < 2; ++times) {
        std::string rows = Rows();
        for (std::size_t at = rows.find(module); at != std::string::npos; at = rows.find(module)) {
            rows.replace(at, module.size(), "{module}");
        }
        ExpectGolden("agent/golden/registration.txt", rows);
        EXPECT_EQ(RegistryValue(HKEY_CLASSES_ROOT, LibraryKey() + "\\1.0", nullptr), "wnCOM 1.0 Type Library");
        EXPECT_EQ(Hex(m_module.Call("DllRegisterServer")), Hex(S_OK));
    }
}

TEST_F(ModuleTest, RegistrationReplacesTheClassKeyWhole) {
    SetRegistryValue("SOFTWARE\\Classes\\CLSID\\" + GuidText(CLSID_Wendrel) + "\\Stale", nullptr, "left over");
    EXPECT_EQ(Hex(m_module.Call("DllRegisterServer")), Hex(S_OK));
    EXPECT_FALSE(RegistryKeyExists(HKEY_CLASSES_ROOT, "CLSID\\" + GuidText(CLSID_Wendrel) + "\\Stale"));
}

TEST_F(ModuleTest, UnregistrationRemovesWhatWasWrittenAndKeepsTheSharedKeys) {
    EXPECT_EQ(Hex(m_module.Call("DllUnregisterServer")), Hex(S_OK));
    EXPECT_EQ(Rows(), "");
    EXPECT_FALSE(RegistryKeyExists(HKEY_CLASSES_ROOT, LibraryKey()));
    EXPECT_TRUE(RegistryKeyExists(HKEY_CLASSES_ROOT, "CLSID"));
    EXPECT_EQ(Hex(m_module.Call("DllRegisterServer")), Hex(S_OK));
}

TEST_F(ModuleTest, TheAgentAnswersItsInterfacesWithOneIdentity) {
    const CPComPtr<IWendrel> agent = Agent();
    CPComPtr<IUnknown> identity;
    ASSERT_EQ(Hex(agent->QueryInterface(IID_IUnknown, identity.put_void())), Hex(S_OK));
    const IID interfaces[] = {IID_IDispatch,         IWendrel::kIid,    IWNInitByParent::kIid, IComBaseEvent::kIid,
                              ISessionControl::kIid, IJobControl::kIid, IWNXDMAccess::kIid,    IWNEventAccess::kIid};
    for (const IID& from : interfaces) {
        CPComPtr<IUnknown> held;
        ASSERT_EQ(Hex(identity->QueryInterface(from, held.put_void())), Hex(S_OK));
        for (const IID& to : interfaces) {
            CPComPtr<IUnknown> other;
            EXPECT_EQ(Hex(held->QueryInterface(to, other.put_void())), Hex(S_OK));
            CPComPtr<IUnknown> again;
            ASSERT_EQ(Hex(other->QueryInterface(IID_IUnknown, again.put_void())), Hex(S_OK));
            EXPECT_EQ(again.get(), identity.get());
        }
    }
    void* unknown = this;
    EXPECT_EQ(Hex(identity->QueryInterface(IInternalWendrelParent::kIid, &unknown)), Hex(E_NOINTERFACE));
    EXPECT_EQ(unknown, nullptr);
    EXPECT_EQ(Hex(identity->QueryInterface(IWendrel::kIid, nullptr)), Hex(E_POINTER));
}

TEST_F(ModuleTest, ALateBoundClientGoesTheWholeRoad) {
    const auto parent = Create<IInternalWendrelParent>(kProgIdWendrelParent);
    VARIANT argument = {};
    argument.vt = VT_UNKNOWN;
    const CPComPtr<IServiceDesc> service = Service();
    argument.punkVal = service.get();
    DISPPARAMS arguments = {&argument, nullptr, 1, 0};
    VARIANT made = {};
    // Called through IDispatch alone, as a script does.
    IDispatch* dispatch = parent.get();
    EXPECT_EQ(Hex(dispatch->GetTypeInfoCount(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(dispatch->GetTypeInfo(0, 0x409, nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(dispatch->GetIDsOfNames(GUID_NULL, nullptr, 1, 0x409, nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(dispatch->Invoke(1, GUID_NULL, 0x409, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr)),
              Hex(E_POINTER));
    CPComPtr<ITypeInfo> info;
    EXPECT_EQ(Hex(dispatch->GetTypeInfo(1, 0x409, info.put())), Hex(DISP_E_BADINDEX));
    EXPECT_EQ(Hex(dispatch->GetTypeInfo(0, 0x409, info.put())), Hex(S_OK));
    ASSERT_EQ(Hex(dispatch->Invoke(1, GUID_NULL, 0x409, DISPATCH_METHOD, &arguments, &made, nullptr, nullptr)),
              Hex(S_OK));
    ASSERT_EQ(made.vt, VT_DISPATCH);

    OLECHAR name[] = OLESTR("sendintentticket");
    LPOLESTR names[] = {name};
    DISPID member = 0;
    ASSERT_EQ(Hex(made.pdispVal->GetIDsOfNames(GUID_NULL, names, 1, 0x409, &member)), Hex(S_OK));
    EXPECT_EQ(member, 2);
    Bstr ticket = Text("<ticket/>");
    argument.vt = VT_BSTR;
    argument.bstrVal = ticket.get();
    VARIANT answer = {};
    EXPECT_EQ(
        Hex(made.pdispVal->Invoke(member, GUID_NULL, 0x409, DISPATCH_METHOD, &arguments, &answer, nullptr, nullptr)),
        Hex(S_OK));
    ASSERT_EQ(answer.vt, VT_UNKNOWN);
    CPComPtr<ITransportDesc> transport;
    EXPECT_EQ(Hex(answer.punkVal->QueryInterface(ITransportDesc::kIid, transport.put_void())), Hex(S_OK));
    VariantClear(&answer);
    VariantClear(&made);
}

}  // namespace
}  // namespace wncom::test
