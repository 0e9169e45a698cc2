// Device data from the client's side: what goes out, what comes back, and who gets which text.
#include "tests/agent/AgentFixture.h"

namespace wncom::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

const Misbehaviour kThrown[] = {{Fault::CommonException}, {Fault::OutOfMemory}, {Fault::Integer}};

class DataTest : public AgentFixture {
protected:
    DataTest() { Prepare(); }

    HRESULT Get(const char* path = "/device/name") {
        return m_data->GetData(Text(path).get(), Text("p=urn:p").get(), m_exception.put(), m_document.put());
    }
    HRESULT Set(LONG failureDetails = 0) {
        return m_data->SetData(Text("<set/>").get(), failureDetails, m_exception.put());
    }

    const CPComPtr<IWNXDMAccess> m_data = Agent<IWNXDMAccess>();
    OutText m_exception;
    OutText m_document;
};

TEST_F(DataTest, ADocumentIsReadByPathAndPrefixesInASessionOfItsOwn) {
    Script().Answer("FakeTransport.GetData", "<doc/>");
    EXPECT_EQ(Hex(Get()), Hex(S_OK));
    EXPECT_EQ(m_document.Shown(), "<doc/>");
    EXPECT_EQ(m_exception.Shown(), "(null)");
    EXPECT_THAT(Script().CallsOf("FakeTransport"),
                ElementsAre("FakeTransport.demaker(object)", "FakeTransport.maker()",
                            "FakeTransport.Initialize(http://device/service, none)", "FakeTransport.StartSession()",
                            "FakeTransport.GetData(/device/name, p=urn:p, 1)"));
}

TEST_F(DataTest, AnExceptionTextBesideADocumentIsNotForTheClient) {
    Script().Answer("FakeTransport.GetData", "<doc/>");
    Script().Answer("FakeTransport.GetData.slot", "a warning");
    EXPECT_EQ(Hex(Get()), Hex(S_OK));
    EXPECT_EQ(m_document.Shown(), "<doc/>");
    EXPECT_EQ(m_exception.Shown(), "(null)");
}

TEST_F(DataTest, AReadWithoutADocumentKeepsTheExceptionText) {
    Script().Answer("FakeTransport.GetData.slot", "no such path");
    EXPECT_EQ(Hex(Get()), Hex(E_FAIL));
    EXPECT_EQ(m_document.Shown(), "(null)");
    EXPECT_EQ(m_exception.Shown(), "no such path");
    EXPECT_THAT(Log(), Contains("1 Orb.GetData failed with 0 length ticket"));
}

TEST_F(DataTest, AReadThatThrowsKeepsTheExceptionTextToo) {
    for (const Misbehaviour& thrown : kThrown) {
        Prepare();
        Script().Answer("FakeTransport.GetData.slot", "half way");
        Script().FailIn("FakeTransport.GetData", thrown);
        OutText exception;
        EXPECT_EQ(Hex(m_data->GetData(Text("/").get(), nullptr, exception.put(), m_document.put())), Hex(E_FAIL));
        EXPECT_EQ(exception.Shown(), "half way");
        EXPECT_THAT(Log(), testing::IsSupersetOf({"3 Exception thrown attempting the GetData() call.",
                                                  "1 Orb.GetData failed with 0 length ticket"}));
    }
    EXPECT_EQ(m_document.Shown(), "(null)");
}

TEST_F(DataTest, AReadWithoutAPathIsRefusedByTheBridge) {
    EXPECT_EQ(Hex(m_data->GetData(nullptr, nullptr, m_exception.put(), m_document.put())), Hex(E_FAIL));
    EXPECT_EQ(m_document.Shown(), "(null)");
    EXPECT_EQ(m_exception.Shown(), "(null)");
    EXPECT_THAT(Script().CallsOf("FakeTransport.GetData"), IsEmpty());
    EXPECT_THAT(Log(), Contains("1 Orb.GetData failed with -17 length ticket"));
}

TEST_F(DataTest, AReadClearsItsOutParametersBeforeTheSession) {
    Script().FailIn("ServiceDesc.GetAddress", {Fault::Status, E_ABORT});
    EXPECT_EQ(Hex(Get()), Hex(E_ABORT));
    EXPECT_EQ(m_document.Shown(), "(null)");
    EXPECT_EQ(m_exception.Shown(), "(null)");
    EXPECT_THAT(Script().CallsOf("FakeTransport"), IsEmpty());
}

TEST_F(DataTest, AReadNeedsNeitherPrefixesNorOutParameters) {
    Script().Answer("FakeTransport.GetData", "<doc/>");
    EXPECT_EQ(Hex(m_data->GetData(Text("/").get(), nullptr, nullptr, nullptr)), Hex(S_OK));
    EXPECT_THAT(Script().CallsOf("FakeTransport.GetData"), ElementsAre("FakeTransport.GetData(/, , 1)"));
}

TEST_F(DataTest, AWriteCarriesTheDocumentAndTheWishForDetails) {
    Script().AnswerFlag("FakeTransport.SetData", true);
    EXPECT_EQ(Hex(Set(0)), Hex(S_OK));
    EXPECT_EQ(Hex(Set(1)), Hex(S_OK));
    EXPECT_EQ(Hex(Set(-1)), Hex(S_OK));
    EXPECT_EQ(Hex(Set(0x100)), Hex(S_OK));
    EXPECT_THAT(Script().CallsOf("FakeTransport.SetData"),
                ElementsAre("FakeTransport.SetData(<set/>, false, 1)", "FakeTransport.SetData(<set/>, true, 1)",
                            "FakeTransport.SetData(<set/>, true, 1)", "FakeTransport.SetData(<set/>, true, 1)"));
    EXPECT_EQ(Script().CallsOf("FakeTransport.StartSession").size(), 4U);
    EXPECT_EQ(m_exception.Shown(), "(null)");
}

TEST_F(DataTest, ATextOfASuccessfulWriteIsTheClients) {
    Script().AnswerFlag("FakeTransport.SetData", true);
    Script().Answer("FakeTransport.SetData.slot", "stored in part");
    EXPECT_EQ(Hex(Set()), Hex(S_OK));
    EXPECT_EQ(m_exception.Shown(), "stored in part");
    EXPECT_EQ(Hex(m_data->SetData(Text("<set/>").get(), 0, nullptr)), Hex(S_OK));
}

TEST_F(DataTest, AFailedWriteTouchesNothing) {
    Script().Answer("FakeTransport.SetData.slot", "refused");
    EXPECT_EQ(Hex(Set()), Hex(E_FAIL));
    EXPECT_THAT(Log(), testing::IsSupersetOf({"2 result: false!", "1 Orb.SetData returned false"}));
    for (const Misbehaviour& thrown : kThrown) {
        Script().FailIn("FakeTransport.SetData", thrown);
        EXPECT_EQ(Hex(Set()), Hex(E_FAIL));
    }
    EXPECT_THAT(Log(), Contains("3 Exception thrown while attempting to call SetData()."));
    EXPECT_EQ(Hex(m_data->SetData(nullptr, 1, m_exception.put())), Hex(E_FAIL));
    EXPECT_EQ(m_exception.Shown(), "(untouched)");
}

TEST_F(DataTest, AWriteWithoutASessionTouchesNothing) {
    Script().FailIn("ServiceDesc.GetAddress", {Fault::Status, E_ACCESSDENIED});
    EXPECT_EQ(Hex(Set()), Hex(E_ACCESSDENIED));
    EXPECT_EQ(m_exception.Shown(), "(untouched)");
    EXPECT_THAT(Script().CallsOf("FakeTransport"), IsEmpty());
}

}  // namespace
}  // namespace wncom::test
