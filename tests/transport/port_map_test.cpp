#include <algorithm>

#include "tests/transport/TransportFixture.h"
#include "wncom/Bstr.h"

namespace wncom::test {
namespace {

const std::string kLookup = "JobControlFactory::getTransportTypeFromPortMapData, ";

class PortMapTest : public TransportFixture {
protected:
    std::string Ask() { return m_factory->checkPortMap(kFakeAddress).c_str(); }
    // The walk's own status and answer.
    HRESULT Walk(Bstr& entry) {
        const Bstr address(OLESTR("http://device/service"));
        return m_factory->getTransportTypeFromPortMapData(address.get(), entry.put());
    }
};

TEST_F(PortMapTest, AnswersTheEntryOfTheServiceAtTheAddress) {
    Script().SetServices({{kFakeAddress, "b"}});
    EXPECT_EQ("b", Ask());
    EXPECT_THAT(Script().Calls(),
                ElementsAre("PortMap.create()", "PortMap.create()", "DeviceContent.create()", "ServiceList.create()",
                            "ServiceContent.create()", "ServiceContent.put_ServiceAddress(http://device/service)",
                            "ServiceList.Add()", "DeviceContent.put_ServiceList()", "PortMap.GetMatchingDevices()",
                            "DeviceContent.create()", "DeviceList.First()", "Device.get_ServiceList()",
                            "DeviceServices.QueryInterface()", "DeviceServices.First()",
                            "Service.get_ServiceAddress()", "Service.get_TransportInfo()", "DeviceServices.Next()"));
    EXPECT_TRUE(ContainsInOrder(
        Lines(),
        {"3 Entering JobControlFactory::checkPortMap().",
         "4 Entering JobControlFactory::getTransportTypeFromPortMapData, looking for serviceAddress: http://device/service",
         "4 " + kLookup + "create wendrel factory succeeded", "4 " + kLookup + "create port map succeeded",
         "4 " + kLookup + "serviceAddress found: http://device/service.", "2 " + kLookup + "Next failed",
         "4 JobControlFactory::checkPortMap, transportInfo: b",
         "3 JobControlFactory::checkPortMap() succeeded, result is b"}));
}

TEST_F(PortMapTest, AnswersTheLastOfSeveralMatches) {
    Script().SetServices({{kFakeAddress, "first"}, {"http://other", "x"}, {kFakeAddress, "last"}, {"y", "z"}});
    EXPECT_EQ("last", Ask());
}

TEST_F(PortMapTest, MatchesAnAddressThatHoldsTheSearchedOneInTheSameCase) {
    Script().SetServices({{"HTTP://device/service", "capitals"}, {"http://device/service/further", "longer"}});
    EXPECT_EQ("longer", Ask());
    Script().SetServices({{"HTTP://device/service", "capitals"}, {"http://device", "shorter"}});
    EXPECT_EQ("", Ask());
}

TEST_F(PortMapTest, NoMatchIsASuccessWithoutAnEntry) {
    Script().SetServices({{"http://other", "b"}});
    Bstr entry;
    EXPECT_EQ(S_OK, Walk(entry));
    EXPECT_FALSE(entry);
    EXPECT_EQ("", Ask());
}

TEST_F(PortMapTest, ThrowsOnlyWhenThereIsNoPortMap) {
    Script().FailIn("PortMap.create", {Fault::Status, E_ABORT}, 1);
    EXPECT_EQ("JobControlFactory::checkPortMap(), failed, 80004005", Thrown([&] { Ask(); }));
    EXPECT_TRUE(ContainsInOrder(Lines(), {"2 JobControlFactory::checkPortMap, create PortMap instance failed.",
                                          "2 JobControlFactory::checkPortMap(), failed"}));
}

struct LookupStep {
    const char* operation;
    unsigned occurrence;
    const char* message;
    bool refusesFalse;  // S_FALSE fails the step too
    bool givesObject;
};
void PrintTo(const LookupStep& step, std::ostream* out) { *out << step.operation << ", " << step.occurrence; }

constexpr LookupStep kSteps[] = {
    {"PortMap.create", 2, "create PortMap failed", false, true},
    {"DeviceContent.create", 1, "create deviceSearch failed", false, true},
    {"ServiceList.create", 1, "create ServiceListSearch failed", false, true},
    {"ServiceContent.create", 1, "create serviceSearch failed", false, true},
    {"ServiceContent.put_ServiceAddress", 1, "put_ServiceAddress failed", false, false},
    {"ServiceList.Add", 1, "serviceListSearch->Add() failed", false, false},
    {"DeviceContent.put_ServiceList", 1, "put_ServiceList() failed", false, false},
    {"PortMap.GetMatchingDevices", 1, "GetMatchingDevices() failed", true, true},
    {"DeviceContent.create", 2, "deviceGet create instance failed", true, true},
    {"DeviceList.First", 1, "First() on deviceList failed", true, true},
    {"Device.get_ServiceList", 1, "get_ServiceList() failed", true, true},
    {"DeviceServices.QueryInterface", 1, "ServiceListGet->QI failed!", false, true},
};

class LookupStepTest : public PortMapTest, public testing::WithParamInterface<LookupStep> {
protected:
    void ExpectsToFail(Misbehaviour misbehaviour) {
        Script().FailIn(GetParam().operation, misbehaviour, GetParam().occurrence);
        EXPECT_EQ("", Ask());
        const std::string failed = std::string(GetParam().operation) + "(";
        EXPECT_EQ(0u, Script().Calls().back().rfind(failed, 0)) << "the step is the last call";
        EXPECT_TRUE(ContainsInOrder(Lines(), {"2 " + kLookup + GetParam().message,
                                              "2 JobControlFactory::checkPortMap, returning empty string"}));
    }
};

TEST_P(LookupStepTest, EndsTheLookupByAFailure) { ExpectsToFail({Fault::Status, E_ABORT}); }

TEST_P(LookupStepTest, EndsTheLookupByAMissingObject) {
    if (GetParam().givesObject) ExpectsToFail({Fault::Null});
}

TEST_P(LookupStepTest, TreatsAnotherSuccessAsItsDemandSays) {
    if (GetParam().refusesFalse) {
        ExpectsToFail({Fault::Status, S_FALSE});
    } else if (!GetParam().givesObject) {
        Script().FailIn(GetParam().operation, {Fault::Status, S_FALSE}, GetParam().occurrence);
        EXPECT_EQ("network", Ask());
    }
}

TEST_P(LookupStepTest, LetsAnExceptionThroughAndReleasesAll) {
    if (std::string(GetParam().operation).find(".create") != std::string::npos) return;  // the creation catches it
    Script().FailIn(GetParam().operation, {Fault::Integer}, GetParam().occurrence);
    EXPECT_EQ("int 42", Thrown([&] { Ask(); }));
    EXPECT_EQ(0, Script().LiveObjects());
}

INSTANTIATE_TEST_SUITE_P(Each, LookupStepTest, testing::ValuesIn(kSteps), [](const auto& test) {
    std::string name = test.param.operation;
    name.erase(name.find('.'), 1);
    name.erase(std::remove(name.begin(), name.end(), '_'), name.end());
    return name + std::to_string(test.param.occurrence);
});

struct WalkFault {
    const char* name;
    const char* operation;
    unsigned occurrence;
    Misbehaviour misbehaviour;
    HRESULT status;
    const char* entry;  // null when the status tells that there is none
    const char* message;
};
void PrintTo(const WalkFault& fault, std::ostream* out) { *out << fault.name; }

class WalkTest : public PortMapTest, public testing::WithParamInterface<WalkFault> {};

TEST_P(WalkTest, GoesOnOrEndsAsTheFaultDemands) {
    Script().SetServices({{kFakeAddress, "one"}, {kFakeAddress, "two"}, {kFakeAddress, "three"}});
    Script().FailIn(GetParam().operation, GetParam().misbehaviour, GetParam().occurrence);
    Bstr entry;
    EXPECT_EQ(GetParam().status, Walk(entry));
    if (GetParam().entry) {
        EXPECT_EQ(std::string(GetParam().entry), std::string(entry.view().begin(), entry.view().end()));
    }
    if (GetParam().message) {
        EXPECT_TRUE(ContainsInOrder(Lines(), {"2 " + kLookup + GetParam().message}));
    }
    Script().ForgetCalls();
    EXPECT_EQ(GetParam().status == S_OK ? GetParam().entry : "", Ask());
}

INSTANTIATE_TEST_SUITE_P(
    Each, WalkTest,
    testing::Values(
        WalkFault{
            "FirstFails", "DeviceServices.First", 0, {Fault::Status, E_ABORT}, E_ABORT, nullptr, "First failed"},
        WalkFault{"FirstIsNull", "DeviceServices.First", 0, {Fault::Null}, E_POINTER, nullptr, "First failed"},
        WalkFault{
            "FirstIsAtItsEnd", "DeviceServices.First", 0, {Fault::Status, S_FALSE}, S_FALSE, nullptr, "First failed"},
        WalkFault{"FirstAddressFails",
                  "Service.get_ServiceAddress",
                  1,
                  {Fault::Status, E_ABORT},
                  E_ABORT,
                  nullptr,
                  "get_ServiceAddress in First block failed"},
        WalkFault{
            "FirstEntryFails", "Service.get_TransportInfo", 1, {Fault::Status, E_ABORT}, E_ABORT, nullptr, nullptr},
        WalkFault{"NextFails", "DeviceServices.Next", 1, {Fault::Status, E_ABORT}, E_ABORT, nullptr, "Next failed"},
        WalkFault{"NextIsNull", "DeviceServices.Next", 1, {Fault::Null}, E_POINTER, nullptr, "Next failed"},
        WalkFault{"NextEnds", "DeviceServices.Next", 2, {Fault::Status, S_FALSE}, S_OK, "two", "Next failed"},
        WalkFault{"LaterAddressFails",
                  "Service.get_ServiceAddress",
                  2,
                  {Fault::Status, E_ABORT},
                  S_OK,
                  "one",
                  "get_ServiceAddress in Next block failed"},
        WalkFault{"LaterAddressIsHalfASuccess",
                  "Service.get_ServiceAddress",
                  2,
                  {Fault::Status, S_FALSE},
                  S_OK,
                  "one",
                  "didn't find match to searchstring in Next"},
        WalkFault{"LaterEntryFails", "Service.get_TransportInfo", 2, {Fault::Status, E_ABORT}, S_OK, "one", nullptr},
        WalkFault{"LaterEntryIsNull", "Service.get_TransportInfo", 3, {Fault::Null}, S_OK, "", nullptr},
        WalkFault{"Throws",
                  "Service.get_ServiceAddress",
                  2,
                  {Fault::CommonException},
                  E_FAIL,
                  nullptr,
                  "unexpected exception, failing!"}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace wncom::test
