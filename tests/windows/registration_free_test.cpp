// The sample client whose manifest stands in for a registration.
#include "tests/windows/WindowsFixture.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;

using RegistrationFreeTest = WindowsTest;

TEST_F(RegistrationFreeTest, ClientSubmitsWithNothingRegistered) {
    SetDirectories(BinFolder(kOwnBits), kOwnBits);
    ASSERT_FALSE(RegistryKeyExists(HKEY_CLASSES_ROOT, "QBNORVEL.WendrelParent"));
    ASSERT_FALSE(RegistryKeyExists(HKEY_CLASSES_ROOT, "QBNORVEL.PortMap"));
    const Outcome outcome = RunProgram("wnRegistrationFreeClient.exe", {"sample://press"});
    ExpectDone(outcome);
    EXPECT_THAT(outcome.output, HasSubstr("the job is: sample://press/jobs/1\n"));
    EXPECT_EQ(RunProgram("wnSampleClient.exe", {"sample://press"}).status, 1U);
    EXPECT_FALSE(RegistryKeyExists(HKEY_CLASSES_ROOT, "QBNORVEL.WendrelParent"));
}

// Each class that the module registers, and no other, is in its manifest.
void ExpectManifestOf(const std::string& module) {
    const std::string path = ProgramFolder() + "\\" + module + ".dll";
    const std::string manifest = ReadWholeFile(ProgramFolder() + "\\" + module + ".Classes.manifest");
    ASSERT_EQ(RunWn({"register", path}).status, 0U);
    std::size_t classes = 0;
    char name[256];
    for (DWORD index = 0; RegEnumKeyA(HKEY_CLASSES_ROOT, index, name, sizeof(name)) == ERROR_SUCCESS; ++index) {
        const std::string program = name;
        if (!program.starts_with("QBNORVEL.")) continue;
        const std::string id = RegistryValue(HKEY_CLASSES_ROOT, program + "\\CLSID", nullptr);
        const bool versioned = program.ends_with(".1");
        EXPECT_THAT(manifest, HasSubstr(versioned ? "clsid=\"" + id + "\" progid=\"" + program + "\""
                                                  : "<progid>" + program + "</progid>"));
        if (versioned) ++classes;
    }
    std::size_t listed = 0;
    for (std::size_t at = 0; (at = manifest.find("<comClass ", at)) != std::string::npos; ++at) ++listed;
    EXPECT_GT(classes, 0U);
    EXPECT_EQ(listed, classes);
    EXPECT_EQ(RunWn({"unregister", path}).status, 0U);
}

TEST_F(RegistrationFreeTest, ManifestsSayWhatRegistrationSays) {
    ExpectManifestOf("wnCOM");
    ExpectManifestOf("wnComponents");
}

}  // namespace
}  // namespace wncom::test
