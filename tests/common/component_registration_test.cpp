#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "tests/common/SampleComponent.h"
#include "tests/support/Host.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestHome.h"
#include "wncom/CPComPtr.h"

namespace wncom::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kLabel[] = "CPComPtr<>::RegisterComponent | ";

HRESULT Register(const std::string& path, bool registerModule = true) {
    return CPComPtr<ISample>::RegisterComponent(std::basic_string<WCHAR>(path.begin(), path.end()).c_str(),
                                                registerModule);
}

std::string Lowered(std::string text) {
    for (char& c : text) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    return text;
}

bool IsRegistered() {
    CLSID clsid;
    return SUCCEEDED(CLSIDFromProgID(kSampleProgIdWide, &clsid));
}

struct RegisterComponent : testing::Test {
    ~RegisterComponent() override {
        for (const char* name : {kSampleBehaviour, "WNCOM_SAMPLE_OUTPUT", "WNCOM_SAMPLE_SLEEP", "WNCOM_SAMPLE_UNTIL",
                                 "WNCOM_SAMPLE_EXIT"}) {
            SetEnvironment(name, nullptr);
        }
    }

    static std::vector<std::string> Messages(const LogCapture& log) { return log.Lines("CPWStringBuffer::"); }

    // A server of the home in a file of that name, set up with one variable of its environment.
    static std::string Server(const std::string& name, const char* variable = nullptr,
                              const std::string& value = "") {
        const std::string path = HomePath() + "/" + name;
        std::filesystem::copy_file(ProgramFolder() + "/SampleServer.exe", path);
        if (variable) SetEnvironment(variable, value.c_str());
        return path;
    }

    const std::string module = ProgramFolder() + "/SampleComponent.dll";
};

TEST_F(RegisterComponent, CallsTheModulesRegistrationAndItsReverse) {
    const LogCapture log;
    EXPECT_EQ(Register(module), S_OK);
    EXPECT_TRUE(IsRegistered());
    EXPECT_EQ(Register(module, false), S_OK);
    EXPECT_FALSE(IsRegistered());
    EXPECT_THAT(Messages(log), ElementsAre(std::string("3 ") + kLabel + module + " | Register",
                                           std::string("3 ") + kLabel + module + " | UnRegister"));
}

TEST_F(RegisterComponent, TakesAnExtensionInCapitalsForALibrary) {
    const std::string copy = HomePath() + "/SAMPLE.DLL";
    std::filesystem::copy_file(module, copy);
    EXPECT_EQ(Register(copy), S_OK);
    EXPECT_TRUE(IsRegistered());
    EXPECT_EQ(Register(copy, false), S_OK);
}

TEST_F(RegisterComponent, RefusesAPathWithoutAFile) {
    const LogCapture log;
    EXPECT_EQ(Register(HomePath() + "/absent.dll"), E_FAIL);
    EXPECT_EQ(Register(""), E_FAIL);
    EXPECT_EQ(CPComPtr<ISample>::RegisterComponent(nullptr, true), E_FAIL);
    const auto lines = Messages(log);
    ASSERT_EQ(lines.size(), 3u);
    for (const std::string& line : lines) EXPECT_THAT(line, StartsWith(std::string("3 ") + kLabel));
}

TEST_F(RegisterComponent, RefusesAPathWithoutAMultiByteForm) {
    EXPECT_EQ(CPComPtr<ISample>::RegisterComponent(OLESTR("/\u4E2D.dll"), true), E_FAIL);
}

TEST_F(RegisterComponent, DoesNothingForOtherFiles) {
    for (const char* name : {"plain.txt", "library.dll.bak", "dll"}) {
        WriteWholeFile(HomePath() + "/" + name, "");
        EXPECT_EQ(Register(HomePath() + "/" + name), S_OK) << name;
    }
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(HomePath());
    EXPECT_EQ(Register("dll"), S_OK);
    std::filesystem::current_path(before);
}

TEST_F(RegisterComponent, ReportsALibraryThatDoesNotLoad) {
    WriteWholeFile(HomePath() + "/broken.dll", "not a library");
    const LogCapture log;
    EXPECT_EQ(Register(HomePath() + "/broken.dll"), E_FAIL);
    EXPECT_THAT(Messages(log).back(), std::string("1 ") + kLabel + "LoadLibrary Failed!!!");
}

TEST_F(RegisterComponent, ReportsALibraryWithoutRegistration) {
    const LogCapture log;
    EXPECT_EQ(Register(ProgramFolder() + "/SampleBareModule.dll"), E_FAIL);
    EXPECT_THAT(Messages(log).back(), std::string("1 ") + kLabel + "GetProcAddress Failed!!!");
}

TEST_F(RegisterComponent, HandsARefusedRegistrationOn) {
    SetEnvironment(kSampleBehaviour, "refuse registration");
    const LogCapture log;
    EXPECT_EQ(Register(module), E_ACCESSDENIED);
    EXPECT_EQ(Messages(log).back(),
              std::string("2 ") + kLabel + "COM Registration Failed!!! | module=" + Lowered(module));
}

TEST_F(RegisterComponent, SurvivesARegistrationThatThrows) {
    SetEnvironment(kSampleBehaviour, "throw in registration");
    const LogCapture log;
    EXPECT_EQ(Register(module), E_FAIL);
    EXPECT_EQ(Messages(log).back(),
              std::string("1 ") + kLabel + "DLL COM Registration Threw an Exception!!! | module=" + Lowered(module));
}

TEST_F(RegisterComponent, RunsAnExecutableWithTheSwitch) {
    const std::string output = HomePath() + "/arguments";
    const std::string server = Server("Server.EXE", "WNCOM_SAMPLE_OUTPUT", output);
    EXPECT_EQ(Register(server), S_OK);
    EXPECT_EQ(ReadWholeFile(output), "/regserver\n");
    EXPECT_EQ(Register(server, false), S_OK);
    EXPECT_EQ(ReadWholeFile(output), "/unregserver\n");
}

TEST_F(RegisterComponent, RunsAnExecutableWhosePathHasSpaces) {
    const std::string output = HomePath() + "/arguments";
    EXPECT_EQ(Register(Server("a server of mine.exe", "WNCOM_SAMPLE_OUTPUT", output)), S_OK);
    EXPECT_EQ(ReadWholeFile(output), "/regserver\n");
}

TEST_F(RegisterComponent, WaitsForAnExecutableOverSeveralWaits) {
    EXPECT_EQ(Register(Server("slow.exe", "WNCOM_SAMPLE_SLEEP", "700")), S_OK);
}

TEST_F(RegisterComponent, ReportsAnExecutablesFailureCode) {
    const std::string server = Server("failing.exe", "WNCOM_SAMPLE_EXIT", "3");
    const LogCapture log;
    EXPECT_EQ(Register(server), E_FAIL);
    EXPECT_EQ(Messages(log).back(), std::string("2 ") + kLabel +
                                        "COM Registration - exited with a failure code!!! | module=\"" +
                                        Lowered(server) + "\" /regserver | 3");
}

TEST_F(RegisterComponent, SaysNothingMoreOfAnExecutableThatDoesNotStart) {
    WriteWholeFile(HomePath() + "/unstartable.exe", "");
    const LogCapture log;
    EXPECT_EQ(Register(HomePath() + "/unstartable.exe"), E_FAIL);
    EXPECT_EQ(Messages(log).size(), 1u);
}

TEST_F(RegisterComponent, GivesUpOnAnExecutableThatHangsAndLeavesItRunning) {
    const std::string end = HomePath() + "/end";
    const std::string server = Server("hanging.exe", "WNCOM_SAMPLE_UNTIL", end);
    const LogCapture log;
    EXPECT_EQ(Register(server), E_FAIL);
    EXPECT_EQ(Messages(log).back(), std::string("2 ") + kLabel + "COM Registration Hung!!! | module=\"" +
                                        Lowered(server) + "\" /regserver");
    WriteWholeFile(end, "");
    for (int i = 0; i < 1000 && std::filesystem::exists(end); ++i) Sleep(10);
    EXPECT_FALSE(std::filesystem::exists(end)) << "it no longer ran";
}

}  // namespace
}  // namespace wncom::test
