// Subscriptions over the HTTP transport and the events that answer them.
#pragma once

#include <string>

#include "tests/libraries/EventConsumer.h"
#include "tests/libraries/HttpTransportFixture.h"

namespace wncom::test {

class HttpTransportEventsTest : public HttpTransportTest {
protected:
    static std::string Subscribe(RmtJobControl& object, const EventConsumer& consumer, const char* info = "",
                                 const char* filters = "") {
        return object.Subscribe(info, filters, consumer.Address().c_str()).c_str();
    }
    // A change of the device data: one event of its own.
    static void Change(RmtJobControl& object, const std::string& value, int times = 1) {
        std::string document = "<setData><prefixes>d=urn:wncom:device-data</prefixes>";
        for (int i = 0; i < times; ++i) {
            document += "<set><path>//d:operatorMessage</path><value>" + value + "</value></set>";
        }
        ASSERT_TRUE(object.SetData(CString((document + "</setData>").c_str()), false, nullptr, 1));
    }
};

}  // namespace wncom::test
