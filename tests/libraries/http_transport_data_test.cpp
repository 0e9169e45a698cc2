// Device data over the HTTP transport: reading by path, setting all or nothing.
#include <gmock/gmock.h>

#include <cstdlib>
#include <ostream>

#include "tests/libraries/HttpTransportFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;

constexpr const char* kPrefixes = "d=urn:wncom:device-data";

std::string Pair(const std::string& path, const std::string& value) {
    return "<set><path>" + path + "</path><value>" + value + "</value></set>";
}
std::string SetDocument(const std::string& sets) {
    return "<setData><prefixes>d=urn:wncom:device-data</prefixes>" + sets + "</setData>";
}

struct SetAnswer {
    bool done;
    std::string text;  // ASCII
};
SetAnswer SetData(RmtJobControl& object, const std::string& document, bool details) {
    WCHAR* text = nullptr;
    SetAnswer answer{object.SetData(CString(document.c_str()), details, &text, 1), {}};
    for (const WCHAR* at = text; at && *at; ++at) answer.text += static_cast<char>(*at);
    std::free(text);
    return answer;
}

class HttpTransportDataTest : public HttpTransportTest {
protected:
    // The value that a path gives, or the whole answer when it holds none.
    std::string Read(RmtJobControl& object, const char* path) {
        const CString answer = object.GetData(path, kPrefixes, nullptr, 1);
        return ElementText(answer, "value");
    }
};

TEST_F(HttpTransportDataTest, ElementsComeWithTheirNamespaceAndContent) {
    const DeviceProcess device;
    ExceptionSlot exception;
    const CString answer = MakeInSession(device.Address())
                               ->GetData("//x:tray[@id='2']/x:size", "x=urn:wncom:device-data", &exception, 1);
    EXPECT_STREQ(answer.c_str(),
                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<dataResult><size xmlns=\"urn:wncom:device-data\">SRA3</size></dataResult>\n");
    EXPECT_EQ(exception.Text(), "");
}

TEST_F(HttpTransportDataTest, WhatIsNoElementComesAsItsValue) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    EXPECT_EQ(Read(*object, "count(//d:tray)"), "3");
    EXPECT_EQ(Read(*object, "//d:tray[1]/@id"), "1");
    EXPECT_EQ(Read(*object, "//d:state/text()"), "ready");
    EXPECT_EQ(Read(*object, "/*/namespace::*[. != 'http://www.w3.org/XML/1998/namespace']"), "urn:wncom:device-data");
    EXPECT_THAT(std::string(object->GetData("/", "", nullptr, 1).c_str()), HasSubstr("<state>ready</state>"));
}

struct BadPath {
    const char* name;
    const char* path;
    const char* prefixes;
    const char* reason;
    friend void PrintTo(const BadPath& bad, std::ostream* out) { *out << bad.name; }
};
class HttpTransportBadPathTest : public HttpTransportTest, public testing::WithParamInterface<BadPath> {};

TEST_P(HttpTransportBadPathTest, GivesNothingAndAReason) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    ExceptionSlot exception;
    EXPECT_TRUE(object->GetData(GetParam().path, GetParam().prefixes, &exception, 1).empty());
    EXPECT_THAT(exception.Text(), HasSubstr(GetParam().reason));
    EXPECT_TRUE(object->GetData(GetParam().path, GetParam().prefixes, nullptr, 1).empty()) << "without a slot";
    EXPECT_FALSE(object->GetData("//*", "", nullptr, 1).empty()) << "the device goes on";
}

// The last one walks every pair of elements, over and over.
INSTANTIATE_TEST_SUITE_P(
    Paths, HttpTransportBadPathTest,
    testing::Values(BadPath{"SelectsNothing", "/deviceData", "", "The path selects nothing"},
                    BadPath{"UnboundPrefix", "/d:deviceData", "", "Undefined namespace prefix"},
                    BadPath{"NoPath", "a[", "", "The path is not usable"},
                    BadPath{"Empty", "", "", "The path is not usable"},
                    BadPath{"Markup", "</path><path>&lt;", "", "The path is not usable"},
                    BadPath{"ControlCharacter", "\x01", "", "not well-formed"},
                    BadPath{"PrefixWithoutNamespace", "//*", "d", "not of the form p=urn:x;q=urn:y"},
                    BadPath{"PrefixThatIsNoName", "//*", "1=urn:x", "not of the form p=urn:x;q=urn:y"},
                    BadPath{"PrefixBoundTwice", "//*", "d=urn:x; d=urn:y", "The prefix d is bound already"},
                    BadPath{"Endless", "//*[//*[//*[//*[//*[//*[. = 'x']]]]]]", "", "limit"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(HttpTransportDataTest, PathThatIsTooLongOrTooDeepIsRefused) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    ExceptionSlot exception;
    EXPECT_TRUE(object->GetData(std::string(5000, 'a').c_str(), "", &exception, 1).empty());
    EXPECT_EQ(exception.Text(), "The path is longer than 4096 bytes");
    EXPECT_TRUE(object->GetData(std::string(4000, '(').c_str(), "", &exception, 1).empty());
    EXPECT_THAT(exception.Text(), HasSubstr("The path is not usable"));
}

TEST_F(HttpTransportDataTest, ValueThatWasSetOutlivesARestart) {
    DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    const SetAnswer answer = SetData(
        *object, SetDocument(Pair("//d:operatorMessage", "a &lt;&amp;amp;&gt; b") + Pair("//d:tray[2]/@id", "left")),
        true);
    EXPECT_TRUE(answer.done);
    EXPECT_EQ(answer.text, "");
    device.Stop();

    const DeviceProcess again({}, device.Store());
    const Object other = MakeInSession(again.Address());
    EXPECT_EQ(Read(*other, "string(//d:operatorMessage)"), "a &lt;&amp;amp;&gt; b");
    EXPECT_EQ(Read(*other, "count(//d:tray[@id='left'])"), "1");
}

TEST_F(HttpTransportDataTest, CharactersOfEveryKindAreSetAndRead) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    SetData(*object, SetDocument(Pair("//d:operatorMessage", "\xC3\xA9\xE4\xB8\xAD")), false);
    EXPECT_EQ(Read(*object, "string(//d:operatorMessage)"), "\xE9&#20013;");
}

TEST_F(HttpTransportDataTest, OneBadValueOfSeveralLeavesAllAsTheyWereAndIsTold) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    const std::string document = SetDocument(
        Pair("//d:state", "stopped") + Pair("//d:absent", "1") + Pair("//d:tray", "1") + Pair("//d:status", "1") +
        Pair("//d:jobsAccepted", "0") + Pair("//d:counters/@readOnly", "false") + Pair("//d:state/text()", "1"));

    const SetAnswer answer = SetData(*object, document, true);

    EXPECT_FALSE(answer.done);
    for (const char* failure : {"<path>//d:absent</path>\n    <reason>The path selects 0 nodes, not one</reason>",
                                "<path>//d:tray</path>\n    <reason>The path selects 3 nodes, not one</reason>",
                                "<reason>The element holds others, not a value</reason>",
                                "<path>//d:jobsAccepted</path>\n    <reason>The value is read-only</reason>",
                                "<path>//d:counters/@readOnly</path>\n    <reason>The value is read-only</reason>",
                                "<reason>The path selects neither an element nor an attribute</reason>"}) {
        EXPECT_THAT(answer.text, HasSubstr(failure));
    }
    EXPECT_EQ(Read(*object, "string(//d:state)"), "ready");
}

TEST_F(HttpTransportDataTest, FailureDetailsComeOnlyWhenAskedForAndWhereThereIsAPlace) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    const std::string document = SetDocument(Pair("//d:absent", "1"));
    EXPECT_EQ(SetData(*object, document, false).text, "");
    EXPECT_FALSE(object->SetData(CString(document.c_str()), true, nullptr, 1));
}

TEST_F(HttpTransportDataTest, DocumentThatIsNoSetDocumentIsRefusedWithAReason) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    std::string many;
    for (int i = 0; i < 1001; ++i) many += Pair("//d:state", "1");
    const std::pair<std::string, const char*> cases[] = {
        {"", "not well-formed"},
        {"text", "not well-formed"},
        {"<setData>", "not well-formed"},
        {"<setData>&#1;</setData>", "not well-formed"},
        {"<!DOCTYPE setData [<!ENTITY a \"b\">]><setData/>", "A document type declaration is not taken"},
        {"<other/>", "The document is no setData"},
        {SetDocument(""), "The document sets no values"},
        {SetDocument("<set><path>//d:state</path></set>"), "A set element lacks its path or its value"},
        {SetDocument(many), "The document sets more than 1000 values"},
    };
    for (const auto& [document, reason] : cases) {
        const SetAnswer answer = SetData(*object, document, true);
        EXPECT_FALSE(answer.done) << reason;
        EXPECT_THAT(answer.text, HasSubstr(reason));
    }
}

TEST_F(HttpTransportDataTest, ValueOfAMegabyteIsTakenAndReadAndALongerOneRefused) {
    const DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    const std::string longest(1048576, 'a');
    EXPECT_TRUE(SetData(*object, SetDocument(Pair("//d:operatorMessage", longest)), true).done);
    EXPECT_EQ(Read(*object, "string(//d:operatorMessage)").size(), longest.size());
    EXPECT_EQ(SetData(*object, SetDocument(Pair("//d:state", longest + "a")), true).text,
              "A value is longer than 1048576 bytes");
}

TEST_F(HttpTransportDataTest, CountersFollowTheJobsAlsoAfterARestart) {
    DeviceProcess device;
    const Object object = MakeInSession(device.Address());
    object->SubmitJob(kTicket, 1);
    EXPECT_EQ(Read(*object, "string(//d:jobsAccepted)"), "1");
    device.Stop();
    const DeviceProcess again({}, device.Store());
    EXPECT_EQ(Read(*MakeInSession(again.Address()), "concat(//d:jobsAccepted, ' ', //d:jobsComplete)"), "1 0");
}

TEST_F(HttpTransportDataTest, DataBelongsToSessions) {
    const DeviceProcess device;
    const Object object = Make(device.Address());
    ExceptionSlot exception;
    EXPECT_TRUE(object->GetData("//*", "", &exception, 1).empty());
    EXPECT_EQ(exception.Text(), "The request belongs to no open session");
    EXPECT_FALSE(SetData(*object, SetDocument(Pair("//d:state", "1")), false).done);
}

TEST_F(HttpTransportDataTest, DamagedDocumentIsLeftAndTheDeviceDoesNotStart) {
    const std::string store = HomePath() + "/damaged";
    WriteWholeFile(store + "/device-data.xml", "<deviceData>");
    EXPECT_EQ(RunDevice({"--store", store}), 1);
    EXPECT_EQ(ReadWholeFile(store + "/device-data.xml"), "<deviceData>");
}

}  // namespace
}  // namespace wncom::test
