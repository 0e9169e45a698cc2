#include <gmock/gmock.h>

#include <cstdlib>
#include <ostream>
#include <string>

#include "tests/common/SampleComponent.h"
#include "tests/support/Host.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestHome.h"
#include "wncom/CPComPtr.h"

namespace wncom::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

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
    EXPECT_THAT(Messages(log), ElementsAreArray(Begun({"1 PlatformServices::CreateInstance() unable to resolve CLSID",
                                                       "1 PlatformServices::CreateInstance() returning FAIL."})));
    EXPECT_TRUE(FAILED(component.CreateInstance(nullptr)));
    EXPECT_TRUE(FAILED(component.CreateInstance(OLESTR(""))));
}

TEST_F(CreateComponent, RegistersTheModuleOfAnUnknownProgId) {
    const LogCapture log;
    EXPECT_EQ(component.CreateInstance(kSampleProgIdWide, module.c_str()), S_OK);
    ASSERT_TRUE(component);
    EXPECT_EQ(component->References(), 1);
    EXPECT_THAT(Messages(log),
                ElementsAreArray(Begun({"2 PlatformServices::CreateInstance() CLSIDFromProgID failed",
                                        "3 CPComPtr<>::RegisterComponent | " + modulePath + " | Register",
                                        "1 CI 4 ret: -- 00000000",
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

TEST_F(CreateComponent, SurvivesAComponentThatThrows) {
    if (!kExceptionsPassTheSystem) GTEST_SKIP() << "the exception would end at the system's frames";
    RegisterSample();
    SetEnvironment(kSampleBehaviour, "throw in creation");
    EXPECT_TRUE(FAILED(component.CreateInstance(kSampleProgIdWide)));
    EXPECT_FALSE(component);
}

TEST_F(CreateComponent, FailsWithoutComOnTheThread) {
    RegisterSample();
    CoUninitialize();
    EXPECT_EQ(component.CreateInstance(kSampleProgIdWide), CO_E_NOTINITIALIZED);
    CoInitialize(nullptr);
}

struct ForcedCase {
    const char* name;
    const char* valueName;  // null: the key's default value
    DWORD type;
    std::string data;
    bool forced;

    friend void PrintTo(const ForcedCase& given, std::ostream* out) { *out << given.name; }
};
struct ForcedComponent : CreateComponent, testing::WithParamInterface<ForcedCase> {};

// The sample has no process of its own, so forcing it into one fails; the log tells the two ways apart besides.
TEST_P(ForcedComponent, IsForcedByAFittingText) {
    RegisterSample();
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, kForceKey, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                              nullptr, &key, nullptr),
              ERROR_SUCCESS);
    const ForcedCase& given = GetParam();
    // Windows counts a terminator in that follows a text's counted bytes.
    const std::string bytes = given.data + "x";
    ASSERT_EQ(RegSetValueExA(key, given.valueName, 0, given.type, reinterpret_cast<const BYTE*>(bytes.data()),
                             static_cast<DWORD>(given.data.size())),
              ERROR_SUCCESS);
    RegCloseKey(key);

    const LogCapture log;
    EXPECT_EQ(SUCCEEDED(component.CreateInstance(kSampleProgIdWide)), !given.forced);
    const std::string label = "8 PlatformServices::CreateInstance() ";
    EXPECT_TRUE(ContainsInOrder(
        Messages(log), {label + "found forcekey", label + (given.forced ? "found string value in forcekey"
                                                                        : "string value in forcekey not found")}));
}

using namespace std::string_literals;
INSTANTIATE_TEST_SUITE_P(
    Values, ForcedComponent,
    testing::Values(ForcedCase{"Text", kSampleProgId, REG_SZ, "yes\0"s, true},
                    ForcedCase{"EmptyText", kSampleProgId, REG_SZ, "\0"s, true},
                    ForcedCase{"ExpandableText", kSampleProgId, REG_EXPAND_SZ, "yes\0"s, true},
                    ForcedCase{"LongestText", kSampleProgId, REG_SZ, std::string(259, 'x') + '\0', true},
                    ForcedCase{"TooLongText", kSampleProgId, REG_SZ, std::string(260, 'x') + '\0', false},
                    ForcedCase{"UnterminatedText", kSampleProgId, REG_SZ, "yes", false},
                    ForcedCase{"NoData", kSampleProgId, REG_SZ, "", false},
                    ForcedCase{"Number", kSampleProgId, REG_DWORD, "\1\0\0\0"s, false},
                    ForcedCase{"Bytes", kSampleProgId, REG_BINARY, "yes\0"s, false},
                    ForcedCase{"OtherName", "WncomTest.Other", REG_SZ, "yes\0"s, false},
                    ForcedCase{"DefaultValue", nullptr, REG_SZ, "yes\0"s, false}),
    [](const testing::TestParamInfo<ForcedCase>& given) { return given.param.name; });

}  // namespace
}  // namespace wncom::test
