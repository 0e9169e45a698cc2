// Programs and libraries of two bitnesses: wn configures the view of the registry that the library reads.
#include <nlohmann/json.hpp>

#include "tests/windows/WindowsFixture.h"

namespace wncom::test {
namespace {

constexpr int kOtherBits = 96 - kOwnBits;

class RegistryViewsTest : public WindowsTest {
protected:
    void SetUp() override {
        if (BinFolder(kOtherBits).empty()) {
            GTEST_SKIP() << "no build of the other bitness in " << WNCOM_OTHER_BUILD << ", or none that runs here";
        }
        m_ready = true;
    }
    ~RegistryViewsTest() override {
        for (const int bits : {32, 64}) {
            if (m_ready)
                RunWn({"unregister", Module("wnCOM.dll", bits), Module("wnComponents.dll", bits)}, BinFolder(bits));
        }
    }

    static void Register(int bits) {
        ExpectDone(RunWn({"register", Module("wnCOM.dll", bits), Module("wnComponents.dll", bits)}, BinFolder(bits)));
    }
    static nlohmann::json ViewOf(int bits, std::vector<std::string> arguments = {"config", "--json"}) {
        return nlohmann::json::parse(RunWn(arguments, BinFolder(bits)).output).at("registryView").at("value");
    }

    bool m_ready = false;
};

TEST_F(RegistryViewsTest, FollowTheLibraryOf32Bits) {
    Register(32);
    EXPECT_EQ(ViewOf(64), 32);
    SetDirectories(BinFolder(64), 32);
    EXPECT_NE(Setting("builddllpath", 32), "(absent)");
    EXPECT_EQ(Setting("builddllpath", 64), "(absent)");
    // A library of 32 bits finds its catalogue and its transport library there.
    ExpectDone(RunWn({"--json", "capabilities", "--to", "sample://press"}, BinFolder(32)));
    const auto config = nlohmann::json::parse(RunWn({"config", "--json"}, BinFolder(64)).output);
    EXPECT_EQ(config.at("class:QBNORVEL.WendrelParent.1").at("value"), Module("wnCOM.dll", 32));
}

TEST_F(RegistryViewsTest, FollowTheLibraryOf64BitsWhenItIsTheOnlyOne) {
    Register(64);
    EXPECT_EQ(ViewOf(32), 64);
    EXPECT_EQ(ViewOf(64), 64);
    Register(32);
    EXPECT_EQ(ViewOf(64), 32);
}

TEST_F(RegistryViewsTest, AreThoseOfTheProgramWithoutALibrary) {
    EXPECT_EQ(ViewOf(32), 32);
    EXPECT_EQ(ViewOf(64), 64);
}

TEST_F(RegistryViewsTest, CanBeChosen) {
    Register(32);
    ExpectDone(RunWn({"logging", "debug", "--view", "64"}, BinFolder(32)));
    EXPECT_EQ(Setting(nullptr, 64), "debug,3");
    EXPECT_EQ(Setting(nullptr, 32), "(absent)");
    EXPECT_EQ(ViewOf(64, {"config", "--json", "--view", "64"}), 64);
}

TEST_F(RegistryViewsTest, AreNoMatterOfRegistration) {
    const Outcome outcome = RunWn({"register", Module("wnCOM.dll", kOtherBits)});
    ExpectRefusal(outcome, "It is a " + std::to_string(kOtherBits) + "-bit module and this wn a " +
                               std::to_string(kOwnBits) + "-bit program");
}

}  // namespace
}  // namespace wncom::test
