// The device data: read by path, set all or nothing.
#include "tests/tools/wndevice/WndeviceFixture.h"

namespace wncom::test {
namespace {

TEST_F(WndeviceTest, ElementsComeWithTheirNamespaceAndOtherNodesAsTheirValues) {
    EXPECT_EQ(Read("//x:tray[@id='2']/x:size", "x=urn:wncom:device-data")->body,
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<dataResult><size xmlns=\"urn:wncom:device-data\">SRA3</size></dataResult>\n");
    EXPECT_EQ(Value("count(//d:tray)"), "3");
    EXPECT_EQ(Value("//d:tray[1]/@id"), "1");
    EXPECT_EQ(Value("//d:state/text()"), "ready");
    EXPECT_EQ(Value("/*/namespace::*[. != 'http://www.w3.org/XML/1998/namespace']"), "urn:wncom:device-data");
    EXPECT_TRUE(Contains(Read("/")->body, "<state>ready</state>"));
}

TEST_F(WndeviceTest, PathOrPrefixThatCannotBeUsedIsRefusedWithAReason) {
    ExpectRefusal(Read("/deviceData"), 404, "The path selects nothing");
    const std::tuple<std::string, const char*, const char*> cases[] = {
        {"/x:deviceData", "d=urn:x", "Undefined namespace prefix"},
        {"a[", "", "The path cannot be used"},
        {"", "", "The path cannot be used"},
        {std::string(4000, '('), "", "The path cannot be used"},
        {std::string(4097, 'a'), "", "The path is longer than 4096 bytes"},
        {"//*", "d", "not of the form p=urn:x;q=urn:y"},
        {"//*", "1=urn:x", "not of the form p=urn:x;q=urn:y"},
        {"//*", "d=urn:x; d=urn:y", "The prefix d is bound twice"},
    };
    for (const auto& [path, prefixes, reason] : cases) ExpectRefusal(Read(path, prefixes), 422, reason);
    EXPECT_EQ(Read("//*", " ; d = urn:x ;")->status, 200);
}

TEST_F(WndeviceTest, ValueThatWasSetOutlivesARestartAndCountersFollowTheJobs) {
    Job();
    EXPECT_EQ(Value("string(//d:jobsAccepted)"), "1");
    EXPECT_EQ(Set(SetValue("//d:operatorMessage", "a &lt;&amp;amp;&gt; \xC3\xA9\xE4\xB8\xAD") +
                  SetValue("//d:tray[2]/@id", "left"))
                  ->status,
              200);
    device.Stop();

    const std::string port = device.Address().substr(device.Address().rfind(':') + 1);
    const DeviceProcess again({"--port", port}, device.Store());
    session = Session();
    EXPECT_EQ(Value("string(//d:operatorMessage)"), "a &lt;&amp;amp;&gt; \xC3\xA9\xE4\xB8\xAD");
    EXPECT_EQ(Value("count(//d:tray[@id='left'])"), "1");
    EXPECT_EQ(Value("concat(//d:jobsAccepted, ' ', //d:jobsComplete)"), "1 0");
}

TEST_F(WndeviceTest, OneBadValueOfSeveralLeavesAllAsTheyWereAndIsTold) {
    const std::string sets = SetValue("//d:state", "stopped") + SetValue("//d:absent", "1") +
                             SetValue("//d:tray", "1") + SetValue("//d:status", "1") +
                             SetValue("//d:jobsAccepted", "0") + SetValue("//d:counters/@readOnly", "false") +
                             SetValue("//d:state/text()", "1") + SetValue("1", "1");
    const auto failure = [](const char* path, const char* reason) {
        return std::string("<path>") + path + "</path>\n    <reason>" + reason + "</reason>";
    };

    const auto answer = Set(sets, {{"Failure-Details", "yes"}});

    EXPECT_EQ(answer->status, 422);
    for (const std::string& told :
         {failure("//d:absent", "The path selects 0 nodes, not one"),
          failure("//d:tray", "The path selects 3 nodes, not one"),
          failure("//d:status", "The element contains other elements, not a value"),
          failure("//d:jobsAccepted", "The value is read-only"),
          failure("//d:counters/@readOnly", "The value is read-only"),
          failure("//d:state/text()", "The path selects neither an element nor an attribute"),
          failure("1", "The path selects no node")}) {
        EXPECT_TRUE(Contains(answer->body, told));
    }
    EXPECT_EQ(Value("string(//d:state)"), "ready");
    ExpectRefusal(Set(sets), 422, "No value is set: 7 of 8 cannot be set");
}

TEST_F(WndeviceTest, DocumentThatIsNotASetDocumentIsRefusedWithAReason) {
    std::string many;
    for (int i = 0; i < 1001; ++i) many += SetValue("//d:state", "1");
    ExpectRefusal(Set(""), 422, "The document sets no values");
    ExpectRefusal(Set("<set><path>//d:state</path></set>"), 422, "A set element has no path or no value");
    ExpectRefusal(Set(many), 422, "The document sets more than 1000 values");
    ExpectRefusal(Set(SetValue("//d:state", std::string(65'537, 'a'))), 422, "A value is longer than 65536 bytes");
    ExpectRefusal(Post("/device-data/write", "<other/>"), 422, "The document is not a setData");
    ExpectRefusal(Post("/device-data/read", "<other/>"), 422, "The document is not a dataRequest");
    EXPECT_EQ(Set(SetValue("//d:state", std::string(65'536, 'a')))->status, 200);
}

TEST_F(WndeviceTest, EachOperationOfASessionIsRefusedWithoutOne) {
    const httplib::Headers none = {{"Session-Id", ""}};
    for (const char* path :
         {"/capabilities", "/jobs", "/device-data/read", "/device-data/write", "/subscription-tickets"}) {
        ExpectRefusal(Post(path, "<a/>", none), 403, "The request belongs to no open session");
    }
    ExpectRefusal(client.Get("/event-capabilities"), 403, "The request belongs to no open session");
}

TEST(WndeviceData, DamagedDocumentIsLeftAndTheDeviceDoesNotStart) {
    const std::string store = HomePath() + "/damaged";
    WriteWholeFile(store + "/device-data.xml", "<deviceData>");
    EXPECT_EQ(RunDevice({"--store", store}), 1);
    EXPECT_EQ(ReadWholeFile(store + "/device-data.xml"), "<deviceData>");
}

}  // namespace
}  // namespace wncom::test
