#include <gtest/gtest.h>

#include <string>

#include "common/OpenKey.h"
#include "tests/common/SampleComponent.h"
#include "tests/support/Host.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestHome.h"
#include "wncom/CPComPtr.h"

namespace wncom::test {
namespace {

constexpr char kForceKey[] = "SOFTWARE\\Quillbeck\\QBNorvel\\ForceToOutOfProc";

using Lines = std::vector<std::string>;

// The lines of every creation up to the first look-up of its class.
Lines Begun(const Lines& rest) {
    Lines lines = {"5 PlatformServices::CreateInstance() Entering", "1 CI 1", "1 CI 2", "1 CI 3"};
    lines.insert(lines.end(), rest.begin(), rest.end());
    return lines;
}

struct CreateComponent : testing::Test {
    CreateComponent() : modulePath(ProgramFolder() + "/SampleComponent.dll") { CoInitialize(nullptr); }
    ~CreateComponent() override {
        SetEnvironment(kSampleBehaviour, nullptr);
        component.Release();
        CoUninitialize();
        RegDeleteTreeA(HKEY_LOCAL_MACHINE, kForceKey);
        CPComPtr<ISample>::RegisterComponent(module.c_str(), false);
    }

    void RegisterSample() { ASSERT_EQ(CPComPtr<ISample>::RegisterComponent(module.c_str(), true), S_OK); }
    static Lines Messages(const LogCapture& log) { return log.Lines("CPWStringBuffer::"); }

    const std::string modulePath;
    const std::basic_string<WCHAR> module{modulePath.begin(), modulePath.end()};
    CPComPtr<ISample> component;
};

TEST_F(CreateComponent, FailsForAnUnknownProgIdWithoutAModule) {
    const LogCapture log;
    EXPECT_EQ(component.CreateInstance(kSampleProgIdWide), CO_E_CLASSSTRING);
    EXPECT_FALSE(component);
    EXPECT_EQ(Messages(log), (Begun({"1 PlatformServices::CreateInstance() unable to resolve CLSID",
                                     "1 PlatformServices::CreateInstance() returning FAIL."})));
    EXPECT_TRUE(FAILED(component.CreateInstance(nullptr)));
    EXPECT_TRUE(FAILED(component.CreateInstance(OLESTR(""))));
}

TEST_F(CreateComponent, RegistersTheModuleOfAnUnknownProgId) {
    const LogCapture log;
    EXPECT_EQ(component.CreateInstance(kSampleProgIdWide, module.c_str()), S_OK);
    ASSERT_TRUE(component);
    EXPECT_EQ(component->References(), 1);
    EXPECT_EQ(Messages(log),
              (Begun({"2 PlatformServices::CreateInstance() CLSIDFromProgID failed",
                      "3 CPComPtr<>::RegisterComponent | " + modulePath + " | Register", "1 CI 4 ret: -- 00000000",
                      "8 PlatformServices::CreateInstance() CLSIDFromProgID succeeded",
                      "8 PlatformServices::CreateInstance() just created temp",
                      "8 PlatformServices::CreateInstance() could not find forcekey",
                      "8 PlatformServices::CreateInstance() returning SUCCESS."})));
}

TEST_F(CreateComponent, FailsWhenTheModuleDoesNotKnowTheProgId) {
    const LogCapture log;
    EXPECT_EQ(component.CreateInstance(OLESTR("WncomTest.Absent"), module.c_str()), CO_E_CLASSSTRING);
    EXPECT_TRUE(ContainsInOrder(
        Messages(log), {"1 CI 4 ret: -- 800401f3", "1 PlatformServices::CreateInstance() unable to resolve CLSID",
                        "1 PlatformServices::CreateInstance() returning FAIL."}));
}

TEST_F(CreateComponent, ReleasesWhatItHeldFirst) {
    RegisterSample();
    ASSERT_EQ(component.CreateInstance(kSampleProgIdWide), S_OK);
    ASSERT_EQ(component.CreateInstance(kSampleProgIdWide), S_OK);
    EXPECT_EQ(component->References(), 1);
    CPComPtr<ISample> other = component;
    EXPECT_TRUE(FAILED(component.CreateInstance(OLESTR("WncomTest.Absent"))));
    EXPECT_FALSE(component);
    EXPECT_EQ(other->References(), 1);
}

TEST_F(CreateComponent, HandsTheComponentsRefusalOn) {
    RegisterSample();
    SetEnvironment(kSampleBehaviour, "refuse creation");
    EXPECT_EQ(component.CreateInstance(kSampleProgIdWide), E_ACCESSDENIED);
    EXPECT_FALSE(component);
}

TEST_F(CreateComponent, FailsWithoutComOnTheThread) {
    RegisterSample();
    CoUninitialize();
    EXPECT_EQ(component.CreateInstance(kSampleProgIdWide), CO_E_NOTINITIALIZED);
    CoInitialize(nullptr);
}

using namespace std::string_literals;

// The sample has no process of its own, so forcing it into one fails; the log tells the two ways apart besides.
TEST_F(CreateComponent, IsForcedIntoAProcessByAFittingTextOfItsName) {
    RegisterSample();
    const struct {
        const char* name;  // null: the key's default value
        DWORD type;
        std::string data;
        bool forced;
    } cases[] = {{kSampleProgId, REG_SZ, "yes\0"s, true},
                 {kSampleProgId, REG_SZ, "\0"s, true},
                 {kSampleProgId, REG_EXPAND_SZ, "yes\0"s, true},
                 {kSampleProgId, REG_SZ, std::string(259, 'x') + '\0', true},
                 {kSampleProgId, REG_SZ, std::string(260, 'x') + '\0', false},
                 {kSampleProgId, REG_SZ, "yes", false},
                 {kSampleProgId, REG_SZ, "", false},
                 {kSampleProgId, REG_DWORD, "\1\0\0\0"s, false},
                 {kSampleProgId, REG_BINARY, "yes\0"s, false},
                 {"WncomTest.Other", REG_SZ, "yes\0"s, false},
                 {nullptr, REG_SZ, "yes\0"s, false}};
    for (const auto& given : cases) {
        SCOPED_TRACE(given.data);
        RegDeleteTreeA(HKEY_LOCAL_MACHINE, kForceKey);
        OpenKey key;
        ASSERT_EQ(key.Create(HKEY_LOCAL_MACHINE, kForceKey), ERROR_SUCCESS);
        // Windows counts a terminator in that follows a text's counted bytes.
        const std::string bytes = given.data + "x";
        ASSERT_EQ(RegSetValueExA(key.get(), given.name, 0, given.type, reinterpret_cast<const BYTE*>(bytes.data()),
                                 static_cast<DWORD>(given.data.size())),
                  ERROR_SUCCESS);
        const LogCapture log;
        EXPECT_EQ(SUCCEEDED(component.CreateInstance(kSampleProgIdWide)), !given.forced);
        const std::string label = "8 PlatformServices::CreateInstance() ";
        EXPECT_TRUE(ContainsInOrder(Messages(log), {label + "found forcekey",
                                                    label + (given.forced ? "found string value in forcekey"
                                                                          : "string value in forcekey not found")}));
    }
}

}  // namespace
}  // namespace wncom::test
