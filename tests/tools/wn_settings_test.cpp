// What the commands of wn leave in the registry and in the port map's file.
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "tests/support/Com.h"
#include "tests/tools/WnFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kLogging = "SOFTWARE\\Quillbeck\\QBNorvel\\Logging";

class WnSettingsTest : public WnTest {
protected:
    static std::string Setting(const char* name) { return RegistryValue(HKEY_LOCAL_MACHINE, kLogging, name); }
};

TEST_F(WnSettingsTest, RegistersAndUnregistersModules) {
    ExpectDone(RunWn({"register", ProgramFolder() + "/wnCOM.dll"}));
    EXPECT_TRUE(RegistryKeyExists(HKEY_CLASSES_ROOT, "QBNORVEL.WendrelParent\\CLSID"));
    ExpectDone(RunWn({"unregister", ProgramFolder() + "/wnCOM.dll"}));
    EXPECT_FALSE(RegistryKeyExists(HKEY_CLASSES_ROOT, "QBNORVEL.WendrelParent"));
}

TEST_F(WnSettingsTest, TellsWhichModulesWereRegisteredBeforeAFailure) {
    const std::string module = ProgramFolder() + "/wnCOM.dll";
    const WnOutcome outcome = RunWn({"register", module, InHome("none.dll"), "--json"});
    ExpectRefusal(outcome, 1, "none.dll");
    EXPECT_EQ(nlohmann::json::parse(outcome.output).at("modules"), nlohmann::json::array({module}));
}

TEST_F(WnSettingsTest, WritesTheFormsOfALoggingConfiguration) {
    ExpectDone(RunWn({"logging", "file", InHome("a.log")}));
    EXPECT_EQ(Setting(nullptr), "file," + InHome("a.log") + ",3");
    ExpectDone(RunWn({"logging", "file", InHome("b.log"), "--limit", "500", "--level", "5", "--for", "CWendrel"}));
    EXPECT_EQ(Setting("CWendrel"), "file," + InHome("b.log") + ",500,5");
    ExpectDone(RunWn({"logging", "debug", "--level", "2", "--for", "JobControlFactory"}));
    EXPECT_EQ(Setting("JobControlFactory"), "debug,2");
    ExpectDone(RunWn({"logging", "off", "--for", "CWendrel"}));
    EXPECT_EQ(Setting("CWendrel"), "(absent)");

    const auto shown = nlohmann::json::parse(RunWn({"logging", "show", "--json"}).output);
    EXPECT_EQ(shown.at("default"), "file," + InHome("a.log") + ",3");
    EXPECT_EQ(shown.at("CWendrel"), nullptr);
    EXPECT_EQ(shown.at("JobControlFactory"), "debug,2");
}

TEST_F(WnSettingsTest, WritesALogPathInTheNarrowCodePage) {
    ExpectDone(RunWn({"logging", "file",
                      InHome("gr\xC3\xB6\xC3\x9F"
                             "e.log")}));
    EXPECT_EQ(Setting(nullptr), "file," +
                                    InHome("gr\xF6\xDF"
                                           "e.log") +
                                    ",3");
    EXPECT_THAT(RunWn({"logging", "show"}).output, HasSubstr("gr\xC3\xB6\xC3\x9F"
                                                             "e.log"));
}

TEST_F(WnSettingsTest, EndsDirectoriesWithTheirSeparator) {
    std::filesystem::create_directory(InHome("lib"));
    ExpectDone(RunWn({"directories", "--catalogue", HomePath(), "--libraries", InHome("lib/")}));
    EXPECT_EQ(Setting("pathtotransportsxml"), HomePath() + "/");
    EXPECT_EQ(Setting("builddllpath"), InHome("lib/"));
}

TEST_F(WnSettingsTest, ChangesNoDirectoryWhenOneOfThemIsAbsent) {
    EXPECT_EQ(RunWn({"directories", "--catalogue", HomePath(), "--libraries", InHome("none")}).status, 1);
    EXPECT_EQ(Setting("pathtotransportsxml"), "(absent)");
}

class WnPortMapTest : public WnTest {
protected:
    void SetUp() override { ExpectDone(RunWn({"portmap", "file", m_path})); }
    std::string File() const { return ReadWholeFile(m_path); }
    void Write(const std::string& text) const { WriteWholeFile(m_path, text); }

    const std::string m_path = InHome("karte-\xC3\xB6.xml");
};

TEST_F(WnPortMapTest, AddsChangesListsAndRemovesServices) {
    ExpectDone(RunWn({"portmap", "add", "http://a/", "--device", "Press \"1\" <&>", "--name", "Jobs"}));
    ExpectDone(RunWn({"portmap", "add", "http://b/", "--device", "Press \"1\" <&>"}));
    ExpectDone(RunWn({"portmap", "add", "http://a/", "--device", "another", "--transport", "serial"}));
    const auto devices = nlohmann::json::parse(RunWn({"portmap", "list", "--json"}).output).at("devices");
    EXPECT_EQ(devices, nlohmann::json::parse(R"([{"name": "Press \"1\" <&>", "services": [
        {"name": "Jobs", "address": "http://a/", "transport": "serial"},
        {"name": "", "address": "http://b/", "transport": "network"}]}])"));
    ExpectDone(RunWn({"portmap", "remove", "http://a/"}));
    EXPECT_THAT(File(), Not(HasSubstr("http://a/")));
    EXPECT_THAT(File(), HasSubstr("http://b/"));
}

TEST_F(WnPortMapTest, KeepsTheCommentsOfThePersonWhoWroteTheFile) {
    Write("<!-- hall --><portmap><device name=\"A\"><!-- left --><service address=\"x\"/></device></portmap>");
    ExpectDone(RunWn({"portmap", "add", "y", "--device", "A"}));
    EXPECT_THAT(File(), HasSubstr("<!-- hall -->"));
    EXPECT_THAT(File(), HasSubstr("<!-- left -->"));
}

TEST_F(WnPortMapTest, DeclaresTheEncodingThatItWrites) {
    Write("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><portmap><device name=\"\xF6\"/></portmap>");
    ExpectDone(RunWn({"portmap", "add", "y", "--device", "\xC3\xB6"}));
    EXPECT_THAT(File(), HasSubstr("encoding=\"UTF-8\""));
    const auto devices = nlohmann::json::parse(RunWn({"portmap", "list", "--json"}).output).at("devices");
    ASSERT_EQ(devices.size(), 1U);
    EXPECT_EQ(devices[0].at("name"), "\xC3\xB6");
}

TEST_F(WnPortMapTest, LeavesADamagedFileAsItIs) {
    for (const char* damaged : {"", "<portmap><device", "<other/>", "<portmap><device><servise/></device></portmap>",
                                "<portmap>\xFF</portmap>"}) {
        Write(damaged);
        ExpectRefusal(RunWn({"portmap", "add", "x"}), 1, m_path + " is damaged");
        ExpectRefusal(RunWn({"portmap", "list"}), 1, "Mend it with a text editor first");
        EXPECT_EQ(File(), damaged);
    }
}

TEST_F(WnPortMapTest, LeavesTheFileAsItIsWhenANewOneCannotBeWritten) {
    Write("<portmap/>");
    std::filesystem::create_directory(m_path + ".new");
    ExpectRefusal(RunWn({"portmap", "add", "x"}), 1, "The port map is as it was");
    EXPECT_EQ(File(), "<portmap/>");
}

TEST_F(WnPortMapTest, LosesNoServiceWhenSeveralAreAddedAtOnce) {
    std::vector<std::unique_ptr<WnProcess>> running;
    for (int i = 0; i < 8; ++i) {
        running.push_back(
            std::make_unique<WnProcess>(std::vector<std::string>{"portmap", "add", "at-" + std::to_string(i)}));
    }
    for (const auto& wn : running) ExpectDone(wn->Wait());
    for (int i = 0; i < 8; ++i) EXPECT_THAT(File(), HasSubstr("\"at-" + std::to_string(i) + "\""));
}

}  // namespace
}  // namespace wncom::test
