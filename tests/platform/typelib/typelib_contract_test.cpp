// The agent's type library, read back and held against what clients were promised.
#include <gtest/gtest.h>

#include "include/wncom/Bstr.h"
#include "include/wncom/wnCOM.h"
#include "tests/platform/OnWine.h"
#include "typelib_text.h"

namespace wncom::test {
namespace {

constexpr const char* kWhole =
    R"(IWendrel interface flags=0x1140 : IDispatch "IWendrel Interface"
7 0x1 GetCapabilitiesTicket(out retval BSTR* pTicket) "method GetCapabilitiesTicket"
8 0x2 SendIntentTicket(in BSTR Ticket, out retval IUnknown** ppITransportDesc) "method SendIntentTicket"
IComBaseEvent interface flags=0x100 : IUnknown "IComBaseEvent Interface"
3 0x60010000 Subscribe(in BSTR SubscriptionInfo, in BSTR FilterProperties, in BSTR ConsumerInterface, in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* SubscriptionID) "method Subscribe"
4 0x60010001 Unsubscribe(in BSTR SubscriptionID, in BSTR SessionInfo, out BSTR* ExceptionInfo) "method Unsubscribe"
5 0x60010002 GetSupportedEvents(in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* EventList) "method GetSupportedEvents"
6 0x60010003 GetSubscriptionIDList(in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* SubscriptionIDList) "method GetSubscriptionIDList"
7 0x60010004 GetSubscriptionDetails(in BSTR SubscriptionID, in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* SubscriptionDetails) "method GetSubscriptionDetails"
8 0x60010005 GetEventProperties(in BSTR EventName, in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* EventPropertyList) "method GetEventProperties"
9 0x60010006 GetEventSystemCapabilities(in BSTR SessionInfo, out BSTR* ExceptionInfo, out BSTR* EventCapabilities) "method GetEventSystemCapabilities"
ISessionControl interface flags=0x140 : IUnknown "ISessionControl Interface"
3 0x1 StartSession() "method StartSession"
4 0x2 EndSession() "method EndSession"
5 0x3 RestartSession() "method RestartSession"
IWNInitByParent interface flags=0x140 : IUnknown "IWNInitByParent Interface"
3 0x1 InitByParent(in IUnknown* pISD, in IUnknown* pTD) "method InitByParent"
IJobControl interface flags=0x1C0 : IUnknown "IJobControl Interface"
3 0x1 CancelJobWithMessage(in BSTR jobURI, in BSTR cancelMessage) "method CancelJobWithMessage"
4 0x2 CancelJob(in BSTR jobURI) "method CancelJob"
5 0x3 QueryJobStatus(in BSTR jobURI, out retval BSTR* intentTicket) "method QueryJobStatus"
6 0x4 SubmitJob(in BSTR intentTicket, out retval BSTR* ResponseTicket) "method SubmitJob"
IWNXDMAccess interface flags=0x140 : IUnknown "IWNXDMAccess Interface"
3 0x1 GetData(in BSTR xdmPath, in BSTR xdmPrefixes, out BSTR* ExceptionInfo, out retval BSTR* xdmDocument) "method GetData"
4 0x2 SetData(in BSTR xdmSetDocument, in long FailureDetails, out BSTR* ExceptionInfo) "method SetData"
IWNEventAccess interface flags=0x140 : IUnknown "IWNEventAccess Interface"
3 0x1 GetEventCapabilities(out BSTR* ExceptionInfo, out retval BSTR* eventCapabilitiesTicket) "method GetEventCapabilities"
4 0x2 SubscribeForEvents(in BSTR eventSubscription, out BSTR* ExceptionInfo, BSTR* subscriptionResultTicket) "method SubscribeForEvents"
5 0x3 Resubscribe(in BSTR SubscriptionID, in BSTR duration, out BSTR* ExceptionInfo) "method Resubscribe"
6 0x4 UnsubscribeForEvents(in BSTR SubscriptionID, out BSTR* ExceptionInfo) "method UnsubscribeForEvents"
IInternalWendrelParent interface flags=0x1140 : IDispatch "IWendrelParent Interface"
7 0x1 CreateWendrel(in IUnknown* pIServiceDesc, out retval IWendrel** ppIWendrel) "method CreateWendrel"
Wendrel class flags=0x2 "Wendrel Class"
0x1 IWendrel
0x0 IComBaseEvent
0x0 ISessionControl
0x0 IWNInitByParent
0x0 IJobControl
0x0 IWNXDMAccess
0x0 IWNEventAccess
WendrelParent class flags=0x2 "WendrelParent Class"
0x1 IInternalWendrelParent
)";

class AgentTypeLibrary : public testing::Test {
protected:
    Held<ITypeInfo> Type(REFGUID guid) {
        ITypeInfo* info = nullptr;
        EXPECT_EQ(m_library->GetTypeInfoOfGuid(guid, &info), S_OK);
        return Held<ITypeInfo>(info);
    }
    static std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

    Held<ITypeLib> m_library = LoadLibraryOf("platform_typelib.dll");
};

TEST_F(AgentTypeLibrary, SaysWhatClientsWerePromised) {
    EXPECT_EQ(LibraryText(*m_library), kWhole);
    Bstr name;
    Bstr help;
    ASSERT_EQ(m_library->GetDocumentation(-1, name.put(), help.put(), nullptr, nullptr), S_OK);
    EXPECT_EQ(Narrow(name.get()) + ": " + Narrow(help.get()), "WNCOMLib: wnCOM 1.0 Type Library");
    ASSERT_EQ(m_library->GetDocumentation(3, name.put(), help.put(), nullptr, nullptr), S_OK);
    EXPECT_EQ(Narrow(name.get()) + ": " + Narrow(help.get()), "IWNInitByParent: IWNInitByParent Interface");
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(m_library->GetLibAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->guid, LIBID_WNCOMLib);
    EXPECT_EQ(attributes->lcid, 0x409U);
    EXPECT_EQ(attributes->wMajorVerNum, 1);
    EXPECT_EQ(attributes->wMinorVerNum, 0);
    m_library->ReleaseTLibAttr(attributes);
    for (const IID& iid : {IWendrel::kIid, IComBaseEvent::kIid, ISessionControl::kIid, IWNInitByParent::kIid,
                           IJobControl::kIid, IWNXDMAccess::kIid, IWNEventAccess::kIid, IInternalWendrelParent::kIid,
                           CLSID_Wendrel, CLSID_WendrelParent}) {
        EXPECT_TRUE(Type(iid));
    }
}

TEST_F(AgentTypeLibrary, ShowsADualInterfaceAsALateBoundOneFirst) {
    // The members of IUnknown and IDispatch come first, and what a method hands back stands in place of its status.
    const std::string text = TypeText(*Type(IWendrel::kIid));
    EXPECT_EQ(FirstLine(text), "IWendrel dispatch flags=0x1040 : IDispatch \"IWendrel Interface\"");
    EXPECT_EQ(text.substr(text.find("\n7 ")),
              "\n7 0x1 GetCapabilitiesTicket() BSTR late-bound \"method GetCapabilitiesTicket\"\n"
              "8 0x2 SendIntentTicket(in BSTR Ticket) IUnknown* late-bound \"method SendIntentTicket\"\n");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 10);

    // One whose table has no IDispatch is told of in the same way, and either view leads to the other.
    const Held<ITypeInfo> type = Type(IJobControl::kIid);
    EXPECT_EQ(FirstLine(TypeText(*type)), "IJobControl dispatch flags=0xC0 : IDispatch \"IJobControl Interface\"");
    const Held<ITypeInfo> table = TableView(*type);
    EXPECT_EQ(TypeText(*TableView(*table)), TypeText(*type));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(table->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->guid, IJobControl::kIid);
    EXPECT_EQ(attributes->cbSizeVft, 7 * sizeof(void*));
    table->ReleaseTypeAttr(attributes);
    EXPECT_FALSE(Referenced(*Type(IComBaseEvent::kIid), static_cast<UINT>(-1)));
}

TEST_F(AgentTypeLibrary, KnowsEachTypesPlaceAndLibrary) {
    for (UINT i = 0; i < 10; ++i) {
        ITypeInfo* info = nullptr;
        ASSERT_EQ(m_library->GetTypeInfo(i, &info), S_OK);
        const Held<ITypeInfo> type(info);
        ITypeLib* owner = nullptr;
        UINT index = 99;
        ASSERT_EQ(type->GetContainingTypeLib(&owner, &index), S_OK);
        EXPECT_EQ(index, i);
        EXPECT_EQ(Held<ITypeLib>(owner)->GetTypeInfoCount(), 10U);
        TYPEKIND kind = TKIND_ALIAS;
        EXPECT_EQ(m_library->GetTypeInfoType(i, &kind), S_OK);
        EXPECT_EQ(kind, i >= 8 ? TKIND_COCLASS : i == 1 ? TKIND_INTERFACE : TKIND_DISPATCH);
    }
}

TEST_F(AgentTypeLibrary, FindsNamesInAnyCase) {
    OLECHAR member[] = OLESTR("submitjob");
    OLECHAR parameter[] = OLESTR("INTENTTICKET");
    OLECHAR unknown[] = OLESTR("SubmitJo");
    LPOLESTR names[] = {member, unknown, parameter};
    MEMBERID ids[3] = {};
    EXPECT_EQ(Type(IJobControl::kIid)->GetIDsOfNames(names, 3, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[0], 4);
    EXPECT_EQ(ids[1], DISPID_UNKNOWN);
    EXPECT_EQ(ids[2], 0);
    EXPECT_EQ(Type(IJobControl::kIid)->GetIDsOfNames(&names[1], 1, ids), DISP_E_UNKNOWNNAME);

    BOOL found = FALSE;
    EXPECT_EQ(m_library->IsName(parameter, 0, &found), S_OK);
    // Wine compares names as they are.
    EXPECT_EQ(found, OnWine() ? FALSE : TRUE);
    EXPECT_EQ(Narrow(Bstr(parameter).get()), OnWine() ? "INTENTTICKET" : "intentTicket");
    OLECHAR unsubscribe[] = OLESTR("Unsubscribe");
    ITypeInfo* info = nullptr;
    MEMBERID id = 0;
    USHORT count = 1;
    ASSERT_EQ(m_library->FindName(unsubscribe, 0, &info, &id, &count), S_OK);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(FirstLine(TypeText(*Held<ITypeInfo>(info))).substr(0, 14), "IComBaseEvent ");
    EXPECT_EQ(id, 0x60010001);
}

TEST_F(AgentTypeLibrary, RefusesWhatIsNotThere) {
    ITypeInfo* info = nullptr;
    EXPECT_EQ(m_library->GetTypeInfo(10, &info), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(m_library->GetDocumentation(10, nullptr, nullptr, nullptr, nullptr), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(m_library->GetTypeInfoOfGuid(GUID{}, &info), TYPE_E_ELEMENTNOTFOUND);
    const Held<ITypeInfo> type = Type(IComBaseEvent::kIid);
    FUNCDESC* function = nullptr;
    EXPECT_EQ(type->GetFuncDesc(7, &function), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(type->GetFuncDesc(0xFFFFFFFD, &function), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(type->GetDocumentation(99, nullptr, nullptr, nullptr, nullptr), TYPE_E_ELEMENTNOTFOUND);
    void* object = nullptr;
    EXPECT_TRUE(FAILED(type->CreateInstance(nullptr, IID_IUnknown, &object)));
    EXPECT_EQ(type->AddressOfMember(0x60010000, INVOKE_FUNC, &object), TYPE_E_BADMODULEKIND);
}

}  // namespace
}  // namespace wncom::test
