// Device data's way from the client to the device and back.
#include "tests/road/RoadFixture.h"

namespace wncom::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr const char* kPrefixes = "d=urn:wncom:device-data";
constexpr const char* kMessage = "//d:operatorMessage";

std::string Set(const std::string& path, const std::string& value) {
    return "<set><path>" + path + "</path><value>" + value + "</value></set>";
}
std::string SetDocument(const std::string& sets) {
    return std::string("<setData><prefixes>") + kPrefixes + "</prefixes>" + sets + "</setData>";
}

class DeviceDataRoadTest : public RoadFixture {
protected:
    struct Outcome {
        std::string status;  // in hex
        std::string document;
        std::string exception;
        bool operator==(const Outcome&) const = default;
    };

    Outcome Get(const std::string& path) const {
        Bstr exception;
        Bstr document;
        const HRESULT status =
            m_data->GetData(Text(path).get(), Text(kPrefixes).get(), exception.put(), document.put());
        return {Hex(status), Narrow(document.get()), Narrow(exception.get())};
    }
    Outcome SetAll(const std::string& sets, LONG failureDetails) const {
        Bstr exception;
        const HRESULT status = m_data->SetData(Text(SetDocument(sets)).get(), failureDetails, exception.put());
        return {Hex(status), "", Narrow(exception.get())};
    }

    const DeviceProcess m_device;
    const CPComPtr<IWendrel> m_agent = Agent(m_device.Address());
    const CPComPtr<IWNXDMAccess> m_data = Ask<IWNXDMAccess>(m_agent);
};

TEST_F(DeviceDataRoadTest, AValueThatWasSetIsRead) {
    EXPECT_EQ(SetAll(Set(kMessage, "Back at 14:00"), 0), (Outcome{Hex(S_OK), "", ""}));
    const Outcome read = Get(kMessage);
    EXPECT_EQ(read.status, Hex(S_OK));
    EXPECT_THAT(read.document, AllOf(HasSubstr("<dataResult>"), HasSubstr(">Back at 14:00</operatorMessage>")));
    EXPECT_EQ(read.exception, "");
}

TEST_F(DeviceDataRoadTest, AReadThatTheDeviceRefusesBringsItsWords) {
    EXPECT_EQ(Get("//d:lid"), (Outcome{Hex(E_FAIL), "", "The path selects nothing"}));
    EXPECT_THAT(Log(), AllOf(HasSubstr("HttpJobControl::GetData failed"), HasSubstr("Orb.GetData failed")));
    EXPECT_EQ(Hex(m_data->GetData(nullptr, nullptr, nullptr, nullptr)), Hex(E_FAIL));
    EXPECT_EQ(Get(kMessage).status, Hex(S_OK)) << "the next read works";
}

// The agent hands a text of the write to its client beside a success only; the log keeps what the device said.
TEST_F(DeviceDataRoadTest, ARefusedWriteSetsNothingAndTellsTheLogWhy) {
    EXPECT_EQ(SetAll(Set(kMessage, "busy") + Set("//d:jobsAccepted", "0"), 1), (Outcome{Hex(E_FAIL), "", ""}));
    EXPECT_THAT(Log(), AllOf(HasSubstr("status 422"), HasSubstr("Orb.SetData returned false")));
    EXPECT_THAT(Get(kMessage).document, testing::Not(HasSubstr("busy")));
}

TEST_F(DeviceDataRoadTest, ADeviceThatIsGoneFailsBothAndTellsWhy) {
    DeviceProcess gone;
    const CPComPtr<IWendrel> agent = Agent(gone.Address());
    const auto data = Ask<IWNXDMAccess>(agent);
    gone.Kill();
    Bstr exception;
    Bstr document;
    EXPECT_EQ(Hex(data->GetData(Text(kMessage).get(), nullptr, exception.put(), document.put())), Hex(E_FAIL));
    EXPECT_THAT(Narrow(exception.get()), HasSubstr("/device-data/read: "));
    EXPECT_EQ(Hex(data->SetData(Text(SetDocument(Set(kMessage, "x"))).get(), 1, nullptr)), Hex(E_FAIL));
}

}  // namespace
}  // namespace wncom::test
