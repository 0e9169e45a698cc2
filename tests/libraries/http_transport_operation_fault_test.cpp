// A device that refuses, hangs, cuts off or answers with the wrong thing, in each operation on data and events.
#include <functional>
#include <memory>
#include <ostream>

#include "tests/libraries/HttpTransportFixture.h"
#include "wncom/RemoteArray.h"

namespace wncom::test {
namespace {

// What an operation gave: "none" or its failure, and the text in its slot.
struct Outcome {
    bool empty = true;
    std::string slot;
};

struct Operation {
    const char* fault;
    bool hasSlot;
    bool hasTypedAnswer;
    std::function<Outcome(RmtJobControl&)> call;
    friend void PrintTo(const Operation& operation, std::ostream* out) { *out << operation.fault; }
};

const char* const kId = "00000000000000000000000000000000";
const char* const kConsumer = "http://127.0.0.1:9/";
const char* const kSubscription =
    "<Subscription><ConsumerInterface>http://127.0.0.1:9/</ConsumerInterface></Subscription>";

template <class Call>
Outcome WithSlot(Call call) {
    ExceptionSlot slot;
    const bool empty = call(&slot);
    return {empty, slot.Text()};
}

const Operation kOperations[] = {
    {"read", true, true,
     [](RmtJobControl& object) {
         return WithSlot([&](BSTR* slot) { return object.GetData("//*", "", slot, 1).empty(); });
     }},
    {"write", false, false,
     [](RmtJobControl& object) {
         return Outcome{!object.SetData("<a/>", false, nullptr, 1), {}};
     }},
    {"events", false, true,
     [](RmtJobControl& object) {
         return Outcome{!std::unique_ptr<RemoteArray>(object.GetSupportedEvents()), {}};
     }},
    {"properties", false, true,
     [](RmtJobControl& object) {
         return Outcome{!std::unique_ptr<RemoteArray>(object.GetEventProperties("all")), {}};
     }},
    {"event-capabilities", true, true,
     [](RmtJobControl& object) {
         return WithSlot([&](BSTR* slot) { return object.GetEventCapabilities(slot).empty(); });
     }},
    {"subscribe", false, true,
     [](RmtJobControl& object) {
         return Outcome{object.Subscribe("", "", kConsumer).empty(), {}};
     }},
    {"subscribe-ticket", true, true,
     [](RmtJobControl& object) {
         return WithSlot([&](BSTR* slot) { return object.SubscribeForEvents(kSubscription, slot).empty(); });
     }},
    {"renew", true, false,
     [](RmtJobControl& object) {
         return WithSlot([&](BSTR* slot) { return !object.Resubscribe(kId, "60", slot); });
     }},
    {"cancel", true, false,
     [](RmtJobControl& object) {
         return WithSlot([&](BSTR* slot) { return !object.UnsubscribeForEvents(kId, slot); });
     }},
};

class HttpTransportOperationFaultTest : public HttpTransportTest, public testing::WithParamInterface<Operation> {
protected:
    // Whether the operation comes to nothing when the device has the fault; the object must go on afterwards.
    void ExpectFailure(const std::string& fault) {
        const DeviceProcess device({"--fault", std::string(GetParam().fault) + ":" + fault});
        const Object object = MakeInSession(device.Address());
        EXPECT_TRUE(ComesToNothing(*object)) << fault;
        EXPECT_FALSE(object->StartSession().empty()) << "the object goes on";
    }
    bool ComesToNothing(RmtJobControl& object) {
        bool empty = true;
        const bool failed = FailureOf([&] { empty = GetParam().call(object).empty; }) != "none";
        EXPECT_NE(ReasonLeft(), "none");
        return failed || empty;
    }
};

TEST_P(HttpTransportOperationFaultTest, FaultOfTheDeviceComesToNothingAndTheObjectGoesOn) {
    SetNumber("calltimeout", 300);
    SetNumber("answerlimit", 64);
    const std::string file = HomePath() + "/body";
    WriteWholeFile(file, "\xFF\xFE<\r\n");
    for (const char* fault : {"status=302", "hang=30"}) {
        ExpectFailure(fault);
    }
    if (!GetParam().hasTypedAnswer) return;
    ExpectFailure("type=text/html");
    ExpectFailure("body=" + file);
}

TEST_P(HttpTransportOperationFaultTest, DeviceThatIsGoneIsReported) {
    const Object object = Make("http://127.0.0.1:1");
    EXPECT_TRUE(Contains(FailureOf([&] { GetParam().call(*object); }), "Failed to connect"));
}

TEST_F(HttpTransportTest, RefusalStandsInTheSlotOfEachOperationThatHasOne) {
    for (const Operation& operation : kOperations) {
        if (!operation.hasSlot) continue;
        const DeviceProcess device({"--fault", std::string(operation.fault) + ":status=500"});
        EXPECT_EQ(operation.call(*MakeInSession(device.Address())).slot, "a fault on request") << operation.fault;
    }
}

INSTANTIATE_TEST_SUITE_P(Operations, HttpTransportOperationFaultTest, testing::ValuesIn(kOperations),
                         [](const auto& test) {
                             std::string name = test.param.fault;
                             std::erase(name, '-');
                             return name;
                         });

}  // namespace
}  // namespace wncom::test
