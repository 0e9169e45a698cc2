// wn as a Windows program: its wide command line, its paths, and a whole day's work with a service.
#include <nlohmann/json.hpp>

#include "tests/windows/WindowsFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class WnProgramTest : public WindowsTest {
protected:
    static void Install() {
        ExpectDone(RunWn({"register", Module("wnCOM.dll"), Module("wnComponents.dll")}));
        SetDirectories(BinFolder(kOwnBits), kOwnBits);
        ExpectDone(RunWn({"portmap", "file", HomePath() + "\\portmap.xml"}));
    }
    // Before anything was sent or written.
    static void ExpectRefusedInput(const Outcome& outcome, const std::string& text) {
        EXPECT_EQ(outcome.status, 2U);
        EXPECT_NE(outcome.error.find(text), std::string::npos) << outcome.error;
    }
};

TEST_F(WnProgramTest, SubmitsReadsAndSubscribes) {
    Install();
    WriteWholeFile(HomePath() + "\\ticket.xml",
                   "<intentTicket><jobName>Gr\xC3\xB6\xC3\x9F\x65</jobName></intentTicket>");
    const auto submitted =
        RunWn({"--json", "submit", HomePath() + "\\ticket.xml", "--to", "sample://press", "--id", "press"});
    ExpectDone(submitted);
    EXPECT_EQ(nlohmann::json::parse(submitted.output).at("jobAddress"), "sample://press/jobs/1");
    const auto capabilities = RunWn({"capabilities", "--to", "sample://press"});
    EXPECT_EQ(capabilities.error, "source            service\n");
    EXPECT_TRUE(capabilities.output.ends_with("</capabilities>\n")) << capabilities.output;
    const auto events = RunWn({"events", "list", "--to", "sample://press"});
    ExpectDone(events);
    EXPECT_NE(events.output, "");
}

TEST_F(WnProgramTest, TakesCharactersOfItsCommandLineWhole) {
    const std::string file = HomePath() + "\\gr\xC3\xB6\xC3\x9F\x65.xml";
    ExpectDone(RunWn({"portmap", "file", file}));
    ExpectDone(RunWn({"portmap", "add", "sample://press", "--device", "\xE6\x97\xA5\xE6\x9C\xAC"}));
    const auto list = nlohmann::json::parse(RunWn({"portmap", "list", "--json"}).output);
    EXPECT_EQ(list.at("file"), file);
    EXPECT_EQ(list.at("devices")[0].at("name"), "\xE6\x97\xA5\xE6\x9C\xAC");
    ExpectRefusedInput(RunWn({"logging", "file", HomePath() + "\\\xE6\x97\xA5.log"}),
                       "\\\xE6\x97\xA5.log has a character");
}

TEST_F(WnProgramTest, EndsDirectoriesWithABackslash) {
    WriteWholeFile(HomePath() + "\\Transports.xml",
                   "<transports><networkmapping>sample</networkmapping><path>.</path><transportdlls><jobcontrol><dll>"
                   "<type>sample</type><name>Transports.xml</name></dll></jobcontrol></transportdlls></transports>");
    ExpectDone(RunWn({"directories", "--catalogue", HomePath(), "--libraries", HomePath() + "/."}));
    EXPECT_EQ(Setting("pathtotransportsxml", kOwnBits), HomePath() + "\\");
    EXPECT_THAT(Setting("builddllpath", kOwnBits), testing::EndsWith("\\"));
}

TEST_F(WnProgramTest, SaysThatItHasNoHttp) {
    Install();
    WriteWholeFile(HomePath() + "\\ticket.xml", "<intentTicket/>");
    const auto submission = RunWn(
        {"submit", HomePath() + "\\ticket.xml", "--to", "sample://press", "--data", HomePath() + "\\ticket.xml"});
    ExpectRefusedInput(submission, "built without an HTTP library");
    EXPECT_EQ(submission.output, "");  // and no job was made
    ExpectRefusedInput(RunWn({"events", "watch", "--to", "sample://press"}), "built without an HTTP library");
}

TEST_F(WnProgramTest, TellsWhatAModuleLacks) {
    WriteWholeFile(HomePath() + "\\text.dll", "no module");
    ExpectRefusal(RunWn({"register", HomePath() + "\\text.dll"}), "Cannot load");
    EXPECT_THAT(RunWn({"register", HomePath() + "\\text.dll"}).error, Not(HasSubstr("%1")));
    ExpectRefusedInput(RunWn({"register", Module("wnSampleTransport.dll")}), "is not a component module");
}

}  // namespace
}  // namespace wncom::test
