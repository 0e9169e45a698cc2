// The service description and the transport description.
#include "wncom/Descriptions.h"
#include "tests/components/ComponentsFixture.h"

namespace wncom::test {
namespace {

class Descriptions : public ComponentsFixture {
protected:
    CPComPtr<IServiceDesc> m_service = Create<IServiceDesc>(kProgIdServiceDesc);
    CPComPtr<ITransportDesc> m_transport = Create<ITransportDesc>(kProgIdTransportDesc);
};

const WideText kWithZeros = {'a', 0, 'b', 0};

template <class Interface>
std::string Read(const CPComPtr<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*)) {
    Bstr text;
    EXPECT_EQ(Hex((object.get()->*get)(text.put())), Hex(S_OK));
    return Shown(text.get());
}

TEST_F(Descriptions, TextsReadBackWholeAndNullWhileUnset) {
    EXPECT_EQ(Read(m_service, &IServiceDesc::GetID), "null");
    EXPECT_EQ(Read(m_service, &IServiceDesc::GetAddress), "null");
    EXPECT_EQ(m_service->SetID(Bstr(kWithZeros).get()), S_OK);
    EXPECT_EQ(m_service->SetAddress(Bstr(OLESTR("")).get()), S_OK);
    EXPECT_EQ(Read(m_service, &IServiceDesc::GetID), "a\\u0000b\\u0000");
    EXPECT_EQ(Read(m_service, &IServiceDesc::GetAddress), "") << "empty is not null";

    EXPECT_EQ(Read(m_transport, &ITransportDesc::GetSessionContext), "null");
    EXPECT_EQ(m_transport->SetSessionContext(Bstr(kWithZeros).get()), S_OK);
    EXPECT_EQ(m_transport->SetJobURI(Bstr(OLESTR("job")).get()), S_OK);
    EXPECT_EQ(Read(m_transport, &ITransportDesc::GetSessionContext), "a\\u0000b\\u0000");
    EXPECT_EQ(Read(m_transport, &ITransportDesc::GetJobURI), "job");
    EXPECT_EQ(m_transport->SetSessionContext(nullptr), S_OK);
    EXPECT_EQ(Read(m_transport, &ITransportDesc::GetSessionContext), "null");
}

TEST_F(Descriptions, TargetIsKeptAsAWhole) {
    LONG type = 0;
    LONG method = 0;
    EXPECT_EQ(m_transport->GetAddressType(&type), S_OK);
    EXPECT_EQ(m_transport->GetDeliveryMethod(&method), S_OK);
    EXPECT_EQ(type, -1);
    EXPECT_EQ(method, -1);

    EXPECT_EQ(m_transport->SetTargetURI(Bstr(OLESTR("http://d/1")).get(), 0, 0, 3), S_OK);
    EXPECT_EQ(Hex(m_transport->SetTargetURI(nullptr, 1, 7, 7)), Hex(E_INVALIDARG)) << "the reserved argument is 0";
    EXPECT_EQ(Read(m_transport, &ITransportDesc::GetTargetURI), "http://d/1");
    EXPECT_EQ(m_transport->GetAddressType(&type), S_OK);
    EXPECT_EQ(m_transport->GetDeliveryMethod(&method), S_OK);
    EXPECT_EQ(type, 0);
    EXPECT_EQ(method, 3);
}

TEST_F(Descriptions, NullPlacesAndReservedSlotsAreRefused) {
    EXPECT_EQ(Hex(m_service->GetID(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(m_transport->GetTargetURI(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(m_transport->GetAddressType(nullptr)), Hex(E_POINTER));
    EXPECT_EQ(Hex(m_transport->Reserved12()), Hex(E_NOTIMPL));
}

// An outer object that holds a description: the interfaces' IUnknown must be the outer one's.
class Outer : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid != IID_IUnknown) return m_inner->QueryInterface(iid, object);
        AddRef();
        *object = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }

    ULONG m_references = 1;
    CPComPtr<IUnknown> m_inner;
};

TEST_F(Descriptions, DescriptionLivesInsideAnOuterObject) {
    Outer outer;
    ASSERT_EQ(Hex(CoCreateInstance(CLSID_ServiceDesc, &outer, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                   outer.m_inner.put_void())),
              Hex(S_OK));
    {
        CPComPtr<IServiceDesc> inner;
        ASSERT_EQ(outer.m_inner.QueryInterface(inner), S_OK);
        EXPECT_EQ(outer.m_references, 2u);
        CPComPtr<IUnknown> identity;
        EXPECT_EQ(inner->QueryInterface(IID_IUnknown, identity.put_void()), S_OK);
        EXPECT_EQ(identity.get(), &outer);
    }
    EXPECT_EQ(outer.m_references, 1u);
}

}  // namespace
}  // namespace wncom::test
