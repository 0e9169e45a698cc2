#include "tests/bridge/BridgeFixture.h"
#include "tests/support/MatchesPattern.h"

namespace wncom::test {
namespace {

const std::string kNotInitialised =
    "3 (At RmtJobControl Initialize call) unexpected exception in .\\OrbStuff @ line 77.";

using RoadTest = BridgeFixture;

TEST_F(RoadTest, ConstructionLogsTheTraceSize) { EXPECT_THAT(Lines(), ElementsAre("3 OrbStuff::TRACESIZE=63488")); }

TEST_F(RoadTest, ConnectsAndInitialisesTheRemoteObject) {
    Lines();
    m_bridge->SetServiceURI(kWideAddress);
    EXPECT_THAT(RemoteCalls(),
                ElementsAre("FakeTransport.maker()", "FakeTransport.Initialize(http://device/service, none)"));
    EXPECT_THAT(Lines(), ElementsAre("3 Entering SetServiceURIbrap", "3 Create() call on factory succeeded"));
}

TEST_F(RoadTest, ReconnectsThroughTheSameFactoryAfterGivingTheOldObjectBack) {
    Connect();
    m_bridge->SetServiceURI(kWideAddress);
    EXPECT_THAT(RemoteCalls(), ElementsAre("FakeTransport.demaker(object)", "FakeTransport.maker()",
                                           "FakeTransport.Initialize(http://device/service, none)"));
    EXPECT_TRUE(Script().CallsOf("XMLSimpleAccessor").empty()) << "the catalogue is read once";
}

TEST_F(RoadTest, AnEmptyAddressKeepsTheObjectAndLogsNothing) {
    Connect();
    m_bridge->SetServiceURI(OLESTR(""));
    m_bridge->SetServiceURI(nullptr);
    EXPECT_EQ(0u, Script().CallCount());
    EXPECT_TRUE(Lines().empty());
    Script().Answer("FakeTransport.SubmitJob", "x");
    MallocText<WCHAR> response;
    EXPECT_EQ(1, m_bridge->SubmitJob(OLESTR("t"), &response));
    EXPECT_EQ("3 OrbStuff::Establishing SubmitJob connection to (null)", Lines().front());
}

TEST_F(RoadTest, SendsTheAddressInUtf8) {
    Script().SetServices({{"\xE2\x82\xAC", "network"}});
    m_bridge->SetServiceURI(OLESTR("\u20AC"));
    EXPECT_THAT(Script().CallsOf("FakeTransport.Initialize"),
                ElementsAre("FakeTransport.Initialize(\xE2\x82\xAC, none)"));
}

TEST_F(RoadTest, IsUnconnectedAfterAFailedCreate) {
    Connect();
    Script().FailIn("FakeTransport.maker", {Fault::CommonException});
    m_bridge->SetServiceURI(kWideAddress);
    EXPECT_EQ("3 Create() call on factory failed", Lines().back());
    EXPECT_EQ(0, Script().LiveObjects());
    EXPECT_EQ("", Shown(m_bridge->StartSession()));
    EXPECT_THAT(Lines(), ElementsAre("1 Got EXCEPTION calling RmtJobControl->StartSession"));
    m_bridge->EndSession();
    EXPECT_THAT(Lines(), ElementsAre("1 ORBStuff::EndSession failed!"));
}

// Whatever a library throws that is no exception of ours must end at the bridge as well.
TEST_F(RoadTest, EndsForeignExceptionsOfMaker) {
    for (const Fault fault : {Fault::Integer, Fault::OutOfMemory}) {
        Script().FailIn("FakeTransport.maker", {fault});
        m_bridge->SetServiceURI(kWideAddress);
        EXPECT_EQ("3 Create() call on factory failed", Lines().back());
    }
}

TEST_F(RoadTest, ReadsTheCatalogueOnlyOnceEvenWhenThatFailed) {
    Script().FailIn("XMLSimpleAccessor.LoadXML", {Fault::Status, E_FAIL}, 1);
    for (int i = 0; i < 2; ++i) {
        m_bridge->SetServiceURI(kWideAddress);
        EXPECT_EQ("3 Create() call on factory failed", Lines().back());
    }
    EXPECT_EQ(1u, Script().CallsOf("XMLSimpleAccessor.LoadXML").size());
    EXPECT_EQ(1u, Script().CallsOf("PortMap.GetMatchingDevices").size()) << "the second attempt went on to the map";
}

TEST_F(RoadTest, ANullObjectIsLoggedAndLeavesTheBridgeUnconnected) {
    Script().FailIn("FakeTransport.maker", {Fault::Null});
    Lines();
    m_bridge->SetServiceURI(kWideAddress);
    EXPECT_THAT(Lines(), ElementsAre("3 Entering SetServiceURIbrap", kNotInitialised));
    MallocText<WCHAR> response;
    EXPECT_EQ(0, m_bridge->SubmitJob(OLESTR("t"), &response));
    EXPECT_THAT(Lines(), ElementsAre("3 OrbStuff::Establishing SubmitJob connection to http://device/service",
                                     "3 calling SubmitJob on mJobControl", "3 Exception thrown calling SubmitJob().",
                                     "2 result: NULL!", ""));
}

TEST_F(RoadTest, AnObjectThatWasNotInitialisedStaysInUse) {
    Script().FailIn("FakeTransport.Initialize", {Fault::Integer});
    Script().Answer("FakeTransport.StartSession", "session");
    Lines();
    m_bridge->SetServiceURI(kWideAddress);
    EXPECT_THAT(Lines(),
                ElementsAre("3 Entering SetServiceURIbrap", "3 Create() call on factory succeeded", kNotInitialised));
    EXPECT_EQ("session", Shown(m_bridge->StartSession()));
}

TEST_F(RoadTest, SessionsStartEndAndAreNamedInTheNarrowCodePage) {
    Connect();
    Script().Answer("FakeTransport.StartSession", "s\xE9");
    EXPECT_EQ("s\xE9", Shown(m_bridge->StartSession()));
    m_bridge->SetSessionID(OLESTR("s\u20AC"));
    m_bridge->SetSessionID(nullptr);
    m_bridge->EndSession();
    EXPECT_THAT(RemoteCalls(), ElementsAre("FakeTransport.StartSession()", "FakeTransport.SetSessionID(s\x80)",
                                           "FakeTransport.SetSessionID()", "FakeTransport.EndSession()"));
    EXPECT_THAT(Lines(), ElementsAre("3 OrbStuff::szSessionID: s\xE2\x82\xAC", "3 OrbStuff::szSessionID: (null)"));
}

TEST_F(RoadTest, FailedSessionCallsAreLogged) {
    Connect();
    for (const char* operation : {"StartSession", "SetSessionID", "EndSession"}) {
        Script().FailIn(std::string("FakeTransport.") + operation, {Fault::Integer});
    }
    EXPECT_EQ("", Shown(m_bridge->StartSession()));
    m_bridge->SetSessionID(OLESTR("s"));
    m_bridge->EndSession();
    EXPECT_THAT(Lines(),
                ElementsAre("1 Got EXCEPTION calling RmtJobControl->StartSession", "3 OrbStuff::szSessionID: s",
                            "1 ORBStuff::SetSessionID failed!", "1 ORBStuff::EndSession failed!"));
}

TEST_F(RoadTest, DestructionGivesTheObjectBackBeforeTheLibrary) {
    Connect();
    m_bridge.reset();
    EXPECT_THAT(Script().Calls(), ElementsAre("FakeTransport.demaker(object)", "FakeTransport.demaker(null)"));
}

TEST_F(RoadTest, ABridgeThatNeverConnectedCallsNothing) {
    m_bridge.reset();
    EXPECT_EQ(0u, Script().CallCount());
}

TEST_F(RoadTest, OperationsAreTraced) {
    m_log.reset();
    LogCapture log(5);
    m_bridge->EndSession();
    const std::vector<std::string> lines = log.Lines();
    ASSERT_EQ(3u, lines.size());
    EXPECT_THAT(lines[0], MatchesPattern("5 ENTER OrbStuff::EndSession on line [0-9]+ in file .\\\\OrbStuff @.*@"));
    EXPECT_THAT(lines[2], testing::StartsWith("5 EXIT: OrbStuff::EndSession @{"));
}

// Whatever goes wrong at whichever outside call, each operation answers, nothing is lost, and the road works again.
TEST_F(RoadTest, SurvivesAnyFaultAtAnyCall) {
    Script().Answer("FakeTransport.SubmitJob", "response");
    const auto walk = [](OrbStuff& bridge) {
        bridge.SetServiceURI(kWideAddress);
        bridge.StartSession();
        MallocText<WCHAR> response;
        const LONG length = bridge.SubmitJob(OLESTR("ticket"), &response);
        EXPECT_EQ(length != 0, response != nullptr);
        bridge.EndSession();
        return length;
    };
    EXPECT_EQ(8, walk(*m_bridge));
    const unsigned calls = Script().CallCount();
    ASSERT_GT(calls, 30u);
    for (const Fault fault :
         {Fault::Status, Fault::Null, Fault::CommonException, Fault::OutOfMemory, Fault::Integer}) {
        for (unsigned number = 1; number <= calls; ++number) {
            auto bridge = std::make_unique<OrbStuff>();
            Script().ForgetCalls();
            Script().FailAtCall(number, {fault, E_ABORT});
            walk(*bridge);
            Script().FailAtCall(number, {});
            bridge.reset();
            EXPECT_EQ(1, Script().LiveObjects()) << "fault " << static_cast<int>(fault) << " at call " << number;
        }
    }
    EXPECT_EQ(8, walk(*m_bridge));
}

}  // namespace
}  // namespace wncom::test
