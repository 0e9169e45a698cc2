// wn config: each setting as its reader takes it, and where it comes from.
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/support/Com.h"
#include "tests/tools/WnFixture.h"

namespace wncom::test {
namespace {

constexpr const char* kProduct = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Quillbeck\\QBNorvel";

nlohmann::json Config() { return nlohmann::json::parse(RunWn({"config", "--json"}).output); }

nlohmann::json Setting(const nlohmann::json& value, const char* from, const std::string& place) {
    return {{"value", value}, {"from", from}, {"place", place}};
}

std::string Place(const std::string& key, const std::string& value) {
    return std::string(kProduct) + key + ", " + (value.empty() ? "the default value" : "value " + value);
}

void SetNumber(const char* name, DWORD number) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Quillbeck\\QBNorvel\\HttpTransport", 0, nullptr, 0,
                              KEY_WRITE, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof(number));
    RegCloseKey(key);
}

using WnConfigTest = WnTest;

TEST_F(WnConfigTest, OfAFreshHomeIsItsDefaults) {
    const auto config = Config();
    EXPECT_EQ(config.at("home"), Setting(HomePath(), "environment", "variable WNCOM_HOME"));
    EXPECT_EQ(config.at("codePage").at("from"), "default");
    EXPECT_EQ(config.at("catalogue"), Setting(nullptr, "nowhere", Place("\\Logging", "pathtotransportsxml")));
    EXPECT_EQ(config.at("callTimeout"), Setting(60000, "default", Place("\\HttpTransport", "calltimeout")));
    EXPECT_EQ(config.at("portMap").at("value"), HomePath() + "/windows\\portmap.xml");
    EXPECT_EQ(config.at("capabilitiesLifetime"),
              Setting(1, "default", HomePath() + "/windows\\qbos.ini, section Cache, key CapTicket"));
    EXPECT_EQ(config.at("log:CWendrel"), Setting(nullptr, "nowhere", Place("", "Logging")));
    EXPECT_EQ(config.at("class:QBNORVEL.Wendrel.1").at("from"), "nowhere");
    EXPECT_EQ(config.at("outOfProcess").at("value"), nlohmann::json::array());
}

TEST_F(WnConfigTest, TellsWhereEachConfiguredValueIs) {
    Install();
    ExpectDone(RunWn({"portmap", "file", InHome("map.xml")}));
    SetRegistryValue("SOFTWARE\\Quillbeck\\QBNorvel\\XMLCache", "cachefile", InHome("cache.db"));
    SetRegistryValue("SOFTWARE\\Quillbeck\\QBNorvel\\ForceToOutOfProc", "QBNORVEL.PortMap", "yes");
    SetRegistryValue("SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage", "ACP", "65001");
    SetNumber("calltimeout", 7);
    SetNumber("connecttimeout", 0);  // nothing that the transport takes
    WriteWholeFile(InHome("windows/qbos.ini"), "[Cache]\r\nCapTicket=1\r\n");
    setenv("WF_DESTINATION", "books", 1);

    const auto config = Config();
    EXPECT_EQ(config.at("codePage").at("value"), 65001);
    EXPECT_EQ(config.at("codePage").at("from"), "registry");
    EXPECT_EQ(config.at("libraries"), Setting(ProgramFolder() + "/", "registry", Place("\\Logging", "builddllpath")));
    EXPECT_EQ(config.at("portMap"), Setting(InHome("map.xml"), "registry", Place("\\PortMap", "portmapfile")));
    EXPECT_EQ(config.at("cacheDatabase"), Setting(InHome("cache.db"), "registry", Place("\\XMLCache", "cachefile")));
    EXPECT_EQ(config.at("callTimeout").at("value"), 7);
    EXPECT_EQ(config.at("callTimeout").at("from"), "registry");
    EXPECT_EQ(config.at("connectTimeout").at("value"), 5000);
    EXPECT_EQ(config.at("connectTimeout").at("from"), "default");
    EXPECT_EQ(config.at("capabilitiesLifetime").at("from"), "initialisation file");
    EXPECT_EQ(config.at("workflowId"), Setting("books", "environment", "variable WF_DESTINATION"));
    EXPECT_EQ(config.at("outOfProcess").at("value"), nlohmann::json::array({"QBNORVEL.PortMap"}));
    EXPECT_EQ(config.at("class:QBNORVEL.Wendrel.1").at("value"), ProgramFolder() + "/wnCOM.dll");
}

TEST_F(WnConfigTest, FollowsTheOrderInWhichAComponentLooksForItsLog) {
    SetRegistryValue("SOFTWARE\\Quillbeck\\QBNorvel", "Logging", "debug,1");
    EXPECT_EQ(Config().at("log:CWendrel"), Setting("debug,1", "registry", Place("", "Logging")));

    SetRegistryValue("SOFTWARE\\Quillbeck\\QBNorvel\\Logging", "CWendrel", "debug,2");
    auto config = Config();
    EXPECT_EQ(config.at("log:CWendrel"), Setting("debug,2", "registry", Place("\\Logging", "CWendrel")));
    EXPECT_EQ(config.at("log:CWendrelParent"), Setting(nullptr, "nowhere", Place("\\Logging", "")));

    SetRegistryValue("SOFTWARE\\Quillbeck\\QBNorvel\\Logging", nullptr, "debug,3");
    config = Config();
    EXPECT_EQ(config.at("log:CWendrel").at("value"), "debug,2");
    EXPECT_EQ(config.at("log:wnHttpTransport"), Setting("debug,3", "registry", Place("\\Logging", "")));
}

}  // namespace
}  // namespace wncom::test
