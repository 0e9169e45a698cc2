#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/common/SampleComponent.h"
#include "tests/support/Host.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestHome.h"
#include "wncom/CPComPtr.h"

namespace wncom::test {
namespace {

const std::string kLabel = "CPComPtr<>::RegisterComponent | ";

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
    EXPECT_EQ(Messages(log), (std::vector<std::string>{"3 " + kLabel + module + " | Register",
                                                       "3 " + kLabel + module + " | UnRegister"}));
}

TEST_F(RegisterComponent, TakesAnExtensionInCapitalsForALibrary) {
    const std::string copy = HomePath() + "/SAMPLE.DLL";
    std::filesystem::copy_file(module, copy);
    EXPECT_EQ(Register(copy), S_OK);
    EXPECT_TRUE(IsRegistered());
    EXPECT_EQ(Register(copy, false), S_OK);
}

TEST_F(RegisterComponent, RefusesAPathWithoutAFileInSilence) {
    const LogCapture log;
    EXPECT_EQ(Register(HomePath() + "/absent.dll"), E_FAIL);
    EXPECT_EQ(Register(""), E_FAIL);
    EXPECT_EQ(CPComPtr<ISample>::RegisterComponent(nullptr, true), E_FAIL);
    EXPECT_EQ(CPComPtr<ISample>::RegisterComponent(OLESTR("/\u4E2D.dll"), true), E_FAIL);
    for (const std::string& line : Messages(log)) {
        EXPECT_TRUE(line.starts_with("3 " + kLabel) || line.starts_with("1 Assertion failed: mbstrRequired")) << line;
    }
}

TEST_F(RegisterComponent, DoesNothingForOtherFiles) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(HomePath());
    for (const char* name : {"plain.txt", "library.dll.bak", "dll"}) {
        WriteWholeFile(HomePath() + "/" + name, "");
        EXPECT_EQ(Register(name), S_OK) << name;
    }
    std::filesystem::current_path(before);
}

TEST_F(RegisterComponent, SaysWhyALibraryCannotBeRegistered) {
    const std::string broken = HomePath() + "/broken.dll";
    WriteWholeFile(broken, "not a library");
    const struct {
        std::string path;
        const char* behaviour;
        HRESULT status;
        std::string line;
    } cases[] = {
        {broken, "", E_FAIL, "1 " + kLabel + "LoadLibrary Failed!!!"},
        {ProgramFolder() + "/SampleBareModule.dll", "", E_FAIL, "1 " + kLabel + "GetProcAddress Failed!!!"},
        {module, "refuse registration", E_ACCESSDENIED,
         "2 " + kLabel + "COM Registration Failed!!! | module=" + Lowered(module)},
        {module, "throw in registration", E_FAIL,
         "1 " + kLabel + "DLL COM Registration Threw an Exception!!! | module=" + Lowered(module)},
    };
    for (const auto& given : cases) {
        SetEnvironment(kSampleBehaviour, given.behaviour);
        const LogCapture log;
        EXPECT_EQ(Register(given.path), given.status) << given.line;
        EXPECT_EQ(Messages(log).back(), given.line);
    }
}

TEST_F(RegisterComponent, RunsAnExecutableWithTheSwitch) {
    const std::string output = HomePath() + "/arguments";
    const std::string server = Server("a Server of mine.EXE", "WNCOM_SAMPLE_OUTPUT", output);
    EXPECT_EQ(Register(server), S_OK);
    EXPECT_EQ(ReadWholeFile(output), "/regserver\n");
    EXPECT_EQ(Register(server, false), S_OK);
    EXPECT_EQ(ReadWholeFile(output), "/unregserver\n");
}

TEST_F(RegisterComponent, WaitsForAnExecutableAndReportsItsFailureCode) {
    EXPECT_EQ(Register(Server("slow.exe", "WNCOM_SAMPLE_SLEEP", "700")), S_OK);
    SetEnvironment("WNCOM_SAMPLE_SLEEP", nullptr);
    const std::string server = Server("failing.exe", "WNCOM_SAMPLE_EXIT", "3");
    const LogCapture log;
    EXPECT_EQ(Register(server), E_FAIL);
    EXPECT_EQ(Messages(log).back(), "2 " + kLabel + "COM Registration - exited with a failure code!!! | module=\"" +
                                        Lowered(server) + "\" /regserver | 3");
    WriteWholeFile(HomePath() + "/unstartable.exe", "");
    const std::size_t before = Messages(log).size();
    EXPECT_EQ(Register(HomePath() + "/unstartable.exe"), E_FAIL);
    EXPECT_EQ(Messages(log).size(), before + 1) << "nothing more of what does not start";
}

TEST_F(RegisterComponent, GivesUpOnAnExecutableThatHangsAndLeavesItRunning) {
    const std::string end = HomePath() + "/end";
    const std::string server = Server("hanging.exe", "WNCOM_SAMPLE_UNTIL", end);
    const LogCapture log;
    EXPECT_EQ(Register(server), E_FAIL);
    EXPECT_EQ(Messages(log).back(),
              "2 " + kLabel + "COM Registration Hung!!! | module=\"" + Lowered(server) + "\" /regserver");
    WriteWholeFile(end, "");
    for (int i = 0; i < 1000 && std::filesystem::exists(end); ++i) Sleep(10);
    EXPECT_FALSE(std::filesystem::exists(end)) << "it no longer ran";
}

}  // namespace
}  // namespace wncom::test
