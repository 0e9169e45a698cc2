// wn data, with the real modules and a real device service.
#include <nlohmann/json.hpp>

#include "tests/support/DeviceProcess.h"
#include "tests/tools/WnFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;

constexpr const char* kPrefixes = "d=urn:wncom:device-data";

class WnDataTest : public WnTest {
protected:
    void SetUp() override { Install(); }

    WnOutcome Get(const std::string& path, const std::string& prefixes = kPrefixes) const {
        return RunWn({"--json", "data", "get", path, "--prefixes", prefixes, "--to", device.Address()});
    }
    std::string Document(const std::string& path) const {
        const WnOutcome outcome = Get(path);
        ExpectDone(outcome);
        return nlohmann::json::parse(outcome.output).at("document");
    }
    WnOutcome Set(const std::string& file) const { return RunWn({"data", "set", file, "--to", device.Address()}); }

    DeviceProcess device;
};

TEST_F(WnDataTest, ValuesOfTheSampleAreReadBack) {
    ExpectDone(Set(Sample("device-data-set.xml")));
    EXPECT_THAT(Document("string(//d:operatorMessage)"), HasSubstr("<value>Tray 2 is being filled, back at 14:00<"));
    EXPECT_THAT(Document("//d:tray[@id='2']/d:sheets"), HasSubstr(">1800</sheets>"));
}

TEST_F(WnDataTest, RefusedReadShowsTheWordsOfTheService) {
    ExpectRefusal(
        Get("//d:nothing"), 1,
        "No data for //d:nothing from " + device.Address() +
            ": The operation failed for a reason that was not given (0x80004005). The path selects nothing");
    ExpectRefusal(Get("//e:tray"), 1, "//e:tray");
}

TEST_F(WnDataTest, RefusedWriteSetsNothingAndItsReasonIsInTheLog) {
    ExpectDone(RunWn({"logging", "file", InHome("wn.log")}));
    WriteWholeFile(InHome("set.xml"),
                   "<setData><prefixes>d=urn:wncom:device-data</prefixes>"
                   "<set><path>//d:operatorMessage</path><value>new</value></set>"
                   "<set><path>//d:jobsAccepted</path><value>0</value></set></setData>");
    ExpectRefusal(Set(InHome("set.xml")), 1,
                  "The values of " + InHome("set.xml") + " were not set at " + device.Address() +
                      ": The operation failed for a reason that was not given (0x80004005). The log tells why");
    EXPECT_THAT(ReadWholeFile(InHome("wn.log")), HasSubstr("<reason>The value is read-only</reason>"));
    EXPECT_THAT(Document("count(//d:operatorMessage[.='new'])"), HasSubstr("<value>0</value>"));
}

TEST_F(WnDataTest, DocumentThatIsBrokenIsRefusedWithItsPlaceAndNeverSent) {
    WriteWholeFile(InHome("set.xml"), "<setData>\n  <set></sett>\n</setData>");
    ExpectRefusal(Set(InHome("set.xml")), 1, InHome("set.xml") + " is no XML document: line 2, column ");
    EXPECT_EQ(device.Stop(), 0);
    EXPECT_EQ(device.Log(), "");
}

}  // namespace
}  // namespace wncom::test
