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

template <class Interface>
std::string Read(const CPComPtr<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*)) {
    Bstr text;
    EXPECT_EQ(Hex((object.get()->*get)(text.put())), Hex(S_OK));
    EXPECT_EQ(Hex((object.get()->*get)(nullptr)), Hex(E_POINTER));
    return Shown(text.get());
}

// Each text of its own: unset, with zeros in it, empty, and unset again.
template <class Interface>
void ExpectText(const CPComPtr<Interface>& object, HRESULT (STDMETHODCALLTYPE Interface::*put)(BSTR),
                HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*)) {
    EXPECT_EQ(Read(object, get), "null");
    const WideText withZeros = {'a', 0, 'b', 0};
    EXPECT_EQ((object.get()->*put)(Bstr(withZeros).get()), S_OK);
    EXPECT_EQ(Read(object, get), "a\\u0000b\\u0000");
    EXPECT_EQ((object.get()->*put)(Text("").get()), S_OK);
    EXPECT_EQ(Read(object, get), "") << "empty is not null";
    EXPECT_EQ((object.get()->*put)(nullptr), S_OK);
    EXPECT_EQ(Read(object, get), "null");
}

TEST_F(Descriptions, TextsReadBackWholeAndNullWhileUnset) {
    ExpectText(m_service, &IServiceDesc::SetID, &IServiceDesc::GetID);
    ExpectText(m_service, &IServiceDesc::SetAddress, &IServiceDesc::GetAddress);
    ExpectText(m_transport, &ITransportDesc::SetSessionContext, &ITransportDesc::GetSessionContext);
    ExpectText(m_transport, &ITransportDesc::SetJobURI, &ITransportDesc::GetJobURI);
}

TEST_F(Descriptions, TargetIsKeptAsAWhole) {
    const auto codes = [this] {
        LONG type = 0;
        LONG method = 0;
        EXPECT_EQ(m_transport->GetAddressType(&type), S_OK);
        EXPECT_EQ(m_transport->GetDeliveryMethod(&method), S_OK);
        return std::pair(type, method);
    };
    EXPECT_EQ(codes(), std::pair(LONG{-1}, LONG{-1}));
    EXPECT_EQ(m_transport->SetTargetURI(Text("http://d/1").get(), 0, 0, 3), S_OK);
    EXPECT_EQ(Hex(m_transport->SetTargetURI(nullptr, 1, 7, 7)), Hex(E_INVALIDARG)) << "the reserved argument is 0";
    EXPECT_EQ(Read(m_transport, &ITransportDesc::GetTargetURI), "http://d/1");
    EXPECT_EQ(codes(), std::pair(LONG{0}, LONG{3}));
    EXPECT_EQ(Hex(m_transport->GetAddressType(nullptr)), Hex(E_POINTER));
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
        const auto inner = outer.m_inner.query<IServiceDesc>();
        ASSERT_TRUE(inner);
        EXPECT_EQ(outer.m_references, 2u);
        CPComPtr<IUnknown> identity;
        EXPECT_EQ(inner->QueryInterface(IID_IUnknown, identity.put_void()), S_OK);
        EXPECT_EQ(identity.get(), &outer);
    }
    EXPECT_EQ(outer.m_references, 1u);
}

}  // namespace
}  // namespace wncom::test
