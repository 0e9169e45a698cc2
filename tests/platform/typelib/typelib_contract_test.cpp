// The agent's type library, read back and held against what clients were promised.
#include <gtest/gtest.h>

#include "include/wncom/Bstr.h"
#include "include/wncom/wnCOM.h"
#include "tests/platform/OnWine.h"
#include "typelib_text.h"

namespace wncom::test {
namespace {

class AgentTypeLibrary : public testing::Test {
protected:
    void SetUp() override {
        m_library = LoadLibraryOf("wnCOM.dll");
        ASSERT_TRUE(m_library);
    }

    Held<ITypeInfo> Type(REFGUID guid) {
        ITypeInfo* info = nullptr;
        EXPECT_EQ(m_library->GetTypeInfoOfGuid(guid, &info), S_OK);
        return Held<ITypeInfo>(info);
    }

    std::string Table(REFGUID guid) { return InterfaceText(*TableView(*Type(guid))); }

    Held<ITypeLib> m_library;
};

TEST_F(AgentTypeLibrary, TellsItsIdentity) {
    Bstr name;
    Bstr help;
    ASSERT_EQ(m_library->GetDocumentation(-1, name.put(), help.put(), nullptr, nullptr), S_OK);
    EXPECT_EQ(Narrow(name.get()), "WNCOMLib");
    EXPECT_EQ(Narrow(help.get()), "wnCOM 1.0 Type Library");
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(m_library->GetLibAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->guid, LIBID_WNCOMLib);
    EXPECT_EQ(attributes->lcid, 0x409U);
    EXPECT_EQ(attributes->wMajorVerNum, 1);
    EXPECT_EQ(attributes->wMinorVerNum, 0);
    m_library->ReleaseTLibAttr(attributes);
}

TEST_F(AgentTypeLibrary, HoldsEightInterfacesAndTwoClasses) { EXPECT_EQ(m_library->GetTypeInfoCount(), 10U); }

TEST_F(AgentTypeLibrary, ReadsTheSameInAnyModule) {
    const Held<ITypeLib> other = LoadLibraryOf("platform_typelib.dll");
    ASSERT_TRUE(other);
    EXPECT_EQ(LibraryText(*m_library), LibraryText(*other));
}

TEST_F(AgentTypeLibrary, DescribesIWendrel) {
    EXPECT_EQ(Table(IWendrel::kIid), R"(IWendrel flags=0x1140 : IDispatch "IWendrel Interface"
7 0x1 GetCapabilitiesTicket(out retval BSTR* pTicket) "method GetCapabilitiesTicket"
8 0x2 SendIntentTicket(in BSTR Ticket, out retval IUnknown** ppITransportDesc) "method SendIntentTicket"
)");
}

TEST_F(AgentTypeLibrary, DescribesIComBaseEvent) {
    EXPECT_EQ(Table(IComBaseEvent::kIid), R"(IComBaseEvent flags=0x100 : IUnknown "IComBaseEvent Interface"
3 0x60010000 Subscribe(in BSTR SubscriptionInfo, in BSTR FilterProperties, in BSTR ConsumerInterface, in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* SubscriptionID) "method Subscribe"
4 0x60010001 Unsubscribe(in BSTR SubscriptionID, in BSTR SessionInfo, out BSTR* ExceptionInfo) "method Unsubscribe"
5 0x60010002 GetSupportedEvents(in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* EventList) "method GetSupportedEvents"
6 0x60010003 GetSubscriptionIDList(in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* SubscriptionIDList) "method GetSubscriptionIDList"
7 0x60010004 GetSubscriptionDetails(in BSTR SubscriptionID, in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* SubscriptionDetails) "method GetSubscriptionDetails"
8 0x60010005 GetEventProperties(in BSTR EventName, in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* EventPropertyList) "method GetEventProperties"
9 0x60010006 GetEventSystemCapabilities(in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* EventCapabilities) "method GetEventSystemCapabilities"
)");
}

TEST_F(AgentTypeLibrary, DescribesISessionControl) {
    EXPECT_EQ(Table(ISessionControl::kIid), R"(ISessionControl flags=0x140 : IUnknown "ISessionControl Interface"
3 0x1 StartSession() "method StartSession"
4 0x2 EndSession() "method EndSession"
5 0x3 RestartSession() "method RestartSession"
)");
}

TEST_F(AgentTypeLibrary, DescribesIWNInitByParent) {
    EXPECT_EQ(Table(IWNInitByParent::kIid), R"(IWNInitByParent flags=0x140 : IUnknown "IWNInitByParent Interface"
3 0x1 InitByParent(in IUnknown* pISD, in IUnknown* pTD) "method InitByParent"
)");
}

TEST_F(AgentTypeLibrary, DescribesIJobControl) {
    EXPECT_EQ(Table(IJobControl::kIid), R"(IJobControl flags=0x1C0 : IUnknown "IJobControl Interface"
3 0x1 CancelJobWithMessage(in BSTR jobURI, in BSTR cancelMessage) "method CancelJobWithMessage"
4 0x2 CancelJob(in BSTR jobURI) "method CancelJob"
5 0x3 QueryJobStatus(in BSTR jobURI, out retval BSTR* intentTicket) "method QueryJobStatus"
6 0x4 SubmitJob(in BSTR intentTicket, out retval BSTR* ResponseTicket) "method SubmitJob"
)");
}

TEST_F(AgentTypeLibrary, DescribesIWNXDMAccess) {
    EXPECT_EQ(Table(IWNXDMAccess::kIid), R"(IWNXDMAccess flags=0x140 : IUnknown "IWNXDMAccess Interface"
3 0x1 GetData(in BSTR xdmPath, in BSTR xdmPrefixes, out BSTR* ExceptionInfo, out retval BSTR* xdmDocument) "method GetData"
4 0x2 SetData(in BSTR xdmSetDocument, in long FailureDetails, out BSTR* ExceptionInfo) "method SetData"
)");
}

TEST_F(AgentTypeLibrary, DescribesIWNEventAccess) {
    EXPECT_EQ(Table(IWNEventAccess::kIid), R"(IWNEventAccess flags=0x140 : IUnknown "IWNEventAccess Interface"
3 0x1 GetEventCapabilities(out BSTR* ExceptionInfo, out retval BSTR* eventCapabilitiesTicket) "method GetEventCapabilities"
4 0x2 SubscribeForEvents(in BSTR eventSubscription, out BSTR* ExceptionInfo, BSTR* subscriptionResultTicket) "method SubscribeForEvents"
5 0x3 Resubscribe(in BSTR SubscriptionID, in BSTR duration, out BSTR* ExceptionInfo) "method Resubscribe"
6 0x4 UnsubscribeForEvents(in BSTR SubscriptionID, out BSTR* ExceptionInfo) "method UnsubscribeForEvents"
)");
}

TEST_F(AgentTypeLibrary, DescribesIInternalWendrelParent) {
    EXPECT_EQ(Table(IInternalWendrelParent::kIid),
              R"(IInternalWendrelParent flags=0x1140 : IDispatch "IWendrelParent Interface"
7 0x1 CreateWendrel(in IUnknown* pIServiceDesc, out retval IWendrel** ppIWendrel) "method CreateWendrel"
)");
}

TEST_F(AgentTypeLibrary, DescribesBothClassesAsCreatable) {
    EXPECT_EQ(ClassText(*Type(CLSID_Wendrel)), R"(Wendrel flags=0x2 "Wendrel Class"
0x1 IWendrel
0x0 IComBaseEvent
0x0 ISessionControl
0x0 IWNInitByParent
0x0 IJobControl
0x0 IWNXDMAccess
0x0 IWNEventAccess
)");
    EXPECT_EQ(ClassText(*Type(CLSID_WendrelParent)), R"(WendrelParent flags=0x2 "WendrelParent Class"
0x1 IInternalWendrelParent
)");
}

TEST_F(AgentTypeLibrary, ShowsADualInterfaceAsALateBoundOneFirst) {
    const Held<ITypeInfo> type = Type(IWendrel::kIid);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->typekind, TKIND_DISPATCH);
    // Those of IUnknown and IDispatch among them.
    EXPECT_EQ(attributes->cFuncs, 9);
    EXPECT_EQ(attributes->guid, IWendrel::kIid);
    type->ReleaseTypeAttr(attributes);

    FUNCDESC* function = nullptr;
    ASSERT_EQ(type->GetFuncDesc(7, &function), S_OK);
    EXPECT_EQ(function->memid, 1);
    EXPECT_EQ(function->funckind, FUNC_DISPATCH);
    // What it returns is what its last parameter hands back.
    EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_BSTR);
    EXPECT_EQ(function->cParams, 0);
    type->ReleaseFuncDesc(function);
}

TEST_F(AgentTypeLibrary, MarksDualInterfacesThatHaveNoDispatchMethodsAsLateBoundToo) {
    const IID& dual = IJobControl::kIid;
    const Held<ITypeInfo> type = Type(dual);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->typekind, TKIND_DISPATCH);
    EXPECT_EQ(attributes->guid, dual);
    EXPECT_EQ(attributes->wTypeFlags, TYPEFLAG_FDUAL | TYPEFLAG_FNONEXTENSIBLE);
    type->ReleaseTypeAttr(attributes);
}

TEST_F(AgentTypeLibrary, KnowsEachTypesPlaceAndLibrary) {
    for (UINT i = 0; i < m_library->GetTypeInfoCount(); ++i) {
        ITypeInfo* info = nullptr;
        ASSERT_EQ(m_library->GetTypeInfo(i, &info), S_OK);
        const Held<ITypeInfo> type(info);
        ITypeLib* owner = nullptr;
        UINT index = 99;
        ASSERT_EQ(type->GetContainingTypeLib(&owner, &index), S_OK);
        const Held<ITypeLib> library(owner);
        EXPECT_EQ(index, i);
        EXPECT_EQ(owner->GetTypeInfoCount(), 10U);
        TYPEATTR* attributes = nullptr;
        ASSERT_EQ(type->GetTypeAttr(&attributes), S_OK);
        TYPEKIND kind = TKIND_ALIAS;
        EXPECT_EQ(m_library->GetTypeInfoType(i, &kind), S_OK);
        EXPECT_EQ(kind, attributes->typekind);
        type->ReleaseTypeAttr(attributes);
    }
}

TEST_F(AgentTypeLibrary, LeadsFromEitherViewOfADualInterfaceToTheOther) {
    const Held<ITypeInfo> table = TableView(*Type(IJobControl::kIid));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(table->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->typekind, TKIND_INTERFACE);
    EXPECT_EQ(attributes->cbSizeVft, 7 * sizeof(void*));
    table->ReleaseTypeAttr(attributes);
    const Held<ITypeInfo> back = TableView(*table);
    ASSERT_EQ(back->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->typekind, TKIND_DISPATCH);
    back->ReleaseTypeAttr(attributes);
}

TEST_F(AgentTypeLibrary, HasNoOtherViewOfAPlainInterface) {
    HREFTYPE reference = 0;
    EXPECT_EQ(Type(IComBaseEvent::kIid)->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference),
              TYPE_E_ELEMENTNOTFOUND);
}

TEST_F(AgentTypeLibrary, FindsMembersAndParametersByName) {
    OLECHAR member[] = OLESTR("submitjob");
    OLECHAR parameter[] = OLESTR("INTENTTICKET");
    OLECHAR unknown[] = OLESTR("nothing");
    LPOLESTR names[] = {member, unknown, parameter};
    MEMBERID ids[3] = {};
    EXPECT_EQ(Type(IJobControl::kIid)->GetIDsOfNames(names, 3, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[0], 4);
    EXPECT_EQ(ids[1], DISPID_UNKNOWN);
    EXPECT_EQ(ids[2], 0);
}

TEST_F(AgentTypeLibrary, RefusesWhatIsNotThere) {
    ITypeInfo* info = nullptr;
    EXPECT_EQ(m_library->GetTypeInfo(10, &info), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(m_library->GetTypeInfoOfGuid(GUID{}, &info), TYPE_E_ELEMENTNOTFOUND);
    const Held<ITypeInfo> type = Type(IComBaseEvent::kIid);
    FUNCDESC* function = nullptr;
    EXPECT_EQ(type->GetFuncDesc(7, &function), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(type->GetDocumentation(99, nullptr, nullptr, nullptr, nullptr), TYPE_E_ELEMENTNOTFOUND);
    VARDESC* variable = nullptr;
    EXPECT_EQ(type->GetVarDesc(0, &variable), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(type->GetDllEntry(0x60010000, INVOKE_FUNC, nullptr, nullptr, nullptr), TYPE_E_BADMODULEKIND);
    void* address = nullptr;
    EXPECT_TRUE(FAILED(type->CreateInstance(nullptr, IID_IUnknown, &address)));
    EXPECT_EQ(type->AddressOfMember(0x60010000, INVOKE_FUNC, &address), TYPE_E_BADMODULEKIND);
}

TEST_F(AgentTypeLibrary, SpellsAndFindsItsNames) {
    OLECHAR name[] = OLESTR("SUBMITJOB");
    BOOL found = FALSE;
    EXPECT_EQ(m_library->IsName(name, 0, &found), S_OK);
    // Wine compares names as they are.
    EXPECT_EQ(found, OnWine() ? FALSE : TRUE);
    EXPECT_EQ(Narrow(Bstr(name).get()), OnWine() ? "SUBMITJOB" : "SubmitJob");
    OLECHAR member[] = OLESTR("Unsubscribe");
    ITypeInfo* info = nullptr;
    MEMBERID id = 0;
    USHORT count = 1;
    ASSERT_EQ(m_library->FindName(member, 0, &info, &id, &count), S_OK);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(NameOf(*Held<ITypeInfo>(info)), "IComBaseEvent");
    EXPECT_EQ(id, 0x60010001);
}

}  // namespace
}  // namespace wncom::test
