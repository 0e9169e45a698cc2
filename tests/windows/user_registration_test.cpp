// wn register for everyone and for the current user alone: what was said is what was done.
#include "tests/platform/OnWine.h"
#include "tests/windows/WindowsFixture.h"
#include "wncom/wnCOM.h"

namespace wncom::test {
namespace {

using testing::HasSubstr;

constexpr const char* kProgram = "SOFTWARE\\Classes\\QBNORVEL.WendrelParent\\CLSID";
constexpr const char* kLibrary = "SOFTWARE\\Classes\\TypeLib\\{8B2E860F-324B-4F38-B0BE-9D642317C24B}\\1.0";

class UserRegistrationTest : public WindowsTest {
protected:
    ~UserRegistrationTest() override {
        // What a failed test has left there nobody else clears away.
        for (const char* key : {"CLSID", "Interface", "TypeLib", "QBNORVEL.Wendrel", "QBNORVEL.Wendrel.1",
                                "QBNORVEL.WendrelParent", "QBNORVEL.WendrelParent.1"}) {
            if (HasFailure()) RegDeleteTreeA(HKEY_CURRENT_USER, (std::string("SOFTWARE\\Classes\\") + key).c_str());
        }
    }

    static bool Has(HKEY root) { return RegistryKeyExists(root, kProgram) && RegistryKeyExists(root, kLibrary); }
    static bool HasNothing(HKEY root) {
        return !RegistryKeyExists(root, kProgram) && !RegistryKeyExists(root, kLibrary);
    }

    const std::string m_module = Module("wnCOM.dll");
};

TEST_F(UserRegistrationTest, IsForAllUsersUnlessAsked) {
    const Outcome outcome = RunWn({"register", m_module});
    ExpectDone(outcome);
    EXPECT_EQ(outcome.output, "Registered for all users: " + m_module + "\n");
    EXPECT_TRUE(Has(HKEY_LOCAL_MACHINE));
    EXPECT_TRUE(HasNothing(HKEY_CURRENT_USER));
    ExpectDone(RunWn({"unregister", m_module}));
    EXPECT_TRUE(HasNothing(HKEY_LOCAL_MACHINE));
}

TEST_F(UserRegistrationTest, LeavesTheMachineAloneForOneUser) {
    const Outcome outcome = RunWn({"register", "--user", m_module});
    ExpectDone(outcome);
    EXPECT_EQ(outcome.output, "Registered for the current user: " + m_module + "\n");
    EXPECT_TRUE(Has(HKEY_CURRENT_USER));
    EXPECT_TRUE(HasNothing(HKEY_LOCAL_MACHINE));
    if (!OnWine()) {  // whose COM looks into the machine's classes only
        const Apartment apartment;
        EXPECT_TRUE(Create<IInternalWendrelParent>(kProgIdWendrelParent));
        CoFreeUnusedLibraries();
    }
    ExpectDone(RunWn({"unregister", "--user", m_module}));
    EXPECT_TRUE(HasNothing(HKEY_CURRENT_USER));
}

TEST_F(UserRegistrationTest, OfOneUserIsNotRemovedForAllUsers) {
    ExpectDone(RunWn({"register", m_module}));
    ExpectDone(RunWn({"register", "--user", m_module}));
    ExpectDone(RunWn({"unregister", m_module}));
    EXPECT_TRUE(HasNothing(HKEY_LOCAL_MACHINE));
    EXPECT_TRUE(Has(HKEY_CURRENT_USER));
    ExpectDone(RunWn({"unregister", "--user", m_module}));
}

}  // namespace
}  // namespace wncom::test
